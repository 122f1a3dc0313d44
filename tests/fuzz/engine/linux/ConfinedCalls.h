#pragma once

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "platform/posix/FileCalls.h"

namespace velto::fuzz {

/// The file calls of this machine inside one folder and no others. Whatever an input makes the
/// program do, nothing real is touched: a change anywhere else is refused (EPERM) and kept for the
/// target to report, and nothing else can be seen but the folders on the way there.
class ConfinedCalls final : public FileCalls {
public:
    /// `root` is absolute and without links.
    explicit ConfinedCalls(std::string root) : root_(std::move(root)) {}

    /// What was attempted outside: "remove /etc/passwd". Once nothing uses the calls any more.
    const std::vector<std::string>& escapes() const { return escapes_; }

    int open(int folder, const char* name, int flags, mode_t mode) override;
    int stat(int folder, const char* name, struct stat& status) override;
    int changeMode(int file, mode_t mode) override;
    int changeMode(int folder, const char* name, mode_t mode) override;
    int changeOwner(int file, uid_t user, gid_t group) override;
    int setTimes(int file, const struct timespec (&times)[2]) override;
    int setTimes(int folder, const char* name, const struct timespec (&times)[2]) override;
    int makeFolder(int folder, const char* name, mode_t mode) override;
    int makeLink(const char* target, int folder, const char* name) override;
    int readLink(int folder, const char* name, std::string& target) override;
    int remove(int folder, const char* name, int flags) override;
    int replace(int fromFolder, const char* from, int toFolder, const char* to) override;
    int rename(int fromFolder, const char* from, int toFolder, const char* to) override;
    int addName(int fromFolder, const char* from, int toFolder, const char* to) override;
    int sync(int) override { return 0; }  // nothing here outlives the process
    int flush(int) override { return 0; }

private:
    bool isInside(const std::string& path) const;
    bool isOnTheWay(const std::string& path) const;
    bool mayChange(const char* what, const std::string& path);
    bool mayChange(const char* what, int folder, const char* name);

    std::string root_;
    std::mutex lock_;
    std::vector<std::string> escapes_;
};

}  // namespace velto::fuzz
