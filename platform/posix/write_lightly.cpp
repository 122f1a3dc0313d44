#include "platform/write_lightly.h"

#include "platform/posix/PosixFileManager.h"

namespace velto {
namespace {

class ToTheDrive final : public FileCalls {
public:
    int sync(int file) override { return flush(file); }
};

}  // namespace

void writeLightly(const std::string& path, std::string_view content) {
    ToTheDrive calls;
    PosixFileManager(calls).writeAtomically(path, content);
}

}  // namespace velto
