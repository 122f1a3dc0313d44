#pragma once

#include <map>
#include <mutex>

#include <nlohmann/json.hpp>

#include "platform/FileManager.h"
#include "platform/FileMover.h"
#include "platform/Log.h"
#include "platform/UserDefaults.h"

namespace velto {

/// The settings store as one JSON file. The file may change under it (the maintenance pass is a
/// process of its own): it is read again when it is another one or has changed, and a save changes
/// only the keys that were set here, under a lock beside the file. A damaged file counts as empty
/// and is replaced at the next save; nothing is saved over one that cannot be read for the moment.
/// Safe from every thread.
class JsonUserDefaults final : public UserDefaults {
public:
    /// `files`, `locks` and `log` outlive the store; without `locks` no other process may change
    /// the file. Nothing is written before the first change.
    JsonUserDefaults(FileManager& files, FileMover* locks, Log& log, std::string path);

    std::optional<DefaultsValue> value(const std::string& key) const override;
    void setValue(const std::string& key, DefaultsValue value) override;
    void remove(const std::string& key) override;

private:
    void refresh() const;
    void readStored() const;
    void save();
    void saveLocked();

    FileManager& files_;
    FileMover* locks_;
    Log& log_;
    std::string path_;
    mutable std::mutex mutex_;
    mutable nlohmann::json stored_ = nlohmann::json::object();  // the file's content
    mutable std::optional<FileAttributes> seen_;                // of the file when it was last read
    mutable std::optional<FileError> unreadable_;               // why it could not be read
    std::map<std::string, std::optional<DefaultsValue>> unsaved_;  // no value: removed
};

}  // namespace velto
