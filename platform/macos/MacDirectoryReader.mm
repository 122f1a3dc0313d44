#include "platform/macos/MacDirectoryReader.h"

#include <fcntl.h>
#include <sys/attr.h>
#include <sys/stat.h>
#include <sys/vnode.h>
#include <unistd.h>

#include <cerrno>
#include <utility>
#include <vector>

#include "platform/WithoutCloudDownloads.h"
#include "platform/attribute_buffer.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/same_state.h"
#include "platform/posix/uninterrupted.h"
#include "platform/values/units.h"

namespace velto {
namespace {

static_assert(attributes::commonName == ATTR_CMN_NAME);
static_assert(attributes::commonObjectType == ATTR_CMN_OBJTYPE);
static_assert(attributes::commonModificationTime == ATTR_CMN_MODTIME);
static_assert(attributes::commonAccessTime == ATTR_CMN_ACCTIME);
static_assert(attributes::commonFlags == ATTR_CMN_FLAGS);
static_assert(attributes::commonFileIdentifier == ATTR_CMN_FILEID);
static_assert(attributes::commonError == ATTR_CMN_ERROR);
static_assert(attributes::commonReturned == ATTR_CMN_RETURNED_ATTRS);
static_assert(attributes::folderDataLength == ATTR_DIR_DATALENGTH);
static_assert(attributes::fileLinkCount == ATTR_FILE_LINKCOUNT);
static_assert(attributes::fileAllocatedSize == ATTR_FILE_ALLOCSIZE);  // of all forks
static_assert(attributes::fileDataLength == ATTR_FILE_DATALENGTH);
static_assert(attributes::typeRegular == VREG);
static_assert(attributes::typeFolder == VDIR);
static_assert(attributes::typeSymbolicLink == VLNK);
static_assert(attributes::flagHidden == UF_HIDDEN);
static_assert(sizeof(attribute_set_t) == 5 * sizeof(std::uint32_t));
static_assert(sizeof(attrreference_t) == 2 * sizeof(std::uint32_t));
static_assert(sizeof(timespec) == 2 * sizeof(std::int64_t));

constexpr std::int64_t blockSize = 512;         // st_blocks counts units of 512 bytes (stat(2))
constexpr std::size_t bufferSize = 256 * 1024;  // some 2,000 entries a call

struct MacFolder final : OpenFolder {
    explicit MacFolder(Descriptor opened) : descriptor(std::move(opened)) {}
    Descriptor descriptor;
};

int descriptorOf(OpenFolder& folder) { return static_cast<MacFolder&>(folder).descriptor.number(); }

std::shared_ptr<OpenFolder> opened(int descriptor) {
    if (descriptor < 0) return nullptr;
    return std::make_shared<MacFolder>(Descriptor(descriptor));
}

}  // namespace

std::shared_ptr<OpenFolder> MacDirectoryReader::open(const std::string& path) {
    const WithoutCloudDownloads policy;
    return opened(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

std::shared_ptr<OpenFolder> MacDirectoryReader::openChild(OpenFolder& parent,
                                                          std::string_view name) {
    const WithoutCloudDownloads policy;
    return opened(openat(descriptorOf(parent), std::string(name).c_str(),
                         O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

bool MacDirectoryReader::read(OpenFolder& folder, const ReadOptions& options, EntryList& entries) {
    const WithoutCloudDownloads policy;
    attrlist wanted{};
    wanted.bitmapcount = ATTR_BIT_MAP_COUNT;
    wanted.commonattr = attributes::requestedCommon;
    wanted.fileattr = attributes::requestedFile;
    if (options.sizeEveryEntry) wanted.dirattr = attributes::requestedFolder;
    thread_local std::vector<std::byte> buffer(bufferSize);

    const int descriptor = descriptorOf(folder);
    lseek(descriptor, 0, SEEK_SET);  // so that a folder can be read twice
    while (true) {
        const int count = uninterrupted(
            [&] { return getattrlistbulk(descriptor, &wanted, buffer.data(), buffer.size(), 0); });
        if (count == 0) return true;
        if (count < 0) return false;
        if (!attributes::appendRecords(buffer, static_cast<std::size_t>(count), options, entries)) {
            errno = EIO;
            return false;
        }
    }
}

/// There is one mount for each volume, so that the device tells both.
bool MacDirectoryReader::status(OpenFolder& folder, std::string_view name, FolderStatus& status) {
    struct stat found {};
    const int number = descriptorOf(folder);
    const int result =
        name.empty() ? fstat(number, &found)
                     : fstatat(number, std::string(name).c_str(), &found, AT_SYMLINK_NOFOLLOW);
    if (result != 0) return false;
    if (!S_ISDIR(found.st_mode)) {
        errno = ENOTDIR;
        return false;
    }
    status.device = static_cast<std::uint64_t>(found.st_dev);
    status.mount = 0;
    status.inode = found.st_ino;
    status.allocatedSize = static_cast<std::int64_t>(found.st_blocks) * blockSize;
    const timespec modified = modifiedTime(found);
    status.modified = momentOf(modified.tv_sec, modified.tv_nsec);
    return true;
}

}  // namespace velto
