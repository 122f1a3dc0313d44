#pragma once

#include <memory>

#include "platform/DirectoryReader.h"
#include "platform/FileManager.h"
#include "platform/FileMover.h"

namespace velto {

/// This machine's own file system, for tests that run over a made home.
std::unique_ptr<FileManager> systemFileManager();
std::unique_ptr<FileMover> systemFileMover();
std::unique_ptr<DirectoryReader> systemDirectoryReader();

}  // namespace velto
