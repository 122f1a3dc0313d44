#include "app/window/macos/DockTile.h"

namespace velto {
namespace {

NSProgressIndicator* barIn(NSSize tile) {
    const CGFloat margin = tile.width / 8;
    const CGFloat height = tile.height / 6;
    auto* bar = [[NSProgressIndicator alloc]
        initWithFrame:NSMakeRect(margin, margin, tile.width - 2 * margin, height)];
    bar.style = NSProgressIndicatorStyleBar;
    // The tile is drawn when it is told to, so nothing in it can move by itself.
    bar.indeterminate = NO;
    bar.minValue = 0;
    bar.maxValue = 1;
    return bar;
}

}  // namespace

void DockTile::showProgress(std::optional<double> fraction) {
    NSApplication* application = NSApp;
    NSDockTile* tile = application.dockTile;
    if (bar_ == nil) {
        NSImageView* icon = [NSImageView imageViewWithImage:application.applicationIconImage];
        icon.frame = NSMakeRect(0, 0, tile.size.width, tile.size.height);
        bar_ = barIn(tile.size);
        [icon addSubview:bar_];
        tile.contentView = icon;
    }
    bar_.doubleValue = fraction.value_or(0);
    [tile display];
}

void DockTile::hideProgress() {
    NSApplication* application = NSApp;
    bar_ = nil;
    application.dockTile.contentView = nil;
    [application.dockTile display];
}

}  // namespace velto
