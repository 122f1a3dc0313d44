#pragma once

#include "analysis/PermissionService.h"
#include "analysis/ScannerService.h"
#include "bridge/JSBridge.h"

namespace velto {

/// The scanner and the probe that it asks, kept alive together while a walk runs.
struct JSBridge::ScannerWithAccess {
    explicit ScannerWithAccess(Platform& platform)
        : permissions(platform), scanner(platform, permissions) {}

    PermissionService permissions;
    ScannerService scanner;
};

}  // namespace velto
