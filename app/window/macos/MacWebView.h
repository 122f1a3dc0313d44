#pragma once

#import <WebKit/WebKit.h>

#include <functional>
#include <set>
#include <string>

#include "app/window/ScriptQueue.h"
#include "platform/Log.h"
#include "platform/WebView.h"

namespace velto {

/// The page's side of a WKWebView. Scripts are evaluated and messages heard only while the document
/// that it shows is the page's own. Main thread, its destruction included.
///
/// Nothing here forms a cycle: the content controller keeps the message receivers, which know only
/// the function that they call.
class MacWebView final : public WebView {
public:
    /// Tells the page, before its own scripts, which system it runs on. The log outlives the
    /// object.
    MacWebView(WKWebView* view, Log& log);
    /// Closes the page's channels.
    ~MacWebView() override;
    MacWebView(const MacWebView&) = delete;
    MacWebView& operator=(const MacWebView&) = delete;

    void evaluate(const std::string& script) override;
    void addUserScript(const std::string& script) override;
    void setMessageHandler(const std::string& name, MessageHandler handler) override;

private:
    void evaluateNow(const std::string& script, const std::function<void()>& ended);
    void closeChannel(const std::string& name);

    WKWebView* view_;
    WKUserContentController* content_;
    Log& log_;
    std::set<std::string> channels_;
    window::ScriptQueue scripts_;
};

}  // namespace velto
