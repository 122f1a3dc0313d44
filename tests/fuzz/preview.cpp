#include <cstddef>
#include <string>

#include "cleaning/preview/picture_format.h"
#include "cleaning/preview/text_beginning.h"
#include "fuzz/engine/Target.h"
#include "platform/values/text.h"

namespace velto::fuzz {
namespace {

void judgePicture(std::string_view bytes) {
    const auto format = pictureFormat(bytes);
    const auto size = pictureSize(bytes);
    require(!size || format, "what has a size is of a known format");
    if (format) require(format->mediaType.starts_with("image/"), "a picture's type");
    if (size) require(size->width > 0 && size->height > 0, "a picture has pixels");
    // Where a file ends is not seen, so nothing after it can be needed.
    const std::string copy(bytes);
    require(pictureSize(copy) == size, "the same each time");
}

void judgeText(std::string_view bytes, bool isWhole) {
    const auto text = textBeginning(bytes, isWhole);
    if (!text) return;
    require(!text->contains('\0'), "no NUL reaches the page");
    require(validUtf8(*text) == *text, "a text in UTF-8");
    require(text->size() <= 3 * bytes.size(), "each byte becomes one character at most");
    require(textBeginning(*text, true) == text || text->starts_with("\xef\xbb\xbf"),
            "a text stays what it is");
}

void judge(std::string_view input) {
    judgePicture(input);
    judgeText(input, true);
    judgeText(input, false);
}

const Registration registered("preview", judge);

}  // namespace
}  // namespace velto::fuzz
