// A file system for tests: passes everything on to a folder, and does wrong what it is told to.
//
// usage: velto-passing-volume FOLDER MOUNTPOINT FAULTS [OPTION...]
//
// FAULTS is a file that holds a VolumeFaults. Writes one byte once it is mounted, and ends with the
// process that has started it. Options: plain-rename (cannot rename without replacing),
// ignores-case (of ASCII letters), folds-names (two spellings of one text are one name, whatever
// the case and however its accents are composed), text-names (nothing but UTF-8), no-links,
// no-modes, no-attributes, keeps-holes (tells where a file has no content of its own), coarse-times
// (two seconds), plain-names (none of the characters that such volumes refuse), for-all (every user
// may use it, each with rights of its own).

#define FUSE_USE_VERSION 31

#include <dirent.h>
#include <fcntl.h>
#include <fuse.h>
#include <glib.h>
#include <signal.h>
#include <strings.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/statvfs.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <set>
#include <string>

#include "support/linux/passing_volume/faults.h"

namespace {

using velto::VolumeFaults;

std::string root;
std::set<std::string> options;
VolumeFaults* faults = nullptr;

bool is(const char* option) { return options.contains(option); }

bool ignoresSpelling() { return is("ignores-case") || is("folds-names"); }

/// True when the volume takes both for one name.
bool areAlike(const char* one, const char* other) {
    if (!is("folds-names")) return strcasecmp(one, other) == 0;
    if (!g_utf8_validate(one, -1, nullptr) || !g_utf8_validate(other, -1, nullptr)) return false;
    const auto folded = [](const char* name) {
        char* const composed = g_utf8_normalize(name, -1, G_NORMALIZE_DEFAULT);
        char* const plain = g_utf8_casefold(composed, -1);
        char* const text = g_utf8_normalize(plain, -1, G_NORMALIZE_DEFAULT);
        const std::string result = text;
        g_free(composed);
        g_free(plain);
        g_free(text);
        return result;
    };
    return folded(one) == folded(other);
}

/// The entry that a name stands for where spelling makes no difference; the name itself when none
/// does.
std::string spelling(const std::string& folder, const std::string& name) {
    struct stat status {};
    if (lstat((folder + "/" + name).c_str(), &status) == 0) return name;
    std::string found = name;
    // This look is nobody's.
    const int looked = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOATIME);
    if (DIR* const stream = looked < 0 ? opendir(folder.c_str()) : fdopendir(looked)) {
        while (const dirent* entry = readdir(stream)) {
            if (areAlike(entry->d_name, name.c_str())) found = entry->d_name;
        }
        closedir(stream);
    }
    return found;
}

/// Nowhere for a file that is open and has lost its name.
std::string place(const char* path) {
    if (path == nullptr) return "";
    if (!ignoresSpelling()) return root + path;
    std::string found = root;
    for (std::string rest = path; rest.size() > 1;) {
        rest.erase(0, 1);
        const std::string name = rest.substr(0, rest.find('/'));
        rest.erase(0, name.size());
        found += "/" + spelling(found, name);
    }
    return found;
}

int answer(int result) { return result == -1 ? -errno : 0; }

bool isDisconnected() {
    return faults->action == VolumeFaults::disconnect && faults->count > faults->at;
}

/// A call that looks.
template <typename Call>
int look(Call call) {
    return isDisconnected() ? -faults->error : call();
}

/// A call that changes something.
template <typename Call>
int change(Call call) {
    const bool isIt = faults->count++ == faults->at;
    if (isDisconnected()) return -faults->error;
    if (!isIt || faults->action == VolumeFaults::none) return call();
    if (faults->action == VolumeFaults::refuse) return -faults->error;
    const int result = call();
    if (faults->action == VolumeFaults::vanish) _exit(0);
    return result < 0 ? result : -faults->error;
}

bool isTaken(const char* path) {
    struct stat status {};
    return lstat(place(path).c_str(), &status) == 0;
}

/// Where the names of new things are limited.
int judgeName(const char* path) {
    const char* const name = strrchr(path, '/') + 1;
    if (is("text-names") && !g_utf8_validate(name, -1, nullptr)) return -EILSEQ;
    if (!is("plain-names")) return 0;
    const bool isPlain = strpbrk(name, "\"*:<>?\\|\n") == nullptr;
    return isPlain ? 0 : -EINVAL;
}

void showAs(struct stat& status) {
    if (!is("no-modes")) return;
    status.st_mode = (status.st_mode & S_IFMT) | 0755;
    status.st_uid = geteuid();
    status.st_gid = getegid();
}

/// What was made belongs to who has asked for it.
int handedOver(const char* path, int result) {
    if (result != 0 || !is("for-all")) return result;
    const fuse_context* const asking = fuse_get_context();
    return answer(lchown(place(path).c_str(), asking->uid, asking->gid));
}

void* begin(fuse_conn_info*, fuse_config* config) {
    config->use_ino = 1;
    config->hard_remove = 1;
    config->entry_timeout = config->attr_timeout = config->negative_timeout = 0;
    return nullptr;
}

int getAttributes(const char* path, struct stat* status, fuse_file_info* info) {
    return look([&] {
        const bool isOpen = path == nullptr && info != nullptr;
        const int result = answer(isOpen ? fstat(static_cast<int>(info->fh), status)
                                         : lstat(place(path).c_str(), status));
        showAs(*status);
        return result;
    });
}

int readLink(const char* path, char* target, size_t size) {
    return look([&] {
        const ssize_t length = readlink(place(path).c_str(), target, size - 1);
        if (length >= 0) target[length] = '\0';
        return answer(length < 0 ? -1 : 0);
    });
}

int makeFolder(const char* path, mode_t mode) {
    return change([&] {
        if (const int reason = judgeName(path)) return reason;
        return handedOver(path, answer(mkdir(place(path).c_str(), is("no-modes") ? 0755 : mode)));
    });
}

int makePipe(const char* path, mode_t mode, dev_t device) {
    return change([&] {
        if (const int reason = judgeName(path)) return reason;
        return handedOver(path, answer(mknod(place(path).c_str(), mode, device)));
    });
}

int removeFile(const char* path) {
    return change([&] { return answer(unlink(place(path).c_str())); });
}

int removeFolder(const char* path) {
    return change([&] { return answer(rmdir(place(path).c_str())); });
}

int makeLink(const char* target, const char* path) {
    return change([&] {
        if (const int reason = judgeName(path)) return reason;
        if (is("no-links")) return -EPERM;
        return handedOver(path, answer(symlink(target, place(path).c_str())));
    });
}

int addName(const char* from, const char* to) {
    return change([&] {
        if (const int reason = judgeName(to)) return reason;
        return is("no-links") ? -EPERM : answer(link(place(from).c_str(), place(to).c_str()));
    });
}

int renameTo(const char* from, const char* to, unsigned flags) {
    return change([&] {
        if (flags != 0 && is("plain-rename")) return -EINVAL;
        if (const int reason = judgeName(to)) return reason;
        // Another spelling of the same name: the volume then shows the new one.
        const bool isRespelling = ignoresSpelling() && areAlike(from, to);
        if (flags != 0 && isTaken(to) && !isRespelling) return -EEXIST;
        const std::string target = isRespelling ? root + to : place(to);
        return answer(renameat2(AT_FDCWD, place(from).c_str(), AT_FDCWD, target.c_str(), flags));
    });
}

int changeMode(const char* path, mode_t mode, fuse_file_info*) {
    return change([&] {
        if (is("no-modes")) return (mode & 07000) != 0 ? -EPERM : 0;
        return answer(chmod(place(path).c_str(), mode));
    });
}

int changeOwner(const char* path, uid_t user, gid_t group, fuse_file_info*) {
    return change([&] {
        const bool isOwn = (user == geteuid() || user == static_cast<uid_t>(-1)) &&
                           (group == getegid() || group == static_cast<gid_t>(-1));
        if (is("no-modes")) return isOwn ? 0 : -EPERM;
        return answer(lchown(place(path).c_str(), user, group));
    });
}

int resize(const char* path, off_t size, fuse_file_info* info) {
    return change([&] {
        const bool isOpen = path == nullptr && info != nullptr;
        return answer(isOpen ? ftruncate(static_cast<int>(info->fh), size)
                             : truncate(place(path).c_str(), size));
    });
}

int setTimes(const char* path, const timespec times[2], fuse_file_info*) {
    return change([&] {
        timespec rounded[2] = {times[0], times[1]};
        for (timespec& time : rounded) {
            if (!is("coarse-times") || time.tv_nsec == UTIME_OMIT || time.tv_nsec == UTIME_NOW)
                continue;
            time = {time.tv_sec - time.tv_sec % 2, 0};
        }
        return answer(utimensat(AT_FDCWD, place(path).c_str(), rounded, AT_SYMLINK_NOFOLLOW));
    });
}

int openFile(const char* path, fuse_file_info* info) {
    return look([&] {
        const int file = open(place(path).c_str(), info->flags | O_CLOEXEC);
        if (file < 0) return -errno;
        info->fh = static_cast<std::uint64_t>(file);
        return 0;
    });
}

int createFile(const char* path, mode_t mode, fuse_file_info* info) {
    return change([&] {
        if (const int reason = judgeName(path)) return reason;
        const int file = open(place(path).c_str(), info->flags | O_CLOEXEC,
                              is("no-modes") ? mode_t{0755} : mode);
        if (file < 0) return -errno;
        info->fh = static_cast<std::uint64_t>(file);
        return handedOver(path, 0);
    });
}

int readFile(const char*, char* data, size_t size, off_t offset, fuse_file_info* info) {
    return look([&] {
        const ssize_t length = pread(static_cast<int>(info->fh), data, size, offset);
        return length < 0 ? -errno : static_cast<int>(length);
    });
}

int writeFile(const char*, const char* data, size_t size, off_t offset, fuse_file_info* info) {
    return change([&] {
        const ssize_t length = pwrite(static_cast<int>(info->fh), data, size, offset);
        return length < 0 ? -errno : static_cast<int>(length);
    });
}

off_t seekContent(const char*, off_t offset, int whence, fuse_file_info* info) {
    const off_t found = lseek(static_cast<int>(info->fh), offset, whence);
    return found < 0 ? -errno : found;
}

int volumeFigures(const char*, struct statvfs* figures) {
    return look([&] { return answer(statvfs(root.c_str(), figures)); });
}

int releaseFile(const char*, fuse_file_info* info) { return close(static_cast<int>(info->fh)); }

int syncFile(const char*, int, fuse_file_info*) {
    return change([] { return 0; });
}

int listFolder(const char* path, void* list, fuse_fill_dir_t fill, off_t, fuse_file_info*,
               fuse_readdir_flags) {
    return look([&] {
        DIR* const stream = opendir(place(path).c_str());
        if (stream == nullptr) return -errno;
        while (const dirent* entry = readdir(stream)) {
            struct stat status {};
            status.st_ino = entry->d_ino;
            status.st_mode = static_cast<mode_t>(entry->d_type) << 12;
            fill(list, entry->d_name, &status, 0, fuse_fill_dir_flags{});
        }
        closedir(stream);
        return 0;
    });
}

int setAttribute(const char* path, const char* name, const char* value, size_t size, int flags) {
    return change([&] {
        return is("no-attributes")
                   ? -EOPNOTSUPP
                   : answer(lsetxattr(place(path).c_str(), name, value, size, flags));
    });
}

int getAttribute(const char* path, const char* name, char* value, size_t size) {
    return look([&] {
        if (is("no-attributes")) return -EOPNOTSUPP;
        const ssize_t length = lgetxattr(place(path).c_str(), name, value, size);
        return length < 0 ? -errno : static_cast<int>(length);
    });
}

int listAttributes(const char* path, char* names, size_t size) {
    return look([&] {
        if (is("no-attributes")) return -EOPNOTSUPP;
        const ssize_t length = llistxattr(place(path).c_str(), names, size);
        return length < 0 ? -errno : static_cast<int>(length);
    });
}

int removeAttribute(const char* path, const char* name) {
    return change([&] {
        return is("no-attributes") ? -EOPNOTSUPP : answer(lremovexattr(place(path).c_str(), name));
    });
}

fuse_operations operations() {
    fuse_operations calls{};
    calls.init = begin;
    calls.getattr = getAttributes;
    calls.readlink = readLink;
    calls.mkdir = makeFolder;
    if (is("for-all")) calls.mknod = makePipe;
    calls.unlink = removeFile;
    calls.rmdir = removeFolder;
    calls.symlink = makeLink;
    calls.rename = renameTo;
    calls.link = addName;
    calls.chmod = changeMode;
    calls.chown = changeOwner;
    calls.truncate = resize;
    calls.open = openFile;
    calls.create = createFile;
    calls.read = readFile;
    calls.write = writeFile;
    if (is("keeps-holes")) calls.lseek = seekContent;
    calls.statfs = volumeFigures;
    calls.release = releaseFile;
    calls.fsync = syncFile;
    calls.fsyncdir = syncFile;
    calls.readdir = listFolder;
    calls.setxattr = setAttribute;
    calls.getxattr = getAttribute;
    calls.listxattr = listAttributes;
    calls.removexattr = removeAttribute;
    calls.utimens = setTimes;
    return calls;
}

}  // namespace

int main(int count, char** values) {
    if (count < 4) return 2;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    umask(0);
    root = values[1];
    for (int index = 4; index < count; ++index)
        options.insert(values[index]);
    const int file = open(values[3], O_RDWR | O_CLOEXEC);
    void* const shared =
        mmap(nullptr, sizeof(VolumeFaults), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (file < 0 || shared == MAP_FAILED) return 1;
    faults = static_cast<VolumeFaults*>(shared);

    const fuse_operations calls = operations();
    fuse_args arguments = FUSE_ARGS_INIT(0, nullptr);
    fuse_opt_add_arg(&arguments, values[0]);
    if (is("for-all")) fuse_opt_add_arg(&arguments, "-oallow_other,default_permissions");
    fuse* const volume = fuse_new(&arguments, &calls, sizeof(calls), nullptr);
    if (volume == nullptr || fuse_mount(volume, values[2]) != 0) return 1;
    if (write(STDOUT_FILENO, "m", 1) != 1) return 1;
    close(STDOUT_FILENO);
    return fuse_loop(volume);
}
