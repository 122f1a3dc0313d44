#include "bridge/AnalysisLists.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <utility>

#include "platform/values/text.h"
#include "platform/values/units.h"

namespace velto {
namespace {

/// The size of a copy as the group tells it: a text such as "4.9".
std::optional<double> sizeIn(const DupGroup& group, std::size_t index) {
    if (index >= group.pairs.size() || group.pairs[index].empty()) return std::nullopt;
    const DupGroup::Pair& pair = group.pairs[index].front();
    if (pair.size() < 2) return std::nullopt;
    const std::string text = pair[1];
    // Digits, a point and one digit, as `tenths` writes it; the library's own reading of reals is
    // not everywhere, and the others follow the locale.
    const std::size_t point = text.find('.');
    std::int64_t whole = 0;
    std::int64_t tenth = 0;
    const char* end = text.data() + std::min(point, text.size());
    if (std::from_chars(text.data(), end, whole).ec != std::errc()) return std::nullopt;
    if (point != std::string::npos) {
        std::from_chars(text.data() + point + 1, text.data() + text.size(), tenth);
    }
    return static_cast<double>(whole) + static_cast<double>(tenth) / 10;
}

}  // namespace

void AnalysisLists::replace(const DiskState& analysis, Mark begun) {
    files_ = analysis.files;
    groups_ = analysis.dupGroups;
    listed_.reset();
    std::erase_if(gone_, [&](const auto& entry) { return entry.second <= begun; });
}

void AnalysisLists::add(const std::vector<DupGroup>& groups) {
    groups_.insert(groups_.end(), groups.begin(), groups.end());
    listed_.reset();
}

void AnalysisLists::forget() {
    files_.clear();
    groups_.clear();
    listed_.reset();
    cleanables_.clear();
    further_.clear();
    gone_.clear();
}

void AnalysisLists::replaceCleanables(const std::vector<Candidate>& found) {
    cleanables_.clear();
    for (const Candidate& candidate : found)
        cleanables_[candidate.path] = candidate.gb;
}

void AnalysisLists::replaceFurther(const std::vector<FurtherGroup>& found) {
    further_.clear();
    for (const FurtherGroup& group : found) {
        for (const FurtherItem& item : group.items)
            further_[item.path] = gigabytes(item.bytes);
    }
}

void AnalysisLists::noteGone(const std::vector<std::string>& paths) {
    if (paths.empty()) return;
    ++lastMark_;
    for (const std::string& path : paths)
        gone_[standardizedPath(path)] = lastMark_;
}

void AnalysisLists::noteBack(const std::vector<std::string>& paths) {
    for (const std::string& path : paths)
        gone_.erase(standardizedPath(path));
}

bool AnalysisLists::hasGoneSince(const std::string& path, Mark mark) const {
    return lastGone(standardizedPath(path)) > mark;
}

bool AnalysisLists::show(DiskState& state) const {
    std::vector<BigFile> files;
    std::ranges::copy_if(files_, std::back_inserter(files),
                         [&](const BigFile& file) { return !isGone(file.path); });
    std::vector<DupGroup> groups;
    for (const DupGroup& group : groups_) {
        DupGroup left{.id = group.id, .name = group.name, .pairs = {}, .paths = {}};
        for (std::size_t index = 0; index < group.paths.size(); ++index) {
            if (isGone(group.paths[index])) continue;
            if (std::cmp_equal(index, group.recommended)) {
                left.recommended = static_cast<std::int64_t>(left.paths.size());
            }
            left.paths.push_back(group.paths[index]);
            if (index < group.pairs.size()) left.pairs.push_back(group.pairs[index]);
        }
        if (left.paths.size() > 1) groups.push_back(std::move(left));
    }
    const bool differs = files != state.files || groups != state.dupGroups;
    state.files = std::move(files);
    state.dupGroups = std::move(groups);
    return differs;
}

std::optional<double> AnalysisLists::sizeOf(const std::string& path) const {
    const auto listed = listedSizes().find(path);
    if (listed != listedSizes().end()) return listed->second;
    const auto cleanable = cleanables_.find(path);
    if (cleanable != cleanables_.end()) return cleanable->second;
    const auto further = further_.find(path);
    return further == further_.end() ? std::nullopt : std::optional(further->second);
}

/// A selection of thousands of paths would look through thousands of lists otherwise.
const AnalysisLists::Sizes& AnalysisLists::listedSizes() const {
    if (listed_) return *listed_;
    Sizes& sizes = listed_.emplace();
    for (const BigFile& file : files_)
        sizes.try_emplace(file.path, file.gb);
    for (const DupGroup& group : groups_) {
        for (std::size_t index = 0; index < group.paths.size(); ++index)
            sizes.try_emplace(group.paths[index], sizeIn(group, index));
    }
    return sizes;
}

bool AnalysisLists::isGone(const std::string& path) const { return lastGone(path).has_value(); }

std::optional<AnalysisLists::Mark> AnalysisLists::lastGone(std::string path) const {
    std::optional<Mark> last;
    for (; !gone_.empty() && !path.empty(); path.resize(path.rfind('/'))) {
        const auto found = gone_.find(path);
        if (found != gone_.end()) last = std::max(last, std::optional(found->second));
        if (path.find('/') == std::string::npos) break;
    }
    return last;
}

}  // namespace velto
