#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/ProcessTable.h"
#include "platform/linux/ApplicationIndex.h"
#include "platform/linux/bundle_application.h"
#include "platform/linux/process_files.h"
#include "platform/posix/Descriptor.h"
#include "platform/program_identifier.h"

namespace velto {

/// Processes from procfs, wherever it is mounted.
///
/// The `stat` file of a process is read at every sample and kept open between them, which halves
/// the cost (see docs/monitor.md), for as many processes as leave the program most of its
/// descriptors. Memory is read again only when something about it has changed, and traffic with the
/// disks, which only the user's own processes tell, only when the process has done anything.
///
/// A process is an application's when a desktop entry or a bundle (`.app` in its path) says so, or
/// this program's when that has started it (the web view's processes, among others). The
/// first process of an application counts as started by nobody, as on a Mac, so that it does not
/// become part of the file manager or the terminal that started it.
class LinuxProcessTable final : public ProcessTable {
public:
    struct Sources {
        std::string proc = "/proc";
        std::int32_t ownProcess = 0;  // left out; what it has started is `own`
        RunningApp own{.name = "Velto", .bundle = programIdentifier, .path = {}};

        /// The installed applications as they are now; the same object as long as nothing
        /// changes. May be empty, or give null: then there are only bundles.
        std::function<std::shared_ptr<const ApplicationIndex>()> applications;

        /// What the bundle at a path calls itself.
        std::function<RunningApp(const std::string& path)> bundle = [](const std::string& path) {
            return bundleApplication(path);
        };
    };

    explicit LinuxProcessTable(Sources sources);
    ~LinuxProcessTable() override;

    std::map<std::int32_t, ProcInfo> list() override;
    std::optional<ProcessUsage> usage(std::int32_t process) override;
    std::string executablePath(std::int32_t process) override;
    std::map<std::int32_t, RunningApp> runningApps() override;
    std::int32_t ownProcess() const override { return sources_.ownProcess; }
    std::optional<std::uint64_t> startOf(std::int32_t process) const override;

    /// How many files are kept open; for tests.
    std::size_t openFiles() const { return openFiles_; }

private:
    struct Process;
    using Processes = std::unordered_map<std::int32_t, Process>;

    std::string folderOf(std::int32_t number) const;
    std::optional<ProcessStatus> readStatus(std::int32_t number, Process& process);
    bool update(std::int32_t number, Process& process);
    void readTraffic(std::int32_t number, Process& process) const;
    void identify(std::int32_t number, Process& process);
    const RunningApp* bundleApp(const std::string& executable);
    void forgetUnusedBundles();
    void forget(Processes::iterator place);
    RunningApp ownApp() const;
    bool isStartedByThisProgram(const Process& process) const;
    std::int32_t parentOf(const Process& process) const;

    Sources sources_;
    std::size_t mostOpenFiles_;
    std::size_t openFiles_ = 0;
    std::string ownControlGroup_;
    double nanosecondsPerTick_;
    std::shared_ptr<const ApplicationIndex> index_;
    std::unordered_map<std::string, std::unique_ptr<const RunningApp>> bundles_;
    Processes processes_;
    std::string buffer_;
};

}  // namespace velto
