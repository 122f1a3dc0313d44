#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "cleaning/TrashRecords.h"
#include "platform/FileManager.h"
#include "platform/HomeLayout.h"

namespace velto {

/// The rule of the unattended maintenance by which an item came into the trash; kept in
/// "maintenance_taken.json" of the data folder, beside the trash's own records. What it does not
/// know (a pass was cut off, the file is damaged) is kept as long as everything else.
class TakenItems {
public:
    /// Reads the file. Both outlive the object.
    TakenItems(FileManager& files, const HomeLayout& layout);

    /// The rule's id; empty when it is not known.
    std::string ruleOf(const TrashItem& item) const;

    /// Notes the items of an operation; `rules` are rule ids by the path that was moved.
    void note(const Operation& operation, const std::map<std::string, std::string>& rules);

    /// Forgets what is not among `items` any more.
    void keepOnly(const std::vector<TrashItem>& items);

    /// Writes the file when something has changed. A failure is silent: the items are kept as long
    /// as everything else then.
    void save();

private:
    using Key = std::pair<std::string, std::string>;  // operation and item: items' ids are short

    static Key keyOf(const TrashItem& item) { return {item.opID, item.id}; }
    void read();

    FileManager& files_;
    const HomeLayout& layout_;
    std::map<Key, std::string> rules_;
    bool hasChanged_ = false;
};

}  // namespace velto
