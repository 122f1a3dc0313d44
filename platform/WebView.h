#pragma once

#include <functional>
#include <string>

#include <nlohmann/json_fwd.hpp>

namespace velto {

/// The web view that shows the page. Main thread.
class WebView {
public:
    /// Called on the main thread with the handler's name and the message's body.
    using MessageHandler = std::function<void(const std::string& name, const nlohmann::json& body)>;

    virtual ~WebView() = default;

    /// Evaluates a script in the page; its result and its errors are ignored.
    virtual void evaluate(const std::string& script) = 0;

    /// Adds a script that runs at document start, before the page's own, in the main frame only.
    virtual void addUserScript(const std::string& script) = 0;

    /// Opens `window.webkit.messageHandlers.<name>` to the page. A second call for a name replaces
    /// the handler.
    virtual void setMessageHandler(const std::string& name, MessageHandler handler) = 0;
};

}  // namespace velto
