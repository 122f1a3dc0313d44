#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace velto {

/// An application that runs, or a helper of one. Linux lists every program that this user may look
/// at, whether it runs from inside a bundle or not; what an AppImage has unpacked for itself counts
/// as the AppImage.
struct RunningApplication {
    std::int64_t process = 0;      // its number
    std::string bundleIdentifier;  // empty when it has none
    std::string bundlePath;        // the innermost bundle, absolute; empty when there is none
    std::string executable;        // absolute

    // What Linux tells of a process beside its program; empty where it tells nothing.
    std::string script;   // the file that an interpreter runs, absolute, links not resolved
    std::string entry;    // id of the desktop entry whose unit it runs in
    std::string flatpak;  // identifier of the Flatpak whose sandbox it runs in
    std::string snap;     // (instance) name of the Snap that it runs in
};

/// Ends one process. It stays that process: a number that the system gives to another one later is
/// never acted on. Safe from every thread.
class ProcessControl {
public:
    virtual ~ProcessControl() = default;

    virtual void terminate() = 0;       // asks it to quit
    virtual void forceTerminate() = 0;  // ends it at once
    virtual bool isTerminated() = 0;
};

/// The applications that run now. Functions are safe from every thread unless they say otherwise,
/// and never throw: what cannot be seen is left out.
class RunningApplications {
public:
    virtual ~RunningApplications() = default;

    virtual std::vector<RunningApplication> list() = 0;

    /// Null when that application does not run any more.
    virtual std::unique_ptr<ProcessControl> control(const RunningApplication& application) = 0;

    /// Calls `used` on the main thread whenever an application is started or activated, as long as
    /// this object lives. Linux notices a start, and the end, within some seconds. Main thread,
    /// once.
    virtual void observe(std::function<void(const RunningApplication&)> used) = 0;
};

}  // namespace velto
