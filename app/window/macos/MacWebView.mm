#include "app/window/macos/MacWebView.h"

#include <optional>

#include <nlohmann/json.hpp>

#include "app/window/navigation.h"
#include "app/window/window_rules.h"
#include "platform/macos/foundation_text.h"
#include "platform/values/parse_json.h"

namespace {

/// What a script posted, as JSON; nothing when JSON has no such value (a date, a number that is not
/// finite, half a character).
std::optional<nlohmann::json> jsonOf(id body) {
    if (body == nil) return std::nullopt;
    NSArray* wrapped = @[ body ];  // only lists and objects count as valid by themselves
    if (![NSJSONSerialization isValidJSONObject:wrapped]) return std::nullopt;
    NSData* data = [NSJSONSerialization dataWithJSONObject:wrapped options:0 error:nil];
    const auto* text = static_cast<const char*>(data.bytes);
    if (text == nullptr) return std::nullopt;
    auto list = velto::tryParseJson(std::string_view(text, data.length));
    if (!list || !list->is_array() || list->empty()) return std::nullopt;
    return std::move(list->front());
}

}  // namespace

/// Takes the messages of one channel.
@interface ScriptMessageReceiver : NSObject <WKScriptMessageHandler>
- (instancetype)initWithHandler:(velto::WebView::MessageHandler)handler log:(velto::Log&)log;
@end

@implementation ScriptMessageReceiver {
    velto::WebView::MessageHandler _handler;
    velto::Log* _log;
}

- (instancetype)initWithHandler:(velto::WebView::MessageHandler)handler log:(velto::Log&)log {
    if ((self = [super init])) {
        _handler = std::move(handler);
        _log = &log;
    }
    return self;
}

- (void)userContentController:(WKUserContentController*)userContentController
      didReceiveScriptMessage:(WKScriptMessage*)message {
    WKFrameInfo* frame = message.frameInfo;
    const std::string document = velto::utf8(frame.request.URL.absoluteString);
    if (!velto::window::maySpeak(document, frame.isMainFrame)) return;
    const auto body = jsonOf(message.body);
    if (!body) return _log->line(velto::window::messageWithoutJson);
    _handler(velto::utf8(message.name), *body);
}

@end

namespace velto {

MacWebView::MacWebView(WKWebView* view, Log& log)
    : view_(view),
      content_(view.configuration.userContentController),
      log_(log),
      scripts_([this](const std::string& script, const std::function<void()>& ended) {
          evaluateNow(script, ended);
      }) {
    addUserScript(window::platformScript("macos"));
}

MacWebView::~MacWebView() {
    for (const auto& name : channels_) closeChannel(name);
}

void MacWebView::evaluate(const std::string& script) { scripts_.put(script); }

// The view calls the handler whatever becomes of the page.
void MacWebView::evaluateNow(const std::string& script, const std::function<void()>& ended) {
    if (!window::isPageAddress(utf8(view_.URL.absoluteString))) {
        if (ended) ended();
        return;
    }
    const std::function<void()> call = ended;  // the block keeps a copy of it
    [view_ evaluateJavaScript:nsString(script)
            completionHandler:^(id, NSError*) {
              if (call) call();
            }];
}

void MacWebView::addUserScript(const std::string& script) {
    NSString* source = nsString(window::guardedScript(script));
    [content_
        addUserScript:[[WKUserScript alloc] initWithSource:source
                                             injectionTime:WKUserScriptInjectionTimeAtDocumentStart
                                          forMainFrameOnly:YES]];
}

void MacWebView::setMessageHandler(const std::string& name, MessageHandler handler) {
    if (!channels_.insert(name).second) closeChannel(name);  // adding a name twice is refused
    auto* receiver = [[ScriptMessageReceiver alloc] initWithHandler:std::move(handler) log:log_];
    [content_ addScriptMessageHandler:receiver name:nsString(name)];
}

void MacWebView::closeChannel(const std::string& name) {
    [content_ removeScriptMessageHandlerForName:nsString(name)];
}

}  // namespace velto
