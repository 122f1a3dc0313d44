#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "cleaning/CleaningRules.h"
#include "cleaning/RunningPrograms.h"
#include "platform/Platform.h"

namespace velto {

/// What is known of an entry of the caches folder by its name.
enum class KnownCache {
    neverTaken,  // see caches_never_taken.h
    madeAgain,   // see caches_made_again.h
    unknown,
};

/// `name` is the entry's, without a path. When both tables know it, it is never taken.
KnownCache knownCache(std::string_view name);

/// Whether a candidate of the rules "caches" and "xcode" may go while nobody looks.
struct CacheFacts {
    enum class Reason {
        madeAgain,  // certain: what it belongs to makes it again
        unknown,    // possible: nothing says that it is made again
        keeps,      // possible: it may hold what nothing makes again
        running,    // possible: what it belongs to runs now
    };
    Reason reason = Reason::unknown;

    bool isCertain() const { return reason == Reason::madeAgain; }
    bool operator==(const CacheFacts&) const = default;
};

/// The word for a reason: "madeAgain", "unknown", "keeps", "running".
std::string_view word(CacheFacts::Reason reason);

/// By the path of the candidate.
using FactsByPath = std::unordered_map<std::string, CacheFacts>;

/// Tells of candidates how certain they are, as the machine is at the moment of making the object.
/// Safe from every thread once it is made; making it lists the running applications.
class CacheJudge {
public:
    explicit CacheJudge(const Platform& platform);

    /// Of a candidate of the rules "caches" or "xcode".
    CacheFacts facts(const Candidate& candidate) const;

    /// Of all candidates of these two rules among those given; the others are left out.
    FactsByPath facts(const std::vector<Candidate>& candidates) const;

private:
    bool isInUse(const std::string& path) const;

    bool isMac_;
    RunningPrograms running_;
};

}  // namespace velto
