#include "cleaning/TrashJournal.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>

#include <nlohmann/json.hpp>

#include "platform/values/json_fields.h"
#include "platform/values/parse_json.h"
#include "platform/values/path_text.h"

namespace velto {
namespace {

using nlohmann::json;
using Kind = JournalEntry::Kind;

struct KindName {
    Kind kind;
    std::string_view name;
};
constexpr std::array<KindName, 5> kindNames{{
    {Kind::move, "move"},
    {Kind::restore, "restore"},
    {Kind::remove, "remove"},
    {Kind::purge, "purge"},
    {Kind::empty, "empty"},
}};

nlohmann::ordered_json toJson(const JournalEntry& entry) {
    const auto name = std::ranges::find(kindNames, entry.kind, &KindName::kind);
    nlohmann::ordered_json object{
        {"kind", name->name}, {"operation", toJson(entry.operation)}, {"itemIDs", entry.itemIDs}};
    if (entry.steps) {
        object["steps"] = {{"itemID", entry.steps->itemID},
                           {"target", pathText(entry.steps->target)}};
    }
    return object;
}

std::optional<JournalEntry> entryFrom(const json& object) {
    const auto name = field<std::string>(object, "kind");
    const auto kind = std::ranges::find(kindNames, name, &KindName::name);
    if (kind == kindNames.end()) return std::nullopt;
    JournalEntry entry{.kind = kind->kind,
                       .operation = operationFromJson(object.at("operation")),
                       .itemIDs = field<std::vector<std::string>>(object, "itemIDs"),
                       .steps = std::nullopt};
    if (object.contains("steps")) {
        const json& steps = object["steps"];
        entry.steps = {.itemID = field<std::string>(steps, "itemID"),
                       .target = pathBytes(field<std::string>(steps, "target"))};
    }
    return entry;
}

}  // namespace

std::optional<JournalEntry> TrashJournal::read() const {
    // A link leads to what somebody else has written.
    const auto file = files_.attributes(path_);
    if (file && file->kind == FileKind::symbolicLink) return std::nullopt;
    try {
        return entryFrom(parseJson(files_.read(path_, trashRecordsLimit)));
    } catch (const RefusedFile&) {
        return std::nullopt;  // nor is this ours
    } catch (const FileError& error) {
        if (files_.exists(path_)) throw;
        return std::nullopt;
    } catch (const json::exception&) {
        return std::nullopt;  // not ours: it is written whole or not at all
    }
}

void TrashJournal::write(const JournalEntry& entry) {
    try {
        files_.writeAtomically(path_, toJson(entry).dump());
    } catch (const json::exception&) {
        throw FileError("write", path_, EILSEQ);  // a text that is not UTF-8
    }
}

void TrashJournal::clear() {
    try {
        files_.removeAll(path_);
    } catch (const FileError&) {
        // See the declaration.
    }
}

}  // namespace velto
