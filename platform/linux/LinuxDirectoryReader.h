#pragma once

#include "platform/DirectoryReader.h"

namespace velto {

/// Folders through getdents64 and statx: one listing call per buffer of entries, one attribute call
/// per regular file, none for folders and links.
class LinuxDirectoryReader final : public DirectoryReader {
public:
    std::shared_ptr<OpenFolder> open(const std::string& path) override;
    std::shared_ptr<OpenFolder> openChild(OpenFolder& parent, std::string_view name) override;
    bool read(OpenFolder& folder, const ReadOptions& options, EntryList& entries) override;
    bool status(OpenFolder& folder, std::string_view name, FolderStatus& status) override;
};

}  // namespace velto
