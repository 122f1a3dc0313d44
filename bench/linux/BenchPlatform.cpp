#include "linux/BenchPlatform.h"

#include <cerrno>
#include <fstream>
#include <string_view>

#include "platform/linux/LinuxDirectoryReader.h"
#include "platform/linux/LinuxVolumeInfo.h"
#include "platform/posix/PosixFileManager.h"

namespace velto {
namespace {

class SilentLog final : public Log {
public:
    void line(std::string_view) override {}
};

/// As if nothing ran: listing processes is no part of what is measured.
class NothingRuns final : public RunningApplications {
public:
    std::vector<RunningApplication> list() override { return {}; }
    std::unique_ptr<ProcessControl> control(const RunningApplication&) override { return nullptr; }
    void observe(std::function<void(const RunningApplication&)>) override {}
};

class ClosedFiles final : public FileContentReader {
public:
    std::unique_ptr<FileContent> open(const std::string&) override {
        errno = EACCES;
        return nullptr;
    }
};

}  // namespace

std::unique_ptr<Platform> benchPlatform(const std::string& home) {
    auto platform = std::make_unique<Platform>();
    platform->log = std::make_unique<SilentLog>();
    platform->clock = std::make_unique<SystemClock>();
    platform->files = std::make_unique<PosixFileManager>();
    platform->mover = std::make_unique<PosixFileManager>();
    platform->running = std::make_unique<NothingRuns>();
    platform->directories = std::make_unique<LinuxDirectoryReader>();
    platform->contents = std::make_unique<ClosedFiles>();
    platform->volumes = std::make_unique<LinuxVolumeInfo>();
    platform->layout = HomeLayout::macOS(platform->files->resolved(home));
    return platform;
}

std::int64_t peakMemory() {
    std::ifstream status("/proc/self/status");
    std::string key;
    std::int64_t value = 0;
    while (status >> key) {
        if (key == "VmHWM:" && status >> value) return value;
    }
    return 0;
}

}  // namespace velto
