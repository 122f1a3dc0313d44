#include "analysis/ExclusionService.h"
#include "fuzz/engine/MemoryFiles.h"
#include "fuzz/engine/Target.h"

namespace velto::fuzz {
namespace {

void judge(std::string_view input) {
    MemoryFiles files;
    const HomeLayout layout = HomeLayout::macOS("/Users/ana");
    files.put(layout.dataFolder + "/exclusions.json", input);
    ExclusionService exclusions(files, layout);
    for (const std::string& path : exclusions.paths())
        require(exclusions.isExcluded(path), "a listed path is excluded");
    exclusions.add("/Users/ana/Películas");
    require(exclusions.isExcluded("/Users/ana/Películas/una.mov"), "and so is an added one");
    if (!exclusions.paths().empty() && exclusions.paths().back() == "/Users/ana/Películas") {
        ExclusionService other(files, layout);
        require(other.paths() == exclusions.paths(), "what was saved reads as the same");
    }
    while (!exclusions.paths().empty())
        exclusions.remove(std::string(exclusions.paths().front()));
    require(ExclusionService(files, layout).paths().empty(), "all can be taken back");
}

const Registration registered("exclusions", judge);

}  // namespace
}  // namespace velto::fuzz
