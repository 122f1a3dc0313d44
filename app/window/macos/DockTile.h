#pragma once

#import <AppKit/AppKit.h>

#include "platform/TaskBar.h"

namespace velto {

/// The program's tile in the Dock: its icon, with a bar over the lower part while work runs.
class DockTile final : public TaskBar {
public:
    void showProgress(std::optional<double> fraction) override;
    void hideProgress() override;

private:
    NSProgressIndicator* bar_ = nil;
};

}  // namespace velto
