#include "analysis/growth/GrowthStore.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <utility>

#include <fmt/format.h>

#include "analysis/growth/thinning.h"
#include "cleaning/own_folder.h"
#include "platform/values/text.h"

namespace velto {
namespace {

constexpr std::string_view ending = ".growth";
constexpr std::size_t digits = 12;

std::string nameOf(std::int64_t moment) { return fmt::format("{:012}{}", moment, ending); }

/// Nothing for a name that is none of a snapshot.
std::optional<std::int64_t> momentOf(std::string_view name) {
    if (name.size() != digits + ending.size() || !name.ends_with(ending)) return std::nullopt;
    std::int64_t moment = 0;
    const char* const end = name.data() + digits;
    const auto [stop, error] = std::from_chars(name.data(), end, moment);
    if (error != std::errc() || stop != end || moment < 0) return std::nullopt;
    return moment;
}

std::vector<StoredSnapshot> storedIn(FileMover& mover, const FolderHandle& folder) {
    std::vector<StoredSnapshot> stored;
    for (const std::string& name : mover.list(folder)) {
        const auto moment = momentOf(name);
        if (!moment) continue;
        const auto attributes = mover.attributes(folder, name);
        // What else stands under such a name is nobody's snapshot, and not ours to remove.
        if (!attributes || attributes->kind != FileKind::regular) continue;
        stored.push_back({.moment = *moment, .bytes = attributes->logicalSize});
    }
    std::ranges::sort(stored, {}, &StoredSnapshot::moment);
    return stored;
}

}  // namespace

GrowthStore::GrowthStore(FileManager& files, FileMover& mover, const HomeLayout& layout)
    : files_(files), mover_(mover), folder_(layout.dataFolder + "/Growth") {}

std::unique_ptr<FolderHandle> GrowthStore::open() const { return openOwnFolder(mover_, folder_); }

void GrowthStore::add(const GrowthSnapshot& snapshot) {
    const std::string name = nameOf(snapshot.facts().moment);
    const auto text = snapshot.encoded();
    if (!text) throw FileError("write", folder_ + "/" + name, EFBIG);
    files_.createFolders(parentFolder(folder_));
    const auto folder = makeOwnFolder(mover_, folder_);
    mover_.writeAtomically(*folder, name, *text);
    std::vector<StoredSnapshot> stored = storedIn(mover_, *folder);
    // Those of the future were made under another clock, or this one is: they wait for their time.
    std::erase_if(stored, [&](const StoredSnapshot& other) {
        return other.moment > snapshot.facts().moment;
    });
    removeAll(*folder, superfluousSnapshots(std::move(stored)));
}

void GrowthStore::removeAll(const FolderHandle& folder, const std::vector<std::int64_t>& moments) {
    std::optional<FileError> failure;
    for (const std::int64_t moment : moments) {
        try {
            mover_.removeAll(folder, nameOf(moment));
        } catch (const FileError& error) {
            if (!failure) failure = error;
        }
    }
    if (failure) throw FileError(*failure);
}

std::vector<std::int64_t> GrowthStore::moments() const {
    std::vector<std::int64_t> found;
    try {
        if (const auto folder = open()) {
            for (const StoredSnapshot& stored : storedIn(mover_, *folder))
                found.push_back(stored.moment);
        }
    } catch (const FileError&) {
        found.clear();  // out of reach: there is nothing to compare with
    }
    return found;
}

std::shared_ptr<const GrowthSnapshot> GrowthStore::load(std::int64_t moment) const {
    try {
        auto read = GrowthSnapshot::decoded(
            files_.read(folder_ + "/" + nameOf(moment), ownFile(GrowthSnapshot::longest)));
        if (!read || read->facts().moment != moment) return nullptr;
        return std::make_shared<const GrowthSnapshot>(std::move(*read));
    } catch (const FileError&) {
        return nullptr;  // removed meanwhile, refused, or out of reach
    }
}

void GrowthStore::forget() {
    const auto folder = open();
    if (!folder) return;
    std::vector<std::int64_t> all;
    for (const StoredSnapshot& stored : storedIn(mover_, *folder))
        all.push_back(stored.moment);
    removeAll(*folder, all);
    mover_.sync(*folder);
}

}  // namespace velto
