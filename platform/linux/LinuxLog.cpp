#include "platform/linux/LinuxLog.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include <fmt/format.h>

#include "platform/posix/uninterrupted.h"

namespace velto {

bool isJournalStream(int descriptor, std::string_view journalStream) {
    struct stat status {};
    if (journalStream.empty() || fstat(descriptor, &status) != 0) return false;
    return fmt::format("{}:{}", status.st_dev, status.st_ino) == journalStream;
}

LinuxLog LinuxLog::toStandardError() {
    const char* const stream = std::getenv("JOURNAL_STREAM");
    return {STDERR_FILENO, isJournalStream(STDERR_FILENO, stream == nullptr ? "" : stream)};
}

void LinuxLog::line(std::string_view text) {
    std::string content(isJournal_ ? "<6>" : "");
    content += shown(text);
    content += '\n';
    std::string_view rest = content;
    while (!rest.empty()) {
        const ssize_t count =
            uninterrupted([&] { return write(descriptor_, rest.data(), rest.size()); });
        if (count < 0) return;  // nobody reads it: there is no other place to say so
        rest.remove_prefix(static_cast<std::size_t>(count));
    }
}

}  // namespace velto
