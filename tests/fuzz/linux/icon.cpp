#include "fuzz/engine/MemoryFiles.h"
#include "fuzz/engine/Target.h"
#include "platform/linux/LinuxIcons.h"

namespace velto::fuzz {
namespace {

constexpr int pixels = 32;

/// Pictures come from applications, and the system's decoders are not ours: run with limits.
void judge(std::string_view input) {
    const std::string_view inside = pngInIconFile(input, pixels);
    require(inside.empty() || (inside.data() >= input.data() &&
                               inside.data() + inside.size() <= input.data() + input.size()),
            "a picture lies in its file");
    MemoryFiles files;
    files.put("/picture", input);
    const auto url = LinuxIcons(files).pngDataURL("/picture", pixels);
    require(!url || url->starts_with("data:image/png;base64,iVBORw0KGgo"),
            "what comes out is a PNG");
}

const Registration registered("icon", judge);

}  // namespace
}  // namespace velto::fuzz
