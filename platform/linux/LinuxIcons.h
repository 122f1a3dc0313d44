#pragma once

#include <utility>
#include <vector>

#include "platform/FileManager.h"
#include "platform/HomeLayout.h"
#include "platform/Icons.h"

namespace velto {

/// Icons through gdk-pixbuf: the `.icns` of an application bundle, as its Info.plist names it, the
/// picture that a desktop entry names, or a picture file itself.
class LinuxIcons final : public Icons {
public:
    /// `entries` are the folders of desktop entries, beside which their icons lie. The file manager
    /// outlives the object.
    explicit LinuxIcons(const FileManager& files, std::vector<NamedLocation> entries = {})
        : files_(files), entries_(std::move(entries)) {}

    std::optional<std::string> pngDataURL(const std::string& path, int pixels) override;

private:
    std::string iconFile(const std::string& path) const;
    std::optional<std::string> content(const std::string& path) const;

    const FileManager& files_;
    std::vector<NamedLocation> entries_;
};

/// Of the pictures in an Apple icon file that are whole PNG files, the one that is best drawn in
/// `pixels` by `pixels`: the smallest that is as large, else the largest. Empty when it has none
/// or is damaged; points into `file`.
std::string_view pngInIconFile(std::string_view file, int pixels);

}  // namespace velto
