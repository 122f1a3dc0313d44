#pragma once

#include "platform/Icons.h"

namespace velto {

/// The icons that the Finder shows.
class MacIcons final : public Icons {
public:
    std::optional<std::string> pngDataURL(const std::string& path, int pixels) override;
};

}  // namespace velto
