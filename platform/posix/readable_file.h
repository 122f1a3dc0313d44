#pragma once

#include <sys/stat.h>

#include <string>

#include "platform/FileManager.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/FileCalls.h"

namespace velto {

/// A regular file that is open for reading and fits its limit.
struct ReadableFile {
    Descriptor descriptor;
    struct stat status;  // when it was opened
};

/// Throws FileError; RefusedFile when something stands there that the limit does not admit.
ReadableFile openReadable(FileCalls& calls, const std::string& path, const ReadLimit& limit);

/// The whole content from its start on. Throws as above: the file may have grown.
std::string readWhole(FileCalls& calls, const ReadableFile& file, const std::string& path,
                      const ReadLimit& limit);

}  // namespace velto
