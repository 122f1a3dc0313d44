#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "cleaning/preview/FilePreview.h"

/// The exact script of the event that shows a file. Pure.
namespace velto::events {

/// A picture goes as a data URL of one of the known formats: the policy of the page admits no other
/// source, and it is decoded in the engine's own process.
std::string preview(std::int64_t request, std::string_view path, const FilePreview& preview);

/// RFC 4648, with padding.
std::string base64(std::string_view bytes);

}  // namespace velto::events
