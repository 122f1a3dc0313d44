#pragma once

#include <string>
#include <vector>

#include "platform/FileManager.h"

namespace velto {

/// The picture file of an icon in a theme, in those that it inherits from and in "hicolor", as
/// freedesktop.org's icon themes are looked through: the size nearest to `pixels`, PNG before SVG.
/// `folders` hold the themes ("/usr/share/icons" and its like), the most important one first. Empty
/// when there is none. Blocking; never throws.
std::string themedIconFile(const FileManager& files, const std::vector<std::string>& folders,
                           const std::string& theme, const std::string& icon, int pixels);

}  // namespace velto
