#import "app/window/macos/BundleFinder.h"

#include "app/window/window_rules.h"
#include "platform/macos/foundation_text.h"

@implementation BundleFinder

+ (NSBundle*)resourceBundle:(const velto::Platform&)platform {
    NSBundle* main = NSBundle.mainBundle;
    // A program outside an application has its folder for a main bundle: next to it is inside.
    NSURL* beside =
        platform.runsFromBundle ? main.bundleURL.URLByDeletingLastPathComponent : main.bundleURL;
    const std::vector<std::string> parents{
        velto::pathOf(main.resourceURL),
        velto::pathOf([NSBundle bundleForClass:self].resourceURL),
        velto::pathOf(beside),
    };
    const auto path = velto::window::findResourceBundle(
        parents, [&](const std::string& candidate) { return platform.files->exists(candidate); });
    NSBundle* bundle = path ? [NSBundle bundleWithURL:velto::fileURL(*path)] : nil;
    if (bundle == nil) velto::fatal(velto::window::missingBundleMessage);
    return bundle;
}

@end
