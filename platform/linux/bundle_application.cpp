#include "platform/linux/bundle_application.h"

#include <array>
#include <optional>

#include "platform/posix/foreign_file.h"
#include "platform/values/PropertyList.h"
#include "platform/values/text.h"

namespace velto {
namespace {

std::optional<PropertyList> informationOf(const std::string& bundle) {
    const auto bytes = readForeignFile(bundle + "/Contents/Info.plist", longestPropertyList);
    return bytes ? readPropertyList(*bytes) : std::nullopt;
}

std::string fileNameOf(const std::string& bundle) {
    constexpr std::string_view extension = ".app";
    std::string_view name = lastPathComponent(bundle);
    if (name.ends_with(extension)) name.remove_suffix(extension.size());
    return std::string(name);
}

}  // namespace

RunningApp bundleApplication(const std::string& path) {
    RunningApp application{.name = fileNameOf(path), .path = path};
    const auto information = informationOf(path);
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
