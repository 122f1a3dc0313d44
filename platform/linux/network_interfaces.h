#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/SystemCounters.h"

namespace velto {

/// Every interface of /proc/net/dev, whatever it is.
std::vector<InterfaceCounters> interfacesIn(std::string_view netDev);

/// Tells the interfaces through which the machine talks to others from those through which the
/// same bytes pass once more: bridges, container and tunnel ends, bonds. With hardware of its own
/// an interface counts; where none has any (inside a container) all those count that lead out.
class InterfaceChoice {
public:
    /// `sys` is where sysfs is mounted.
    explicit InterfaceChoice(std::string sys) : sys_(std::move(sys)) {}

    /// Those of `all` that count. Asks the system only when the names have changed.
    std::vector<InterfaceCounters> of(std::vector<InterfaceCounters> all);

private:
    enum class Kind { hardware, other, repeating };

    Kind kindOf(const std::string& name) const;

    std::string sys_;
    std::vector<std::string> known_;     // all names of the last call
    std::vector<std::string> counting_;  // of these
};

}  // namespace velto
