#import "app/window/macos/PageSchemeHandler.h"

#include <memory>

#include "app/window/PageFiles.h"
#include "platform/macos/foundation_text.h"

namespace {

NSHTTPURLResponse* responseFor(NSURL* url, const velto::window::PageFile& file) {
    NSMutableDictionary<NSString*, NSString*>* fields = [NSMutableDictionary dictionary];
    for (const auto& [name, value] : velto::window::PageFiles::headers()) {
        fields[velto::nsString(name)] = velto::nsString(value);
    }
    fields[@"Content-Type"] = velto::nsString(file.type);
    fields[@"Content-Length"] = velto::nsString(std::to_string(file.content.size()));
    return [[NSHTTPURLResponse alloc] initWithURL:url
                                       statusCode:200
                                      HTTPVersion:@"HTTP/1.1"
                                     headerFields:fields];
}

}  // namespace

@implementation PageSchemeHandler {
    std::unique_ptr<velto::window::PageFiles> _page;
}

- (instancetype)initWithFiles:(const velto::FileManager&)files folder:(const std::string&)folder {
    if ((self = [super init])) {
        _page = std::make_unique<velto::window::PageFiles>(files, folder);
    }
    return self;
}

- (void)webView:(WKWebView*)webView startURLSchemeTask:(id<WKURLSchemeTask>)urlSchemeTask {
    NSURLRequest* request = urlSchemeTask.request;
    const auto file =
        _page->answer(velto::utf8(request.HTTPMethod), velto::utf8(request.URL.absoluteString));
    if (!file) {
        [urlSchemeTask didFailWithError:[NSError errorWithDomain:NSCocoaErrorDomain
                                                            code:NSFileReadNoSuchFileError
                                                        userInfo:nil]];
        return;
    }
    [urlSchemeTask didReceiveResponse:responseFor(request.URL, *file)];
    [urlSchemeTask didReceiveData:[NSData dataWithBytes:file->content.data()
                                                 length:file->content.size()]];
    [urlSchemeTask didFinish];
}

// Each task is answered before another event is seen.
- (void)webView:(WKWebView*)webView stopURLSchemeTask:(id<WKURLSchemeTask>)urlSchemeTask {
}

@end
