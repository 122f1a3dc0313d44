#include "platform/linux/process_program.h"

#include <unistd.h>

#include <array>
#include <climits>
#include <string_view>

#include "platform/linux/kernel_file.h"

namespace velto {

std::string executableOfProcess(const std::string& folder) {
    std::array<char, PATH_MAX> target;
    const ssize_t length = ::readlink((folder + "/exe").c_str(), target.data(), target.size());
    if (length <= 0) return {};
    std::string path(target.data(), static_cast<std::size_t>(length));
    // How the kernel marks a program whose file is gone.
    constexpr std::string_view mark = " (deleted)";
    if (path.ends_with(mark)) path.resize(path.size() - mark.size());
    return path.starts_with('/') ? path : std::string();
}

std::string appImageOfProcess(const std::string& folder, const std::string& executable) {
    if (executable.find("/.mount_") == std::string::npos) return {};
    const std::string environment = kernelText(folder + "/environ").value_or("");
    constexpr std::string_view name = "APPIMAGE=";
    for (std::string_view rest = environment; !rest.empty();) {
        const std::string_view variable = rest.substr(0, rest.find('\0'));
        rest.remove_prefix(std::min(rest.size(), variable.size() + 1));
        if (variable.starts_with(name)) return std::string(variable.substr(name.size()));
    }
    return {};
}

}  // namespace velto
