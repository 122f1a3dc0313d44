#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

namespace velto {

/// The trash as a person would describe it: files with contents, and a list. Nothing of how it is
/// done. Paths are relative to the home; a content stands for a file of its own.
class TrashModel {
public:
    struct Item {
        std::string id;
        std::string operation;
        std::string path;
        std::string content;
        double taken = 0;
        bool hasVanished = false;  // somebody has removed its file

        bool operator==(const Item&) const = default;
    };

    std::map<std::string, std::string> home;  // path to content
    std::vector<Item> trash;                  // oldest first

    bool canMove(const std::vector<std::string>& paths) const;

    /// `ids` in the order of the paths without repetitions.
    void move(const std::vector<std::string>& paths, const std::vector<std::string>& ids,
              const std::string& operation, double now);

    /// False when the item is not there to be restored.
    bool restore(const std::string& id);
    bool undo(const std::string& operation);
    bool remove(const std::string& id);
    void purge(double cutoff);

    std::vector<Item> itemsOf(const std::string& operation) const;

private:
    std::vector<Item>::iterator find(const std::string& id);
    std::string freePlace(const std::string& path) const;
};

/// Without repetitions, in order.
std::vector<std::string> onceEach(const std::vector<std::string>& paths);

}  // namespace velto
