#include "support/system_platform.h"

#include "platform/linux/LinuxDirectoryReader.h"
#include "platform/posix/PosixFileManager.h"

namespace velto {

std::unique_ptr<FileManager> systemFileManager() { return std::make_unique<PosixFileManager>(); }

std::unique_ptr<FileMover> systemFileMover() { return std::make_unique<PosixFileManager>(); }

std::unique_ptr<DirectoryReader> systemDirectoryReader() {
    return std::make_unique<LinuxDirectoryReader>();
}

}  // namespace velto
