#include "platform/linux/bundle_application.h"

#include <array>
#include <cstdint>
#include <optional>

#include "platform/values/PropertyList.h"
#include "platform/values/text.h"

namespace velto {
namespace {

constexpr ReadLimit limit = anyFile(1 << 20);  // of a property list that is worth reading

std::optional<PropertyList> informationOf(const FileManager& files, const std::string& bundle) {
    try {
        const std::string path = bundle + "/Contents/Info.plist";
        return readPropertyList(files.read(path, limit));
    } catch (const FileError&) {
        return std::nullopt;  // taken away while it runs
    }
}

std::string fileNameOf(const std::string& bundle) {
    constexpr std::string_view extension = ".app";
    std::string_view name = lastPathComponent(bundle);
    if (name.ends_with(extension)) name.remove_suffix(extension.size());
    return std::string(name);
}

}  // namespace

RunningApp bundleApplication(const FileManager& files, const std::string& path) {
    RunningApp application{.name = fileNameOf(path), .path = path};
    const auto information = informationOf(files, path);
    if (!information) return application;
    if (const std::string* text = information->text("CFBundleIdentifier")) {
        application.bundle = *text;
    }
    for (const char* key : {"CFBundleDisplayName", "CFBundleName"}) {
        const std::string* const text = information->text(key);
        if (text == nullptr || text->empty()) continue;
        application.name = *text;
        break;
    }
    return application;
}

}  // namespace velto
