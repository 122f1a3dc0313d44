#pragma once

#include "platform/FileManager.h"
#include "platform/Icons.h"

namespace velto {

/// Icons through gdk-pixbuf: the `.icns` of an application bundle, as its Info.plist names it, or a
/// picture file itself.
class LinuxIcons final : public Icons {
public:
    /// The file manager outlives the object.
    explicit LinuxIcons(const FileManager& files) : files_(files) {}

    std::optional<std::string> pngDataURL(const std::string& path, int pixels) override;

private:
    std::string iconFile(const std::string& path) const;
    std::optional<std::string> content(const std::string& path) const;

    const FileManager& files_;
};

/// Of the pictures in an Apple icon file that are whole PNG files, the one that is best drawn in
/// `pixels` by `pixels`: the smallest that is as large, else the largest. Empty when it has none
/// or is damaged; points into `file`.
std::string_view pngInIconFile(std::string_view file, int pixels);

}  // namespace velto
