#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "platform/FileManager.h"
#include "platform/HomeLayout.h"
#include "platform/Icons.h"
#include "platform/linux/IconWorkers.h"

namespace velto {

/// Icons drawn by `velto-icons`: the `.icns` of an application bundle, as its Info.plist names it,
/// the picture that a desktop entry names in the desktop's theme, or a picture file itself.
class LinuxIcons final : public Icons {
public:
    using ThemeName = std::function<std::string()>;

    /// `worker` is the file of `velto-icons`, `entries` are the folders of desktop entries, beside
    /// which their icons lie, and `theme` says which theme the desktop uses; it is asked once, on
    /// any thread. The file manager outlives the object.
    LinuxIcons(const FileManager& files, std::string worker,
               std::vector<NamedLocation> entries = {}, ThemeName theme = {})
        : files_(files),
          entries_(std::move(entries)),
          themeName_(std::move(theme)),
          workers_(std::move(worker)) {}

    std::optional<std::string> pngDataURL(const std::string& path, int pixels) override;

private:
    std::string iconFile(const std::string& path, int pixels);
    std::string pictureOf(const std::string& icon, int pixels);

    const FileManager& files_;
    std::vector<NamedLocation> entries_;
    ThemeName themeName_;
    std::once_flag isThemeKnown_;
    std::string theme_;
    IconWorkers workers_;
};

/// Of the pictures in an Apple icon file that are whole PNG files, the one that is best drawn in
/// `pixels` by `pixels`: the smallest that is as large, else the largest. Empty when it has none
/// or is damaged; points into `file`.
std::string_view pngInIconFile(std::string_view file, int pixels);

}  // namespace velto
