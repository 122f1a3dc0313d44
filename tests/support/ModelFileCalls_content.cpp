#include "support/ModelFileCalls.h"

#include <fcntl.h>

#include <cerrno>
#include <utility>

#include "support/model_answers.h"

namespace velto {

ModelFileCalls::Number ModelFileCalls::content(int file, bool writes) {
    const Handle* opened = handle(file);
    if (opened == nullptr) return 0;
    const bool isWritten = (opened->flags & O_ACCMODE) != O_RDONLY;
    const bool isRead = (opened->flags & O_ACCMODE) != O_WRONLY;
    const bool isAllowed = !isPassedThrough(opened->flags) && (writes ? isWritten : isRead);
    if (disk_.live().at(opened->inode).isFolder()) {
        errno = EISDIR;
        return 0;
    }
    if (!isAllowed) errno = EBADF;
    return isAllowed ? opened->inode : 0;
}

ssize_t ModelFileCalls::get(Number file, void* buffer, std::size_t size, std::size_t offset) const {
    const std::string& text = *disk_.live().at(file).content;
    if (offset >= text.size()) return 0;
    return static_cast<ssize_t>(text.copy(static_cast<char*>(buffer), size, offset));
}

ssize_t ModelFileCalls::put(Number file, const void* data, std::size_t size, std::size_t offset) {
    std::string text = *disk_.live().at(file).content;
    if (text.size() < offset + size) text.resize(offset + size);
    text.replace(offset, size, static_cast<const char*>(data), size);
    disk_.setContent(file, std::move(text));
    return static_cast<ssize_t>(size);
}

ssize_t ModelFileCalls::read(int file, void* buffer, std::size_t size) {
    const Number number = content(file, false);
    if (number == 0) return -1;
    Handle& opened = *handle(file);
    const ssize_t length = get(number, buffer, size, opened.offset);
    opened.offset += static_cast<std::size_t>(length);
    return length;
}

ssize_t ModelFileCalls::write(int file, const void* data, std::size_t size) {
    const Number number = content(file, true);
    if (number == 0) return -1;
    Handle& opened = *handle(file);
    opened.offset += size;
    return put(number, data, size, opened.offset - size);
}

ssize_t ModelFileCalls::readAt(int file, void* buffer, std::size_t size, off_t offset) {
    const Number number = content(file, false);
    return number == 0 ? -1 : get(number, buffer, size, static_cast<std::size_t>(offset));
}

ssize_t ModelFileCalls::writeAt(int file, const void* data, std::size_t size, off_t offset) {
    const Number number = content(file, true);
    return number == 0 ? -1 : put(number, data, size, static_cast<std::size_t>(offset));
}

/// Without holes: content up to the end.
off_t ModelFileCalls::seek(int file, off_t offset, int whence) {
    const Handle* opened = handle(file);
    if (opened == nullptr) return -1;
    const auto size = static_cast<off_t>(disk_.live().at(opened->inode).content->size());
    if (offset >= size) return failedFor(ENXIO);
    return whence == SEEK_DATA ? offset : size;
}

int ModelFileCalls::resize(int file, off_t size) {
    const Number number = content(file, true);
    if (number == 0) return -1;
    std::string text = *disk_.live().at(number).content;
    if (text.size() == static_cast<std::size_t>(size)) return 0;
    text.resize(static_cast<std::size_t>(size));
    disk_.setContent(number, std::move(text));
    return 0;
}

int ModelFileCalls::sync(int file) {
    const Handle* opened = handle(file);
    if (opened == nullptr) return -1;
    if (isPassedThrough(opened->flags)) return failedFor(EBADF);
    disk_.sync(opened->inode, ModelChange::Kind::sync);
    return 0;
}

int ModelFileCalls::flush(int file) {
    const Handle* opened = handle(file);
    if (opened == nullptr) return -1;
    if (isPassedThrough(opened->flags)) return failedFor(EBADF);
    disk_.sync(opened->inode, ModelChange::Kind::flush);
    return 0;
}

ssize_t ModelFileCalls::copyRange(int from, int to, off_t offset, std::size_t size) {
    const Number source = content(from, false);
    const Number target = source == 0 ? 0 : content(to, true);
    if (target == 0) return -1;
    const auto start = static_cast<std::size_t>(offset);
    const std::string& text = *disk_.live().at(source).content;
    if (start >= text.size()) return 0;
    const std::string part = text.substr(start, size);
    return put(target, part.data(), part.size(), start);
}

}  // namespace velto
