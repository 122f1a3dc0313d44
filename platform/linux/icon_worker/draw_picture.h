#pragma once

#include <string>
#include <string_view>

namespace velto {

/// The picture in a file's bytes as a PNG file of `pixels` by `pixels`; empty when there is none.
std::string drawPicture(std::string_view file, int pixels);

}  // namespace velto
