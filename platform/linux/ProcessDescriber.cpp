#include "platform/linux/ProcessDescriber.h"

#include <utility>

#include "platform/linux/application_unit.h"
#include "platform/linux/bundle_application.h"
#include "platform/linux/flatpak_instances.h"
#include "platform/linux/kernel_file.h"
#include "platform/linux/process_program.h"
#include "platform/program_places.h"

namespace velto {

ProcessDescriber::ProcessDescriber(std::string proc, const std::string& runtime)
    : proc_(std::move(proc)),
      ownControlGroup_(kernelText(proc_ + "/self/cgroup").value_or("")),
      flatpaks_(flatpaksByNamespace(proc_, runtime)) {}

std::string ProcessDescriber::folderOf(std::int64_t process) const {
    return proc_ + "/" + std::to_string(process);
}

RunningApplication ProcessDescriber::describeProgram(std::int64_t process,
                                                     std::string executable) const {
    RunningApplication application;
    application.process = process;
    application.executable = std::move(executable);
    const std::size_t end = application.executable.rfind(".app/");
    if (end != std::string::npos) {
        application.bundlePath = application.executable.substr(0, end + 4);
        application.bundleIdentifier = bundleApplication(application.bundlePath).bundle;
    } else if (std::string image = appImageOfProcess(folderOf(process), application.executable);
               !image.empty()) {
        application.executable = std::move(image);
    }
    return application;
}

RunningApplication ProcessDescriber::describe(std::int64_t process, std::string executable) const {
    RunningApplication application = describeAtOnce(process, std::move(executable));
    application.script = scriptOfProcess(folderOf(process), application.executable);
    return application;
}

RunningApplication ProcessDescriber::describeAtOnce(std::int64_t process,
                                                    std::string executable) const {
    RunningApplication application = describeProgram(process, std::move(executable));
    const std::string folder = folderOf(process);
    const std::string group = kernelText(folder + "/cgroup").value_or("");
    // What was started in this program's own unit (a terminal's, say) is told apart by no unit.
    if (!group.empty() && group != ownControlGroup_) {
        ApplicationUnit unit = applicationUnitIn(group);
        application.entry = std::move(unit.entry);
        application.flatpak = std::move(unit.flatpak);
        application.snap = std::move(unit.snap);
    }
    if (application.snap.empty()) application.snap = snapOfProgram(application.executable);
    if (application.flatpak.empty() && !flatpaks_.empty()) {
        const auto found = flatpaks_.find(processNamespace(folder));
        if (found != flatpaks_.end()) application.flatpak = found->second;
    }
    return application;
}

}  // namespace velto
