#include <algorithm>
#include <array>

#include "platform/values/text.h"
#include "uninstall/bundle_information.h"

namespace velto {
namespace {

constexpr std::string_view declaration = R"(<?xml version="1.0" encoding="UTF-8"?>)";
constexpr std::array<std::string_view, 2> documentTypes{
    R"(<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" )"
    R"("http://www.apple.com/DTDs/PropertyList-1.0.dtd">)",
    R"(<!DOCTYPE plist PUBLIC "-//Apple Computer//DTD PLIST 1.0//EN" )"
    R"("http://www.apple.com/DTDs/PropertyList-1.0.dtd">)"};

constexpr std::array<std::string_view, 5> entities{"&amp;", "&lt;", "&gt;", "&quot;", "&apos;"};

constexpr int mostDepth = 50;  // no application nests deeper

/// Reads on through XML that may turn out to be anything. Byte by byte: the texts are short, and of
/// hundreds of files most bytes are only passed over.
class Reader {
public:
    explicit Reader(std::string_view text) : next_(text.data()), end_(text.data() + text.size()) {}

    bool atEnd() const { return next_ == end_; }

    void skipSpace() {
        while (next_ != end_ && (*next_ == ' ' || *next_ == '\t' || *next_ == '\n'))
            ++next_;
    }

    /// Takes `word` if it comes next.
    bool take(std::string_view word) {
        if (!std::string_view(next_, end_).starts_with(word)) return false;
        next_ += word.size();
        return true;
    }

    /// The text up to the next tag, which must be that closing one.
    std::optional<std::string_view> takeText(std::string_view closing) {
        const char* const begin = next_;
        while (next_ != end_ && *next_ != '<')
            ++next_;
        const std::string_view text(begin, next_);
        return take(closing) ? std::optional(text) : std::nullopt;
    }

    /// Passes over one value of any kind.
    bool skipValue(int depth = 0) {
        skipSpace();
        if (depth == mostDepth || !take("<") || atEnd()) return false;
        switch (*next_) {
            case 's':
                return take("string>") ? skipText("</string>") : take("string/>");
            case 'a':
                return take("array>") ? skipArray(depth + 1) : take("array/>");
            case 'd':
                if (take("dict>")) return skipDictionary(depth + 1);
                if (take("data>")) return skipText("</data>");
                return take("date>") ? skipText("</date>") : take("dict/>");
            case 'i':
                return take("integer>") && skipText("</integer>");
            case 'r':
                return take("real>") && skipText("</real>");
            default:
                return take("true/>") || take("false/>");
        }
    }

private:
    bool skipText(std::string_view closing) {
        while (next_ != end_ && *next_ != '<') {
            if (*next_ == '&' && !isKnownEntity()) return false;
            ++next_;
        }
        return take(closing);
    }

    bool skipArray(int depth) {
        while (true) {
            skipSpace();
            if (take("</array>")) return true;
            if (!skipValue(depth)) return false;
        }
    }

    bool skipDictionary(int depth) {
        while (true) {
            skipSpace();
            if (take("</dict>")) return true;
            if (!take("<key>") || !skipText("</key>") || !skipValue(depth)) return false;
        }
    }

    bool isKnownEntity() const {
        const std::string_view rest(next_, end_);
        return std::ranges::any_of(entities, [&](auto one) { return rest.starts_with(one); });
    }

    const char* next_;
    const char* end_;
};

/// True for a text that stands for itself.
bool isPlain(std::string_view text) {
    bool isAscii = true;
    for (const char each : text) {
        if (each == '&' || each == '\r') return false;
        isAscii = isAscii && (each & 0x80) == 0;
    }
    return isAscii || isValidUtf8(text);
}

/// Moves into the outermost dictionary.
bool enterDictionary(Reader& reader) {
    if (!reader.take(declaration)) return false;
    reader.skipSpace();
    for (std::string_view type : documentTypes) {
        if (reader.take(type)) break;
    }
    reader.skipSpace();
    if (!reader.take("<plist version=\"1.0\">")) return false;
    reader.skipSpace();
    return reader.take("<dict>");
}

bool leaveDictionary(Reader& reader) {
    reader.skipSpace();
    if (!reader.take("</plist>")) return false;
    reader.skipSpace();
    return reader.atEnd();
}

}  // namespace

std::optional<BundleInformation> quickBundleInformation(std::string_view bytes) {
    Reader reader(bytes);
    if (bytes.find('\0') != std::string_view::npos || !enterDictionary(reader)) {
        return std::nullopt;
    }
    BundleInformation information;
    std::array<bool, bundleInformationKeys.size()> seen{};
    while (true) {
        reader.skipSpace();
        if (reader.take("</dict>")) break;
        if (!reader.take("<key>")) return std::nullopt;
        const auto key = reader.takeText("</key>");
        if (!key || !isPlain(*key)) return std::nullopt;
        reader.skipSpace();
        std::size_t wanted = 0;
        while (wanted < seen.size() && bundleInformationKeys[wanted].first != *key)
            ++wanted;
        if (wanted == seen.size()) {
            if (!reader.skipValue()) return std::nullopt;
            continue;
        }
        // Which of two values counts is the parser's to say, and so is what is no text.
        if (seen[wanted] || !reader.take("<string>")) return std::nullopt;
        const auto text = reader.takeText("</string>");
        if (!text || !isPlain(*text)) return std::nullopt;
        seen[wanted] = true;
        information.*bundleInformationKeys[wanted].second = std::string(*text);
    }
    if (!leaveDictionary(reader)) return std::nullopt;
    return information;
}

}  // namespace velto
