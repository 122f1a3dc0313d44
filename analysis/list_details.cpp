#include "analysis/list_details.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace velto {
namespace {

std::optional<FileAttributes> fileAt(const std::string& path, const FileManager& manager) {
    auto attributes = manager.attributes(path);
    if (attributes && attributes->kind != FileKind::regular) attributes.reset();
    return attributes;
}

void addGroup(ListDetails& details, const DupGroup& group, const FileManager& manager) {
    std::vector<std::pair<FileIdentity, ListDetails::Names>> files;
    for (const std::string& path : group.paths) {
        const auto attributes = fileAt(path, manager);
        if (!attributes) continue;
        details.copies[path] = attributes->logicalSize;
        details.dates[path] = attributes->modified;
        const auto known = std::ranges::find(files, attributes->identity,
                                             &std::pair<FileIdentity, ListDetails::Names>::first);
        if (known == files.end()) {
            files.push_back({attributes->identity, {path}});
        } else {
            known->second.push_back(path);
        }
    }
    for (auto& [identity, names] : files) {
        if (names.size() > 1) details.linked[group.id].push_back(std::move(names));
    }
}

}  // namespace

ListDetails listDetails(const std::vector<BigFile>& files, const std::vector<DupGroup>& groups,
                        const FileManager& manager) {
    ListDetails details;
    for (const BigFile& file : files) {
        if (const auto attributes = fileAt(file.path, manager)) {
            details.files[file.path] = attributes->allocatedSize;
        }
    }
    for (const DupGroup& group : groups)
        addGroup(details, group, manager);
    return details;
}

}  // namespace velto
