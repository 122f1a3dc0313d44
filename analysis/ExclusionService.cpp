#include "analysis/ExclusionService.h"

#include <algorithm>
#include <memory>

#include <nlohmann/json.hpp>

#include "platform/Platform.h"
#include "platform/values/parse_json.h"
#include "platform/values/path_text.h"
#include "platform/values/text.h"

namespace velto {
namespace {

constexpr const char* exclusionsFile = "/exclusions.json";
constexpr ReadLimit exclusionsLimit = ownFile(64 << 20);  // some hundred thousand paths

/// An empty text would be above every path, and no walk ever meets a relative one.
bool isAbsolute(const std::string& path) { return path.starts_with('/'); }

}  // namespace

ExclusionService::ExclusionService(FileManager& files, const HomeLayout& layout)
    : files_(files), folder_(layout.dataFolder) {
    try {
        const auto json = parseJson(files_.read(folder_ + exclusionsFile, exclusionsLimit));
        if (json.is_array()) paths_ = pathsOfTexts(json.get<std::vector<std::string>>());
        std::erase_if(paths_, [](const std::string& path) { return !isAbsolute(path); });
    } catch (const FileError&) {
        // Nothing was excluded yet.
    } catch (const nlohmann::json::exception&) {
        // Damaged: counts as empty, and the next save replaces it.
    }
}

ExclusionService& ExclusionService::shared() {
    // Lives for ever, as the trash does: work may use it while the process ends.
    static auto* const instance =
        std::make_unique<ExclusionService>(*processPlatform().files, processPlatform().layout)
            .release();
    return *instance;
}

bool ExclusionService::isExcluded(std::string_view path) const {
    return std::any_of(paths_.begin(), paths_.end(),
                       [&](const std::string& entry) { return isAtOrBelow(path, entry); });
}

void ExclusionService::add(const std::string& path) {
    if (!isAbsolute(path) || isExcluded(path)) return;
    paths_.push_back(path);
    save();
}

void ExclusionService::remove(const std::string& path) {
    const auto found = std::find(paths_.begin(), paths_.end(), path);
    if (found == paths_.end()) return;
    paths_.erase(found);
    save();
}

void ExclusionService::save() const {
    try {
        files_.createFolders(folder_);
        files_.writeAtomically(folder_ + exclusionsFile, nlohmann::json(pathTexts(paths_)).dump());
    } catch (const FileError&) {
        // The list stays in force for the life of the process.
    }
}

}  // namespace velto
