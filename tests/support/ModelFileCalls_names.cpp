#include "support/ModelFileCalls.h"

#include <fcntl.h>

#include <cerrno>

#include "support/model_answers.h"

namespace velto {

int ModelFileCalls::makeFolder(int folder, const char* name, mode_t mode) {
    ModelDisk::Place place;
    if (!reach(folder, name, false, place)) return -1;
    Number made = 0;
    return disk_.make(place, S_IFDIR | (mode & 07777), "", made);
}

int ModelFileCalls::makeLink(const char* target, int folder, const char* name) {
    ModelDisk::Place place;
    if (!reach(folder, name, false, place)) return -1;
    Number made = 0;
    return disk_.make(place, S_IFLNK | 0777, target, made);
}

int ModelFileCalls::readLink(int folder, const char* name, std::string& target) {
    Number number = 0;
    if (!reachInode(folder, name, false, number)) return -1;
    if (!disk_.live().at(number).isLink()) return failedFor(EINVAL);
    target = *disk_.live().at(number).content;
    return 0;
}

int ModelFileCalls::remove(int folder, const char* name, int flags) {
    ModelDisk::Place place;
    if (!reach(folder, name, false, place)) return -1;
    return disk_.remove(place, (flags & AT_REMOVEDIR) != 0);
}

int ModelFileCalls::replace(int fromFolder, const char* from, int toFolder, const char* to) {
    ModelDisk::Place source;
    ModelDisk::Place target;
    if (!reach(fromFolder, from, false, source) || !reach(toFolder, to, false, target)) return -1;
    return disk_.rename(source, target);
}

int ModelFileCalls::rename(int fromFolder, const char* from, int toFolder, const char* to) {
    if (!disk_.knowsExclusiveRename) return failedFor(EINVAL);
    ModelDisk::Place source;
    ModelDisk::Place target;
    if (!reach(fromFolder, from, false, source) || !reach(toFolder, to, false, target)) return -1;
    if (source.inode == 0) return failedFor(ENOENT);
    const ModelImage& live = disk_.live();
    if (live.at(source.folder).volume != live.at(target.folder).volume) return failedFor(EXDEV);
    if (target.inode != 0) return failedFor(EEXIST);
    return disk_.rename(source, target);
}

int ModelFileCalls::addName(int fromFolder, const char* from, int toFolder, const char* to) {
    ModelDisk::Place source;
    ModelDisk::Place target;
    if (!reachInode(fromFolder, from, false, source.inode)) return -1;
    if (!reach(toFolder, to, false, target)) return -1;
    return disk_.addName(source, target);
}

}  // namespace velto
