#pragma once

#import <AppKit/AppKit.h>

#include "platform/ApplicationShell.h"
#include "platform/UserDefaults.h"

namespace velto {

class MacApplicationShell final : public ApplicationShell {
public:
    /// The appearance that the page chooses is kept in `defaults`, which outlives the shell.
    explicit MacApplicationShell(UserDefaults& defaults) : defaults_(defaults) {}

    /// The program's window; nil while there is none. It gets the appearance chosen last, before
    /// the page can say it, so that it does not change colour while it opens.
    void setWindow(NSWindow* window);

    void activate() override;
    Appearance appearance() const override;
    void setAppearance(Appearance appearance) override;
    void keepAppearance() override { setAppearance(appearance()); }
    void followSystemAppearance() override;
    void confirm(const Confirmation& question, std::function<void(bool)> answer) override;
    void chooseFolder(const FolderQuestion& question, FolderAnswer answer) override;

private:
    UserDefaults& defaults_;
    __weak NSWindow* window_ = nil;
};

}  // namespace velto
