#include "uninstall/app_images.h"

#include <algorithm>
#include <array>
#include <unordered_set>
#include <utility>

#include "platform/values/text.h"

namespace velto {
namespace {

constexpr std::size_t mostNames = 20'000;  // of a folder that are looked at
constexpr std::string_view separators = "-_ ";

// Systems, processors and kinds of build, in small letters.
constexpr std::array<std::string_view, 27> words{
    "x86",    "x64",  "x32",   "amd64",   "arm64",   "aarch64", "armhf",    "armv7l",   "armv7",
    "i386",   "i486", "i686",  "linux",   "linux64", "linux32", "gnu",      "glibc",    "musl",
    "stable", "beta", "alpha", "nightly", "latest",  "release", "portable", "appimage", "x11"};

bool isDigit(char letter) { return letter >= '0' && letter <= '9'; }

/// "1.2", "v3", "2024": not the "2" of a name's second part.
bool isVersion(std::string_view part) {
    const bool isMarked = part.size() > 1 && (part.front() == 'v' || part.front() == 'V');
    if (isMarked) part.remove_prefix(1);
    if (part.empty() || !isDigit(part.front())) return false;
    return isMarked || part.find('.') != std::string_view::npos ||
           (part.size() > 2 && std::ranges::all_of(part, isDigit));
}

bool isWordOfBuild(std::string_view part) {
    return std::ranges::find(words, lowerCasedAscii(part)) != words.end();
}

bool isAppImage(std::string_view name) { return lowerCaseExtension(name) == "appimage"; }

std::vector<std::string> imagesIn(const FileManager& files, const std::string& folder) {
    std::vector<std::string> found;
    try {
        auto names = files.list(folder);
        names.resize(std::min(names.size(), mostNames));
        for (const std::string& name : names) {
            if (isAppImage(name)) found.push_back(folder + "/" + name);
        }
    } catch (const FileError&) {
        // Few have all of these folders.
    }
    // Links lead to what is listed where it lies.
    std::erase_if(found, [&](const std::string& path) {
        const auto attributes = files.attributes(path);
        return !attributes || attributes->kind != FileKind::regular;
    });
    std::ranges::sort(found);
    return found;
}

DesktopApplication describe(const std::string& path) {
    AppImageName called = appImageName(lastPathComponent(path));
    DesktopApplication application;
    application.id = path;
    application.executable = path;
    application.isIdentified = true;
    application.entry.bid = validUtf8(path);
    application.entry.name = std::move(called.name);
    application.entry.version = std::move(called.version);
    application.entry.exec = application.entry.name;
    application.entry.path = path;
    return application;
}

}  // namespace

AppImageName appImageName(std::string_view fileName) {
    const std::string text = validUtf8(fileName);
    std::string_view rest = text;
    if (isAppImage(rest)) rest.remove_suffix(std::string_view(".appimage").size());
    const std::string_view whole = rest;
    AppImageName called;
    std::size_t end = whole.find_first_of(separators);  // the first part is always the name's
    std::size_t endOfName = end;
    while (end != std::string_view::npos) {
        const std::size_t start = end + 1;
        end = whole.find_first_of(separators, start);
        const std::string_view part = whole.substr(start, end - start);
        const bool isPartOfName = !part.empty() && !isVersion(part) && !isWordOfBuild(part);
        if (isVersion(part)) {
            if (part.front() == 'v' || part.front() == 'V') {
                called.version = part.substr(1);
            } else {
                called.version = part;
            }
            break;
        }
        if (isPartOfName && endOfName == start - 1) endOfName = end;
    }
    called.name = whole.substr(0, endOfName);
    if (called.name.empty()) called.name = text;
    return called;
}

std::vector<DesktopApplication> appImagesWithoutEntry(
    const Platform& platform, const std::vector<DesktopApplication>& listed) {
    std::unordered_set<std::string> known;
    for (const DesktopApplication& application : listed) {
        known.insert(application.executable);
        known.insert(application.entry.path);
    }
    std::vector<std::string> folders = platform.layout.applicationRoots;
    folders.push_back(platform.layout.downloads);
    std::vector<DesktopApplication> found;
    for (const std::string& folder : folders) {
        if (folder.empty()) continue;
        for (const std::string& path : imagesIn(*platform.files, folder)) {
            std::string resolved = path;
            try {
                resolved = platform.files->resolved(path);
            } catch (const FileError&) {
                continue;  // gone meanwhile
            }
            if (known.contains(path) || !known.insert(resolved).second) continue;
            DesktopApplication application = describe(path);
            application.executable = std::move(resolved);
            // This program in such a file does not list itself.
            if (lowerCasedAscii(application.entry.name) == "velto") continue;
            found.push_back(std::move(application));
        }
    }
    return found;
}

}  // namespace velto
