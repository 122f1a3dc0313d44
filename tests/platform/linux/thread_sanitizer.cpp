/// Read by ThreadSanitizer when the test program starts, unused without it. The system's GLib is
/// not built for it: what GLib's own threads (the bus, the look-up of applications) pass among
/// themselves looks unordered to it. What these libraries do themselves is left out, and the one
/// place where our code reads an error text that such a thread has written; nothing else of ours
/// is.
extern "C" const char* __tsan_default_suppressions();  // NOLINT(bugprone-reserved-identifier)

const char* __tsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier)
    return "called_from_lib:libglib-2.0.so.0\n"
           "called_from_lib:libgobject-2.0.so.0\n"
           "called_from_lib:libgio-2.0.so.0\n"
           "race:logFailure\n";
}
