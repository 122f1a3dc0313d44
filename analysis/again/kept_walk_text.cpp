#include "analysis/again/kept_walk_text.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "analysis/folders/number_text.h"
#include "platform/values/text.h"

namespace velto::kept_walk_text {
namespace {

using number_text::append;
using number_text::appendText;
using number_text::Reader;

constexpr std::string_view keptHeading = "Velto walk 1\n";
constexpr std::size_t shortestFolder = 12;  // a byte for each number, and none for the name
constexpr double moment = 1e6;              // times are kept in millionths of a second

constexpr std::uint64_t hiddenBit = 1;
constexpr std::uint64_t readAgainBit = 2;

void appendMoment(std::string& text, double time) {
    append(text, static_cast<std::int64_t>(std::llround(time * moment)));
}

double readMoment(Reader& reader) {
    return static_cast<double>(reader.number<std::int64_t>()) / moment;
}

KeptStamp readStamp(Reader& reader) {
    KeptStamp stamp;
    stamp.conditions = reader.text();
    stamp.mark.volume = reader.text();
    stamp.mark.event = reader.number<std::uint64_t>();
    stamp.walked = readMoment(reader);
    stamp.whole = readMoment(reader);
    return stamp;
}

void appendFolder(std::string& text, const KeptFolder& folder) {
    const std::uint64_t bits =
        (folder.isHidden ? hiddenBit : 0) | (folder.isReadAgain ? readAgainBit : 0);
    append(text, std::uint64_t{folder.children});
    appendText(text, folder.name);
    append(text, static_cast<std::uint64_t>(folder.facts.state));
    append(text, folder.facts.inode);
    append(text, folder.facts.ownBytes);
    append(text, std::uint64_t{folder.facts.ownFiles});
    append(text, std::uint64_t{folder.facts.unreadable});
    append(text, std::uint64_t{folder.facts.latest});
    append(text, std::uint64_t{folder.mark} << 2 | bits);
    append(text, folder.hiddenBytes);
    append(text, folder.unreadable);
    append(text, std::uint64_t{folder.counts});
    append(text, std::uint64_t{folder.candidates});
}

KeptFolder readFolder(Reader& reader) {
    KeptFolder folder;
    folder.children = reader.number<std::uint32_t>();
    folder.name = reader.text();
    folder.facts.state = static_cast<FolderState>(
        reader.number(static_cast<std::uint64_t>(FolderState::alreadyWalked)));
    folder.facts.inode = reader.number<std::uint64_t>();
    folder.facts.ownBytes = reader.number<std::int64_t>();
    folder.facts.ownFiles = reader.number<std::uint32_t>();
    folder.facts.unreadable = reader.number<std::uint32_t>();
    folder.facts.latest = reader.number<std::uint32_t>();
    const std::uint64_t mark = reader.number(std::uint64_t{UINT32_MAX} << 2 | 3);
    folder.mark = static_cast<std::uint32_t>(mark >> 2);
    folder.isHidden = (mark & hiddenBit) != 0;
    folder.isReadAgain = (mark & readAgainBit) != 0;
    folder.hiddenBytes = reader.number<std::int64_t>();
    folder.unreadable = reader.number<std::int64_t>();
    folder.counts = reader.number(categoryCount) & 0xFF;
    folder.candidates = reader.number<std::uint32_t>();
    return folder;
}

void readFiles(Reader& reader, KeptFolder& folder, KeptWalk& walk) {
    folder.firstCount = static_cast<std::uint32_t>(walk.counts.size());
    folder.firstCandidate = static_cast<std::uint32_t>(walk.candidates.size());
    for (std::uint32_t index = 0; index < folder.counts && reader.isGood(); ++index) {
        KeptCount count;
        count.category = static_cast<Category>(reader.number(categoryCount - 1));
        count.bytes = reader.number<std::int64_t>();
        count.files = reader.number<std::int64_t>();
        walk.counts.push_back(count);
    }
    for (std::uint32_t index = 0; index < folder.candidates && reader.isGood(); ++index) {
        KeptCandidate file;
        file.name = reader.text();
        file.bytes = reader.number<std::int64_t>();
        file.length = reader.number<std::int64_t>();
        if (!isComponent(file.name)) reader.fail();
        walk.candidates.push_back(file);
    }
}

/// The folders, each after the one that holds it.
void readFolders(Reader& reader, KeptWalk& walk) {
    const auto count = reader.number<std::uint32_t>();
    if (count == 0 || count > reader.left() / shortestFolder) {
        reader.fail();
        return;
    }
    walk.folders.reserve(count);
    std::uint64_t next = 1;
    std::vector<std::uint32_t> parents(count, KeptFolder::none);
    for (std::uint32_t index = 0; index < count && reader.isGood(); ++index) {
        KeptFolder folder = readFolder(reader);
        folder.parent = parents[index];
        folder.firstChild = static_cast<std::uint32_t>(std::min<std::uint64_t>(next, count));
        const bool isHome = index == 0;
        const bool isNamed = isHome ? folder.name.starts_with('/') : isComponent(folder.name);
        const bool isKnown = isHome || folder.parent < index;
        const bool isInOrder = isHome || walk.folders.back().parent != folder.parent ||
                               walk.folders.back().name < folder.name;
        const bool holdsFolders = folder.children == 0 || folder.wasEntered();
        if (!isNamed || !isKnown || !isInOrder || !holdsFolders) reader.fail();
        if (next + folder.children > count) reader.fail();
        if (!reader.isGood()) return;
        std::fill_n(parents.begin() + static_cast<std::ptrdiff_t>(next), folder.children, index);
        next += folder.children;
        readFiles(reader, folder, walk);
        walk.folders.push_back(folder);
    }
    if (next != count) reader.fail();
}

}  // namespace

std::string encode(const KeptStamp& stamp, const KeptWalk& walk) {
    std::string text(keptHeading);
    appendText(text, stamp.conditions);
    appendText(text, stamp.mark.volume);
    append(text, stamp.mark.event);
    appendMoment(text, stamp.walked);
    appendMoment(text, stamp.whole);
    append(text, std::uint64_t{walk.linked.size()});
    for (const std::uint64_t inode : walk.linked)
        append(text, inode);
    append(text, std::uint64_t{walk.folders.size()});
    for (const KeptFolder& folder : walk.folders) {
        appendFolder(text, folder);
        for (std::uint32_t place = 0; place < folder.counts; ++place) {
            const KeptCount& count = walk.counts[folder.firstCount + place];
            append(text, static_cast<std::uint64_t>(count.category));
            append(text, count.bytes);
            append(text, count.files);
        }
        for (std::uint32_t place = 0; place < folder.candidates; ++place) {
            const KeptCandidate& file = walk.candidates[folder.firstCandidate + place];
            appendText(text, file.name);
            append(text, file.bytes);
            append(text, file.length);
        }
    }
    text += number_text::checksumOf(text);
    return text;
}

std::optional<KeptStamp> decodeStamp(std::string_view text) {
    if (!text.starts_with(keptHeading)) return std::nullopt;
    Reader reader(text.substr(keptHeading.size()));
    KeptStamp stamp = readStamp(reader);
    return reader.isGood() ? std::optional(std::move(stamp)) : std::nullopt;
}

std::optional<Decoded> decode(std::string_view text) {
    if (text.size() < keptHeading.size() + number_text::checksumLength ||
        !text.starts_with(keptHeading)) {
        return std::nullopt;
    }
    const std::string_view body = text.substr(0, text.size() - number_text::checksumLength);
    if (text.substr(body.size()) != number_text::checksumOf(body)) return std::nullopt;

    Reader reader(body.substr(keptHeading.size()));
    Decoded decoded;
    decoded.stamp = readStamp(reader);
    const auto linked = reader.number<std::uint64_t>();
    if (linked > reader.left()) return std::nullopt;
    decoded.walk.linked.reserve(linked);
    for (std::uint64_t index = 0; index < linked && reader.isGood(); ++index)
        decoded.walk.linked.push_back(reader.number<std::uint64_t>());
    readFolders(reader, decoded.walk);
    const bool isWhole = reader.isGood() && reader.left() == 0;
    if (!isWhole || !std::ranges::is_sorted(decoded.walk.linked)) return std::nullopt;
    return decoded;
}

}  // namespace velto::kept_walk_text
