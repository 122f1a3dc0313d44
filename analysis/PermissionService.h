#pragma once

#include "platform/Platform.h"

namespace velto {

/// Full Disk Access: learnt by trying to read folders that only it opens. Remembers nothing.
class PermissionService {
public:
    explicit PermissionService(Platform& platform) : platform_(platform) {}

    /// Probes anew; logs what it found. A home without a privacy gate always has access.
    bool hasAccess() const;

    /// Takes the program's grant back through the system's tool; true when that succeeded.
    bool resetGrant() const;

private:
    Platform& platform_;
};

}  // namespace velto
