#include <algorithm>
#include <array>

#include "platform/text.h"
#include "uninstall/bundle_information.h"

namespace velto {
namespace {

// Elements of a property list that hold text alone.
constexpr std::array<std::string_view, 5> plainElements{"integer", "real", "date", "data",
                                                        "string"};

constexpr std::string_view declaration = R"(<?xml version="1.0" encoding="UTF-8"?>)";
constexpr std::array<std::string_view, 2> documentTypes{
    R"(<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" )"
    R"("http://www.apple.com/DTDs/PropertyList-1.0.dtd">)",
    R"(<!DOCTYPE plist PUBLIC "-//Apple Computer//DTD PLIST 1.0//EN" )"
    R"("http://www.apple.com/DTDs/PropertyList-1.0.dtd">)"};

constexpr std::array<std::string_view, 5> entities{"&amp;", "&lt;", "&gt;", "&quot;", "&apos;"};

constexpr int mostDepth = 50;  // no application nests deeper

/// Reads on through XML that may turn out to be anything.
class Reader {
public:
    explicit Reader(std::string_view text) : rest_(text) {}

    bool atEnd() const { return rest_.empty(); }

    void skipSpace() {
        rest_.remove_prefix(std::min(rest_.size(), rest_.find_first_not_of(" \t\n")));
    }

    /// Takes `word` if it comes next.
    bool take(std::string_view word) {
        if (!rest_.starts_with(word)) return false;
        rest_.remove_prefix(word.size());
        return true;
    }

    /// Takes everything up to `mark`, and the mark.
    std::optional<std::string_view> takeUpTo(std::string_view mark) {
        const std::size_t end = rest_.find(mark);
        if (end == std::string_view::npos) return std::nullopt;
        const std::string_view taken = rest_.substr(0, end);
        rest_.remove_prefix(end + mark.size());
        return taken;
    }

    /// The text up to the next tag, which must be that closing one.
    std::optional<std::string_view> takeText(std::string_view closing) {
        const std::size_t end = rest_.find('<');
        if (end == std::string_view::npos || !rest_.substr(end).starts_with(closing)) {
            return std::nullopt;
        }
        const std::string_view text = rest_.substr(0, end);
        rest_.remove_prefix(end + closing.size());
        return text;
    }

    /// Passes over one value of any kind.
    bool skipValue(int depth = 0) {
        skipSpace();
        if (!take("<")) return false;
        const auto tag = takeUpTo(">");
        if (!tag || depth == mostDepth) return false;
        if (*tag == "true/" || *tag == "false/") return true;
        if (*tag == "array/" || *tag == "dict/" || *tag == "string/") return true;
        if (*tag == "array") return skipArray(depth + 1);
        if (*tag == "dict") return skipDictionary(depth + 1);
        for (std::string_view element : plainElements) {
            if (*tag == element) return skipText("</" + std::string(element) + ">");
        }
        return false;
    }

private:
    bool skipText(std::string_view closing) {
        const auto text = takeText(closing);
        return text && hasKnownEntities(*text);
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

    static bool hasKnownEntities(std::string_view text) {
        for (std::size_t at = text.find('&'); at != std::string_view::npos;
             at = text.find('&', at + 1)) {
            const std::string_view rest = text.substr(at);
            if (std::ranges::none_of(entities, [&](auto one) { return rest.starts_with(one); })) {
                return false;
            }
        }
        return true;
    }

    std::string_view rest_;
};

/// True for a text that stands for itself.
bool isPlain(std::string_view text) {
    return text.find_first_of("&\r") == std::string_view::npos && isValidUtf8(text);
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
