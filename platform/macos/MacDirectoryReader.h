#pragma once

#include "platform/DirectoryReader.h"

namespace velto {

/// Reads folders with getattrlistbulk(2): names and attributes of many entries with one call. It
/// never makes the system fetch what lies only in the cloud; such a folder cannot be read.
class MacDirectoryReader final : public DirectoryReader {
public:
    std::shared_ptr<OpenFolder> open(const std::string& path) override;
    std::shared_ptr<OpenFolder> openChild(OpenFolder& parent, std::string_view name) override;
    bool read(OpenFolder& folder, const ReadOptions& options, EntryList& entries) override;
    bool status(OpenFolder& folder, std::string_view name, FolderStatus& status) override;
};

}  // namespace velto
