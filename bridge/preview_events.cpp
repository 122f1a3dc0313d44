#include "bridge/preview_events.h"

#include <nlohmann/json.hpp>

#include "bridge/events.h"
#include "platform/values/path_text.h"

namespace velto::events {
namespace {

std::string_view previewWord(FilePreview::Reason reason) {
    using Reason = FilePreview::Reason;
    switch (reason) {
        case Reason::gone:
            return "gone";
        case Reason::refused:
            return "refused";
        case Reason::closed:
            return "closed";
        case Reason::inCloud:
            return "inCloud";
        case Reason::tooLong:
            return "tooLong";
        case Reason::tooLarge:
            return "tooLarge";
        case Reason::damaged:
            return "damaged";
        case Reason::noKind:
            return "noKind";
        case Reason::other:
            break;
    }
    return "other";
}

}  // namespace

std::string base64(std::string_view bytes) {
    constexpr std::string_view letters =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        const std::string_view three = bytes.substr(at, 3);
        std::uint32_t bits = 0;
        for (std::size_t index = 0; index < 3; ++index)
            bits =
                bits << 8 | (index < three.size() ? static_cast<unsigned char>(three[index]) : 0u);
        for (std::size_t index = 0; index < 4; ++index)
            text += index <= three.size() ? letters[bits >> (18 - 6 * index) & 63] : '=';
    }
    return text;
}

std::string preview(std::int64_t request, std::string_view path, const FilePreview& preview) {
    nlohmann::json record = {{"request", request},
                             {"path", pathText(path)},
                             {"bytes", preview.bytes},
                             {"modified", preview.modified}};
    if (preview.pixels) {
        record["width"] = preview.pixels->width;
        record["height"] = preview.pixels->height;
    }
    switch (preview.kind) {
        case FilePreview::Kind::text:
            record["kind"] = "text";
            record["text"] = preview.text;
            record["whole"] = preview.isWhole;
            break;
        case FilePreview::Kind::picture:
            record["kind"] = "picture";
            record["source"] =
                "data:" + std::string(preview.mediaType) + ";base64," + base64(preview.content);
            break;
        case FilePreview::Kind::none:
            record["kind"] = "none";
            record["reason"] = previewWord(preview.reason);
            break;
    }
    return call("onPreview", literal(record));
}

}  // namespace velto::events
