#pragma once

#include <string>
#include <vector>

#include "platform/Platform.h"

namespace velto {

/// What of a selection the program's trash would take as things are, and why not the rest.
struct SelectionCheck {
    enum class Reason {
        link,        // is a link, or lies behind one
        outside,     // of the home
        protected_,  // by the rules of the trash
        gone,        // nothing stands there
        own,         // the trash's own
        closed,      // the folder it stands in may not be changed, or not be looked into
        readOnly,    // the disk
        mounted,     // another volume is mounted there or inside
        other,       // the system says no in another way
    };

    struct Stay {
        std::string path;
        Reason reason = Reason::other;
        std::string detail;  // what the system says, in its own words; may be empty
    };

    std::vector<std::string> movable;  // in the order asked for
    std::vector<Stay> stays;
};

/// Changes nothing, and proves nothing for later: whoever moves judges again. Blocking; safe from
/// every thread. Never throws but for want of memory.
SelectionCheck checkSelection(const Platform& platform, const std::vector<std::string>& paths);

}  // namespace velto
