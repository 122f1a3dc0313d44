#include "platform/linux/JsonUserDefaults.h"

#include <cerrno>
#include <limits>

#include <fmt/format.h>

#include "platform/values/parse_json.h"
#include "platform/values/text.h"

namespace velto {
namespace {

using nlohmann::json;

// Users keep their settings elsewhere and link them; a lost retention period would cost them files.
constexpr ReadLimit limit{.from = ReadFrom::ownThroughLink, .bytes = 1 << 20};

std::optional<DefaultsValue> fromJson(const json& value) {
    switch (value.type()) {
        case json::value_t::boolean:
            return value.get<bool>();
        case json::value_t::number_integer:
            return value.get<std::int64_t>();
        case json::value_t::number_unsigned:
            if (value.get<std::uint64_t>() > std::numeric_limits<std::int64_t>::max()) {
                return value.get<double>();
            }
            return value.get<std::int64_t>();
        case json::value_t::number_float:
            return value.get<double>();
        case json::value_t::string:
            return value.get<std::string>();
        default:
            return std::nullopt;
    }
}

json toJson(const DefaultsValue& value) {
    return std::visit([](const auto& content) { return json(content); }, value);
}

/// Of what is read: of the file that a link leads to.
std::optional<FileAttributes> attributesOf(const FileManager& files, const std::string& path) {
    auto attributes = files.attributes(path);
    if (!attributes || attributes->kind != FileKind::symbolicLink) return attributes;
    try {
        return files.attributes(files.resolved(path));
    } catch (const FileError&) {
        return attributes;  // it leads nowhere
    }
}

bool isSameFile(const std::optional<FileAttributes>& left,
                const std::optional<FileAttributes>& right) {
    if (!left || !right) return !left && !right;
    return left->modified == right->modified && left->logicalSize == right->logicalSize &&
           left->identity == right->identity;
}

}  // namespace

JsonUserDefaults::JsonUserDefaults(FileManager& files, FileMover* locks, Log& log, std::string path)
    : files_(files), locks_(locks), log_(log), path_(std::move(path)) {}

std::optional<DefaultsValue> JsonUserDefaults::value(const std::string& key) const {
    const std::lock_guard lock(mutex_);
    if (const auto changed = unsaved_.find(key); changed != unsaved_.end()) return changed->second;
    refresh();
    const auto found = stored_.find(key);
    return found == stored_.end() ? std::nullopt : fromJson(*found);
}

void JsonUserDefaults::setValue(const std::string& key, DefaultsValue value) {
    const std::lock_guard lock(mutex_);
    unsaved_[key] = std::move(value);
    save();
}

void JsonUserDefaults::remove(const std::string& key) {
    const std::lock_guard lock(mutex_);
    unsaved_[key] = std::nullopt;
    save();
}

void JsonUserDefaults::refresh() const {
    const auto now = attributesOf(files_, path_);
    if (isSameFile(now, seen_) && !unreadable_) return;
    seen_ = now;
    readStored();
}

void JsonUserDefaults::readStored() const {
    stored_ = json::object();
    unreadable_.reset();
    if (!seen_) return;
    try {
        stored_ = parseJson(files_.read(path_, limit));
    } catch (const RefusedFile&) {
        return;  // counts as damaged, and a damaged one as empty
    } catch (const FileError& error) {
        const bool leadsNowhere = error.code() == ENOENT || error.code() == ELOOP;
        if (!leadsNowhere) unreadable_ = error;
        return;
    } catch (const json::exception&) {
        return;
    }
    if (!stored_.is_object()) stored_ = json::object();
}

void JsonUserDefaults::save() {
    try {
        files_.createFolders(parentFolder(path_));
        const auto lock = locks_ != nullptr ? locks_->lock(path_ + ".lock", true) : nullptr;
        saveLocked();
    } catch (const FileError& error) {
        // The values stay in `unsaved_` for the life of the process; the next change tries again.
        log_.line("Velto ▶ no se pudieron guardar los ajustes: " + singleLine(error.what()));
    }
}

/// What another process has saved is read anew: neither time nor length tells for certain that
/// nothing has changed.
void JsonUserDefaults::saveLocked() {
    seen_ = attributesOf(files_, path_);
    readStored();
    if (unreadable_) throw FileError(*unreadable_);
    json content = stored_;
    for (const auto& [key, value] : unsaved_) {
        if (value) {
            content[key] = toJson(*value);
        } else {
            content.erase(key);
        }
    }
    if (content != stored_ || !seen_) {
        files_.writeAtomically(path_,
                               content.dump(2, ' ', false, json::error_handler_t::replace) + "\n");
        stored_ = std::move(content);
        seen_ = attributesOf(files_, path_);
    }
    unsaved_.clear();
}

}  // namespace velto
