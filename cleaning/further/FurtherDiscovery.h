#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cleaning/further/FurtherRule.h"
#include "cleaning/further/tool_measures.h"
#include "platform/CancellationFlag.h"
#include "platform/Platform.h"

namespace velto {

/// Something that a rule would move to the program's trash.
struct FurtherItem {
    enum class Reason {
        madeAgain,  // certain
        unknown,    // possible: the rule says no more
        running,    // possible: what it belongs to runs now
        unread,     // possible: not all of it could be read, and the size is too small
    };

    std::string path;
    std::int64_t bytes = 0;   // allocated
    std::int64_t linked = 0;  // of these, in files that have names elsewhere too: they stay
    int days = 0;             // whole days since anything inside, or in its project, has changed
    Reason reason = Reason::unknown;

    bool isCertain() const { return reason == Reason::madeAgain; }
    bool operator==(const FurtherItem&) const = default;
};

/// The word for a reason: "madeAgain", "unknown", "running", "unread".
std::string_view word(FurtherItem::Reason reason);

/// What one rule has found: items, or of what is only explained how much there is.
struct FurtherGroup {
    const FurtherRule* rule = nullptr;  // never null
    std::vector<FurtherItem> items;     // largest first, equal sizes by path
    std::optional<std::int64_t> bytes;  // of what is explained; nothing: not known
    std::vector<ToolPart> parts;
};

/// Finds what all rules together name in the user's home, in one walk of it. It only proposes:
/// nothing is changed. Left out is what the user has excluded, what lies behind the privacy gate
/// without access, the caches that are never taken, what the program's trash would refuse, and what
/// holds any of these. Stateless between discoveries; one thread at a time.
class FurtherDiscovery {
public:
    struct Question {
        const Platform& platform;
        const std::vector<FurtherRule>& rules = furtherRules();
        std::vector<std::string> excluded = {};
        bool hasAccess = false;  // to what the system guards
        std::int64_t smallest = smallestItem;
        std::vector<std::string> tools = toolFolders();
    };
    /// Less than that is not worth a row, in bytes.
    static constexpr std::int64_t smallestItem = 10'000'000;

    /// What the question refers to outlives the object.
    explicit FurtherDiscovery(Question question) : question_(std::move(question)) {}

    /// In the order of the rules; rules that find nothing are left out. Blocks while the home is
    /// walked; throws only when the machine cannot go on at all.
    std::vector<FurtherGroup> discover(const CancellationFlag& cancelled = {}) const;

    /// Fills in what tools say of the groups that they measure; groups of which a tool says that
    /// there is nothing are taken out. Blocks while the tools work.
    void askTools(std::vector<FurtherGroup>& groups) const;

private:
    bool mayLookInto(const std::string& path) const;
    bool isThere(const FurtherRule& rule) const;
    std::int64_t bytesOutsideHome(const FurtherRule& rule) const;

    Question question_;
};

}  // namespace velto
