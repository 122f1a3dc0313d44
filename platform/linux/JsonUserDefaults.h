#pragma once

#include <map>
#include <mutex>

#include <nlohmann/json.hpp>

#include "platform/FileManager.h"
#include "platform/Log.h"
#include "platform/UserDefaults.h"

namespace velto {

/// The settings store as one JSON file. The file may change under it (the maintenance pass is a
/// process of its own): it is read again when its date or size differs, and a save changes only the
/// keys that were set here. A damaged file counts as empty and is replaced at the next save.
/// Safe from every thread.
class JsonUserDefaults final : public UserDefaults {
public:
    /// `files` and `log` outlive the store. Nothing is written before the first change.
    JsonUserDefaults(FileManager& files, Log& log, std::string path);

    std::optional<DefaultsValue> value(const std::string& key) const override;
    void setValue(const std::string& key, DefaultsValue value) override;
    void remove(const std::string& key) override;

private:
    void refresh() const;
    void save();

    FileManager& files_;
    Log& log_;
    std::string path_;
    mutable std::mutex mutex_;
    mutable nlohmann::json stored_ = nlohmann::json::object();  // the file's content
    mutable std::optional<FileAttributes> seen_;                // of the file when it was last read
    std::map<std::string, std::optional<DefaultsValue>> unsaved_;  // no value: removed
};

}  // namespace velto
