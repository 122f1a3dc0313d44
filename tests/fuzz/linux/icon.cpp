#include "fuzz/engine/Target.h"
#include "platform/linux/LinuxIcons.h"
#include "platform/linux/icon_worker/draw_picture.h"

namespace velto::fuzz {
namespace {

constexpr int pixels = 32;

/// Pictures come from applications, and the system's decoders are not ours: run with limits.
void judge(std::string_view input) {
    const std::string_view inside = pngInIconFile(input, pixels);
    require(inside.empty() || (inside.data() >= input.data() &&
                               inside.data() + inside.size() <= input.data() + input.size()),
            "a picture lies in its file");
    const std::string drawn = drawPicture(inside.empty() ? input : inside, pixels);
    require(drawn.empty() || drawn.starts_with("\x89PNG\r\n"), "what comes out is a PNG");
}

const Registration registered("icon", judge);

}  // namespace
}  // namespace velto::fuzz
