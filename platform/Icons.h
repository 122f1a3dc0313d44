#pragma once

#include <optional>
#include <string>

namespace velto {

/// Pictures of files. Blocking; safe from every thread; never throws.
class Icons {
public:
    virtual ~Icons() = default;

    /// The icon of the item at an absolute path as a PNG of `pixels` by `pixels`, in the form
    /// "data:image/png;base64,..."; nothing when none can be made. Linux knows application bundles
    /// (their own icon file), desktop entries and picture files.
    virtual std::optional<std::string> pngDataURL(const std::string& path, int pixels) = 0;
};

}  // namespace velto
