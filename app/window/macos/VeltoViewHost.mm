#import "app/window/macos/VeltoViewHost.h"

#import "app/window/macos/VeltoView.h"
#import "app/window/macos/WindowConfigurator.h"

@implementation VeltoViewHost {
    velto::VeltoApp* _app;
    VeltoView* _veltoView;
}

- (instancetype)initWithApp:(velto::VeltoApp&)app platform:(velto::Platform&)platform {
    if ((self = [super initWithFrame:NSZeroRect])) {
        _app = &app;
        _veltoView = [[VeltoView alloc] initWithApp:app platform:platform];
        _veltoView.translatesAutoresizingMaskIntoConstraints = NO;
        [self addSubview:_veltoView];
        [NSLayoutConstraint activateConstraints:@[
            [_veltoView.topAnchor constraintEqualToAnchor:self.topAnchor],
            [_veltoView.bottomAnchor constraintEqualToAnchor:self.bottomAnchor],
            [_veltoView.leadingAnchor constraintEqualToAnchor:self.leadingAnchor],
            [_veltoView.trailingAnchor constraintEqualToAnchor:self.trailingAnchor],
        ]];
        [self addSubview:[WindowConfigurator makeProbeView]];
    }
    return self;
}

- (void)close {
    [_veltoView close];
    _app->windowClosed();
}

@end
