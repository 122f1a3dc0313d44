#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/FileManager.h"
#include "platform/HomeLayout.h"
#include "platform/Icons.h"
#include "platform/linux/IconWorkers.h"

namespace velto {

/// Icons drawn by `velto-icons`: the `.icns` of an application bundle, as its Info.plist names it,
/// the picture that a desktop entry names, or a picture file itself.
class LinuxIcons final : public Icons {
public:
    /// `worker` is the file of `velto-icons`, `entries` are the folders of desktop entries, beside
    /// which their icons lie. The file manager outlives the object.
    LinuxIcons(const FileManager& files, std::string worker,
               std::vector<NamedLocation> entries = {})
        : files_(files), entries_(std::move(entries)), workers_(std::move(worker)) {}

    std::optional<std::string> pngDataURL(const std::string& path, int pixels) override;

private:
    std::string iconFile(const std::string& path) const;

    const FileManager& files_;
    std::vector<NamedLocation> entries_;
    IconWorkers workers_;
};

/// Of the pictures in an Apple icon file that are whole PNG files, the one that is best drawn in
/// `pixels` by `pixels`: the smallest that is as large, else the largest. Empty when it has none
/// or is damaged; points into `file`.
std::string_view pngInIconFile(std::string_view file, int pixels);

}  // namespace velto
