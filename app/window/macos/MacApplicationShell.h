#pragma once

#import <AppKit/AppKit.h>

#include "platform/ApplicationShell.h"

namespace velto {

class MacApplicationShell final : public ApplicationShell {
public:
    /// The program's window; nil while there is none.
    void setWindow(NSWindow* window) { window_ = window; }

    void activate() override;
    Appearance appearance() const override;
    void setAppearance(Appearance appearance) override;
    void confirm(const Confirmation& question, std::function<void(bool)> answer) override;

private:
    __weak NSWindow* window_ = nil;
};

}  // namespace velto
