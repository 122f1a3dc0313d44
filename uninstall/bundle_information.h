#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/FileContent.h"
#include "platform/FileManager.h"

namespace velto {

/// What an application bundle says of itself in its information property list; each text only when
/// it is there and is text.
struct BundleInformation {
    std::optional<std::string> identifier;    // CFBundleIdentifier
    std::optional<std::string> displayName;   // CFBundleDisplayName
    std::optional<std::string> name;          // CFBundleName
    std::optional<std::string> shortVersion;  // CFBundleShortVersionString
    std::optional<std::string> version;       // CFBundleVersion
    std::optional<std::string> executable;    // CFBundleExecutable

    bool operator==(const BundleInformation&) const = default;
};

/// The keys of the property list and what they are here.
inline constexpr std::array<
    std::pair<std::string_view, std::optional<std::string> BundleInformation::*>, 6>
    bundleInformationKeys{{
        {"CFBundleIdentifier", &BundleInformation::identifier},
        {"CFBundleDisplayName", &BundleInformation::displayName},
        {"CFBundleName", &BundleInformation::name},
        {"CFBundleShortVersionString", &BundleInformation::shortVersion},
        {"CFBundleVersion", &BundleInformation::version},
        {"CFBundleExecutable", &BundleInformation::executable},
    }};

/// Reads "Contents/Info.plist" of the bundle at `path`, or where there is none
/// "WrappedBundle/Info.plist" or "Info.plist"; nothing when all are missing, or when the first of
/// them is damaged or larger than any application's. Texts that are not UTF-8 lose their bad bytes.
/// Safe from every thread; never throws.
std::optional<BundleInformation> readBundleInformation(const FileManager& files,
                                                       FileContentReader& contents,
                                                       const std::string& path);

/// The same from the file's bytes.
std::optional<BundleInformation> bundleInformationFrom(std::string_view bytes);

/// The same from the file's bytes where they are XML in its most common dress: one dictionary of
/// plain elements. Builds nothing but the texts, so that hundreds of applications are listed at
/// once; nothing when anything is out of the ordinary, and then the parser decides.
std::optional<BundleInformation> quickBundleInformation(std::string_view bytes);

}  // namespace velto
