#pragma once

#include <string>

#include "platform/Log.h"

namespace velto {

/// Standard error, one write(2) a line, so that lines of several threads and processes stay whole.
/// Where standard error is the journal's, each line carries the priority that sd-daemon(3)
/// describes ("<6>", informational).
class LinuxLog final : public Log {
public:
    /// Writes to that descriptor; `isJournal` says whether the priority goes before each line.
    LinuxLog(int descriptor, bool isJournal) : descriptor_(descriptor), isJournal_(isJournal) {}

    /// To standard error; the journal is recognised by $JOURNAL_STREAM (systemd.exec(5)).
    static LinuxLog toStandardError();

    void line(std::string_view text) override;

private:
    int descriptor_;
    bool isJournal_;
};

/// True when `journalStream` ("device:inode") names the file behind the descriptor.
bool isJournalStream(int descriptor, std::string_view journalStream);

}  // namespace velto
