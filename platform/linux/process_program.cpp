#include "platform/linux/process_program.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>
#include <string_view>

#include "platform/linux/kernel_file.h"
#include "platform/linux/launchers.h"
#include "platform/values/text.h"

namespace velto {
namespace {

std::string linkTarget(const std::string& path) {
    std::array<char, PATH_MAX> target;
    const ssize_t length = ::readlink(path.c_str(), target.data(), target.size());
    return length <= 0 ? std::string()
                       : std::string(target.data(), static_cast<std::size_t>(length));
}

/// Takes the next of the texts that the kernel ends with a zero each.
std::string_view nextText(std::string_view& texts) {
    const std::string_view text = texts.substr(0, texts.find('\0'));
    texts.remove_prefix(std::min(texts.size(), text.size() + 1));
    return text;
}

// Options after which no script follows, but a program's text or the name of a module.
constexpr std::array<std::string_view, 5> withoutScript{"-c", "-e", "-E", "--eval", "-p"};
// Options that take the next argument.
constexpr std::array<std::string_view, 9> withValue{"-cp", "-classpath", "--class-path", "-W", "-X",
                                                    "-r",  "--require",  "-I",           "-o"};

bool holds(const auto& options, std::string_view option) {
    return std::ranges::find(options, option) != options.end();
}

/// The first argument that is no option; empty where none is a file.
std::string_view scriptIn(std::string_view arguments) {
    while (!arguments.empty()) {
        const std::string_view argument = nextText(arguments);
        if (holds(withoutScript, argument)) return {};
        if (argument == "-m") {  // GJS's modules are files, Python's are not
            const std::string_view module = nextText(arguments);
            return module.starts_with('/') ? module : std::string_view();
        }
        if (holds(withValue, argument)) {
            nextText(arguments);
        } else if (!argument.empty() && !argument.starts_with('-')) {
            return argument;
        }
    }
    return {};
}

}  // namespace

std::string executableOfProcess(const std::string& folder) {
    std::string path = linkTarget(folder + "/exe");
    if (path.empty()) return {};
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
        const std::string_view variable = nextText(rest);
        if (variable.starts_with(name)) return std::string(variable.substr(name.size()));
    }
    return {};
}

std::string scriptOfProcess(const std::string& folder, const std::string& executable) {
    if (!isInterpreter(lastPathComponent(executable))) return {};
    const std::string commandLine = kernelText(folder + "/cmdline").value_or("");
    std::string_view arguments = commandLine;
    nextText(arguments);  // what the interpreter was called
    const std::string_view script = scriptIn(arguments);
    if (script.empty() || script.starts_with('/')) return standardizedPath(script);
    return standardizedPath(linkTarget(folder + "/cwd") + "/" + std::string(script));
}

}  // namespace velto
