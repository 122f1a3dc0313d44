#pragma once

#include <memory>
#include <optional>
#include <string>

#include "cleaning/TrashRecords.h"
#include "platform/FileManager.h"
#include "platform/FileMover.h"
#include "platform/values/text.h"

namespace velto {

/// The manifest file and the version of it that the lists in memory stand for.
class TrashManifest {
public:
    /// `path` lies in the trash folder.
    TrashManifest(FileManager& files, FileMover& mover, std::string path)
        : files_(files), mover_(mover), path_(std::move(path)) {}

    /// True when the lists were read and nobody has changed the file since.
    bool isCurrent() const;

    /// Reads the file unless it is current. When it cannot be read or is damaged the lists stay as
    /// they are: empty at first, and the next save overwrites it. A damaged file is not read again.
    /// When the whole trash is gone the lists become empty. False when another process has changed
    /// the file and it cannot be read: then nothing may be saved over it.
    bool refresh(Manifest& lists);

    /// Gives up what was never saved and takes the file's word instead. False, the lists as they
    /// were, when it cannot be read.
    bool reload(Manifest& lists);

    /// Writes the lists, making the trash folder when it is missing. Returns why it failed: a link
    /// in the place of that folder is not written through.
    std::optional<FileError> save(const Manifest& lists);

    /// False while the lists know more than the file: the last save has failed, or there was none
    /// since `noteChange`.
    bool isSaved() const { return isSaved_; }
    void noteChange() { isSaved_ = false; }

private:
    bool tryToRead(Manifest& lists);
    std::string folder() const { return parentFolder(path_); }

    FileManager& files_;
    FileMover& mover_;
    std::string path_;
    bool loaded_ = false;
    bool isSaved_ = true;
    std::unique_ptr<FileVersion> version_;  // null: there was no file
};

}  // namespace velto
