#include "cleaning/TrashJournal.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>

#include <nlohmann/json.hpp>

#include "platform/values/json_fields.h"
#include "platform/values/parse_json.h"
#include "platform/values/path_text.h"
#include "platform/values/write_json.h"

namespace velto {
namespace {

using nlohmann::json;
using Kind = JournalEntry::Kind;

struct KindName {
    Kind kind;
    std::string_view name;
};
constexpr std::array<KindName, 8> kindNames{{
    {Kind::move, "move"},
    {Kind::restore, "restore"},
    {Kind::remove, "remove"},
    {Kind::purge, "purge"},
    {Kind::empty, "empty"},
    {Kind::rest, "rest"},
    {Kind::keep, "keep"},
    {Kind::putBack, "putBack"},
}};

nlohmann::ordered_json toJson(const JournalEntry& entry) {
    const auto name = std::ranges::find(kindNames, entry.kind, &KindName::kind);
    nlohmann::ordered_json object{
        {"kind", name->name}, {"operation", toJson(entry.operation)}, {"itemIDs", entry.itemIDs}};
    if (entry.steps) {
        object["steps"] = {{"itemID", entry.steps->itemID},
                           {"target", pathText(entry.steps->target)}};
        if (!entry.steps->volume.empty()) object["steps"]["volume"] = entry.steps->volume;
    }
    if (!entry.volumes.empty()) object["volumes"] = entry.volumes;
    return object;
}

std::optional<JournalEntry> entryFrom(const json& object) {
    const auto name = field<std::string>(object, "kind");
    const auto kind = std::ranges::find(kindNames, name, &KindName::name);
    if (kind == kindNames.end()) return std::nullopt;
    JournalEntry entry{.kind = kind->kind,
                       .operation = operationFromJson(object.at("operation")),
                       .itemIDs = field<std::vector<std::string>>(object, "itemIDs"),
                       .steps = std::nullopt,
                       .volumes = {}};
    if (object.contains("steps")) {
        const json& steps = object["steps"];
        entry.steps = {
            .itemID = field<std::string>(steps, "itemID"),
            .target = pathBytes(field<std::string>(steps, "target")),
            .volume = steps.contains("volume") ? field<std::string>(steps, "volume") : ""};
    }
    if (object.contains("volumes")) {
        entry.volumes = field<std::map<std::string, std::string>>(object, "volumes");
    }
    return entry;
}

}  // namespace

/// The file's content; nothing when there is none or when it is none of ours.
std::optional<json> TrashJournal::readFile(const std::string& path) const {
    // A link leads to what somebody else has written.
    const auto file = files_.attributes(path);
    if (file && file->kind == FileKind::symbolicLink) return std::nullopt;
    try {
        return parseJson(files_.read(path, trashRecordsLimit));
    } catch (const RefusedFile&) {
        return std::nullopt;  // nor is this ours
    } catch (const FileError& error) {
        if (files_.exists(path)) throw;
        return std::nullopt;
    } catch (const json::exception&) {
        return std::nullopt;  // not ours: it is written whole or not at all
    }
}

std::optional<JournalEntry> TrashJournal::read() const {
    const auto content = readFile(path_);
    if (!content) return std::nullopt;
    try {
        return entryFrom(*content);
    } catch (const json::exception&) {
        return std::nullopt;
    }
}

std::vector<JournalEntry> TrashJournal::readWaiting() const {
    const auto content = readFile(waitingPath_);
    if (!content) return {};
    std::vector<JournalEntry> entries;
    try {
        for (const auto& entry : listFrom(*content, "entries", entryFrom)) {
            if (entry) entries.push_back(*entry);
        }
    } catch (const json::exception&) {
        return {};
    }
    return entries;
}

void TrashJournal::write(const JournalEntry& entry) {
    try {
        files_.writeAtomically(path_, writeJson(toJson(entry)));
    } catch (const json::exception&) {
        throw FileError("write", path_, EILSEQ);  // a text that is not UTF-8
    }
}

void TrashJournal::writeWaiting(const std::vector<JournalEntry>& entries) {
    if (entries.empty()) return files_.removeAll(waitingPath_);
    auto list = nlohmann::ordered_json::array();
    for (const JournalEntry& entry : entries)
        list.push_back(toJson(entry));
    try {
        files_.writeAtomically(waitingPath_, writeJson(nlohmann::ordered_json{{"entries", list}}));
    } catch (const json::exception&) {
        throw FileError("write", waitingPath_, EILSEQ);
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
