#include "platform/posix/mounts.h"

#include <cerrno>

#include "platform/FileManager.h"

namespace velto {

std::uint64_t mountOf(FileCalls& calls, int folder, const std::string& name, const char* attempt,
                      const std::string& path) {
    std::uint64_t mount = 0;
    if (calls.mount(folder, name.c_str(), mount) != 0) throw FileError(attempt, path, errno);
    return mount;
}

void failMounted(const char* attempt, const std::string& path, int code) {
    throw SomethingMounted(attempt, path, code);
}

}  // namespace velto
