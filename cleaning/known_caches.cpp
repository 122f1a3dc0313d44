#include "cleaning/known_caches.h"

#include <algorithm>

#include "cleaning/caches_made_again.h"
#include "cleaning/caches_never_taken.h"
#include "platform/values/text.h"

namespace velto {
namespace {

/// `lowerName` in lower case already.
bool isNamedBy(const NeverTakenCache& row, std::string_view lowerName) {
    const std::string pattern = lowerCasedAscii(row.name);
    if (!pattern.ends_with('*')) return lowerName == pattern;
    return lowerName.starts_with(std::string_view(pattern).substr(0, pattern.size() - 1));
}

const MadeAgainCache* madeAgain(std::string_view name) {
    const auto row = std::ranges::find(cachesMadeAgain, name, &MadeAgainCache::name);
    return row == cachesMadeAgain.end() ? nullptr : &*row;
}

template <typename Act>
void forEachPart(std::string_view text, char separator, Act act) {
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(separator), text.size());
        if (end > 0) act(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

}  // namespace

KnownCache knownCache(std::string_view name) {
    const std::string lower = lowerCasedAscii(name);
    const bool isNeverTaken = std::ranges::any_of(
        cachesNeverTaken, [&](const NeverTakenCache& row) { return isNamedBy(row, lower); });
    if (isNeverTaken) return KnownCache::neverTaken;
    return madeAgain(name) != nullptr ? KnownCache::madeAgain : KnownCache::unknown;
}

std::string_view word(CacheFacts::Reason reason) {
    switch (reason) {
        case CacheFacts::Reason::madeAgain:
            return "madeAgain";
        case CacheFacts::Reason::keeps:
            return "keeps";
        case CacheFacts::Reason::running:
            return "running";
        case CacheFacts::Reason::unknown:
            break;
    }
    return "unknown";
}

CacheJudge::CacheJudge(const Platform& platform)
    : isMac_(platform.layout.kind == HomeLayout::Kind::macOS), running_(*platform.running) {}

bool CacheJudge::isInUse(const std::string& path) const {
    const std::string_view name = lastPathComponent(path);
    bool isInUse = running_.has(name);
    if (const MadeAgainCache* row = madeAgain(name)) {
        forEachPart(row->programs, ' ',
                    [&](std::string_view program) { isInUse = isInUse || running_.has(program); });
    }
    return isInUse || running_.isOfABundle(lowerCasedAscii(name)) || running_.runsInside(path);
}

CacheFacts CacheJudge::facts(const Candidate& candidate) const {
    using Reason = CacheFacts::Reason;
    if (candidate.ruleID == "xcode") {
        return {running_.has("xcode") ? Reason::running : Reason::madeAgain};
    }
    const KnownCache known = knownCache(lastPathComponent(candidate.path));
    if (known == KnownCache::neverTaken) return {Reason::keeps};
    if (isInUse(candidate.path)) return {Reason::running};
    // A Mac may clear this folder itself, so its applications keep there what they can make again.
    // Elsewhere nobody clears it, and it holds what it holds.
    return {isMac_ || known == KnownCache::madeAgain ? Reason::madeAgain : Reason::unknown};
}

FactsByPath CacheJudge::facts(const std::vector<Candidate>& candidates) const {
    FactsByPath byPath;
    for (const Candidate& candidate : candidates) {
        if (candidate.ruleID == "caches" || candidate.ruleID == "xcode") {
            byPath.emplace(candidate.path, facts(candidate));
        }
    }
    return byPath;
}

}  // namespace velto
