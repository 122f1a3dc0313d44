#include "cleaning/known_caches.h"

#include <algorithm>

#include "cleaning/caches_made_again.h"
#include "cleaning/caches_never_taken.h"
#include "platform/values/text.h"

namespace velto {
namespace {

// The tables and the identifiers of applications are ASCII.
std::string lowerCased(std::string_view text) {
    std::string lower(text);
    for (char& letter : lower) {
        if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
    }
    return lower;
}

/// `lowerName` in lower case already.
bool isNamedBy(const NeverTakenCache& row, std::string_view lowerName) {
    const std::string pattern = lowerCased(row.name);
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

/// "python3.11" is a python.
std::string_view withoutVersion(std::string_view program) {
    const std::size_t last = program.find_last_not_of("0123456789.-");
    return last == std::string_view::npos ? program : program.substr(0, last + 1);
}

/// True when one is the other, or its beginning up to a full stop: a helper's identifier and its
/// application's, an updater's folder and its application.
bool isOfOneApplication(std::string_view left, std::string_view right) {
    if (left.size() > right.size()) std::swap(left, right);
    return right.starts_with(left) && (right.size() == left.size() || right[left.size()] == '.');
}

}  // namespace

KnownCache knownCache(std::string_view name) {
    const std::string lower = lowerCased(name);
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
    : isMac_(platform.layout.kind == HomeLayout::Kind::macOS) {
    for (const RunningApplication& application : platform.running->list())
        note(application);
}

void CacheJudge::note(const RunningApplication& application) {
    const auto isCalled = [&](std::string_view name) {
        if (!name.empty()) words_.insert(lowerCased(name));
    };
    const std::string_view program = lastPathComponent(application.executable);
    isCalled(program);
    isCalled(withoutVersion(program));
    std::string_view bundle = lastPathComponent(application.bundlePath);
    if (bundle.ends_with(".app")) bundle.remove_suffix(std::string_view(".app").size());
    isCalled(bundle);
    if (!application.executable.empty()) executables_.push_back(application.executable);
    if (application.bundleIdentifier.empty()) return;
    identifiers_.push_back(lowerCased(application.bundleIdentifier));
    // "com.google.Chrome": its maker and its name, but not what everybody's begins with.
    const std::size_t first = application.bundleIdentifier.find('.');
    if (first == std::string::npos) return;
    forEachPart(std::string_view(application.bundleIdentifier).substr(first + 1), '.', isCalled);
}

bool CacheJudge::isInUse(const std::string& path) const {
    const std::string name = lowerCased(lastPathComponent(path));
    bool isInUse = words_.contains(name);
    if (const MadeAgainCache* row = madeAgain(lastPathComponent(path))) {
        forEachPart(row->programs, ' ', [&](std::string_view program) {
            isInUse = isInUse || words_.contains(lowerCased(program));
        });
    }
    const auto isOfName = [&](const std::string& identifier) {
        return isOfOneApplication(identifier, name);
    };
    const auto isInside = [&](const std::string& executable) {
        return executable.starts_with(path + "/");
    };
    return isInUse || std::ranges::any_of(identifiers_, isOfName) ||
           std::ranges::any_of(executables_, isInside);
}

CacheFacts CacheJudge::facts(const Candidate& candidate) const {
    using Reason = CacheFacts::Reason;
    if (candidate.ruleID == "xcode") {
        return {words_.contains("xcode") ? Reason::running : Reason::madeAgain};
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
