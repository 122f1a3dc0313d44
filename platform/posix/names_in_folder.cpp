#include "platform/posix/names_in_folder.h"

#include <dirent.h>

#include <cerrno>
#include <memory>
#include <string_view>
#include <utility>

namespace velto {
namespace {

/// Closing keeps `errno`: the failure that is reported is the listing's.
struct CloseStream {
    void operator()(DIR* stream) const {
        const int error = errno;
        ::closedir(stream);
        errno = error;
    }
};

}  // namespace

std::optional<std::vector<std::string>> namesInFolder(Descriptor folder) {
    const std::unique_ptr<DIR, CloseStream> stream(::fdopendir(folder.number()));
    if (!stream) return std::nullopt;
    folder.release();  // the stream closes it
    std::vector<std::string> names;
    errno = 0;
    while (const dirent* entry = ::readdir(stream.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") names.emplace_back(name);
        errno = 0;
    }
    if (errno != 0) return std::nullopt;
    return names;
}

}  // namespace velto
