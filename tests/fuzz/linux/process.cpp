#include "platform/linux/process_files.h"

#include "fuzz/engine/Target.h"
#include "fuzz/engine/sections.h"
#include "platform/linux/ApplicationIndex.h"
#include "platform/linux/application_unit.h"

namespace velto::fuzz {
namespace {

/// What the kernel and a process's own name tell. The name is up to the process: it may hold
/// whatever else stands in the line.
void judge(std::string_view input) {
    const auto sections = sectionsIn(input);
    const std::string line = sectionOf(sections, "stat");
    if (const auto status = processStatusIn(line)) {
        require(status->command.data() >= line.data() &&
                    status->command.data() + status->command.size() <= line.data() + line.size(),
                "the name lies in the line");
        const std::string before = line.substr(0, line.find('('));
        const auto renamed =
            processStatusIn(before + "(a) R) 1 2 3" + line.substr(line.rfind(')')));
        require(renamed && renamed->start == status->start && renamed->parent == status->parent,
                "another name changes no number");
    }
    footprintIn(sectionOf(sections, "status"));
    const std::string group = sectionOf(sections, "cgroup");
    const std::string application = applicationUnitIn(group).entry;
    require(application.size() <= group.size(), "a unit's name is a part of the text");
    const ListedApplication listed{.identifier = application, .name = "Una", .path = "/a.desktop"};
    const ApplicationIndex index(std::vector{listed});
    require(index.find(group, "") != nullptr || application.empty(), "and finds its application");
}

const Registration registered("process", judge);

}  // namespace
}  // namespace velto::fuzz
