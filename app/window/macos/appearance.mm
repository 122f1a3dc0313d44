#include "app/window/macos/appearance.h"

#include "app/window/window_rules.h"

namespace velto::window {

Appearance appearanceOf(NSAppearance* appearance) {
    NSAppearanceName best = [appearance
        bestMatchFromAppearancesWithNames:@[ NSAppearanceNameAqua, NSAppearanceNameDarkAqua ]];
    return [best isEqualToString:NSAppearanceNameDarkAqua] ? Appearance::dark : Appearance::light;
}

NSAppearance* namedAppearance(Appearance appearance) {
    return [NSAppearance appearanceNamed:appearance == Appearance::dark ? NSAppearanceNameDarkAqua
                                                                        : NSAppearanceNameAqua];
}

NSColor* backgroundColourFor(NSAppearance* appearance) {
    const Colour colour = backgroundColour(appearanceOf(appearance));
    return [NSColor colorWithSRGBRed:colour.red / 255.0
                               green:colour.green / 255.0
                                blue:colour.blue / 255.0
                               alpha:1];
}

}  // namespace velto::window
