#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "platform/WebView.h"

namespace velto {

/// Keeps every script that was evaluated and lets a test post messages.
class FakeWebView final : public WebView {
public:
    void evaluate(const std::string& script) override { scripts.push_back(script); }
    void addUserScript(const std::string& script) override { userScripts.push_back(script); }
    void setMessageHandler(const std::string& name, MessageHandler handler) override {
        handlers[name] = std::move(handler);
    }

    void post(const nlohmann::json& body, const std::string& name = "velto") {
        handlers.at("velto")(name, body);
    }

    /// The scripts that call the page's `callback`.
    std::vector<std::string> calls(const std::string& callback) const {
        std::vector<std::string> found;
        for (const std::string& script : scripts) {
            if (script.find("window.velto." + callback + "(") != std::string::npos) {
                found.push_back(script);
            }
        }
        return found;
    }

    /// The argument of the last call of a callback that takes one; null when there was no call.
    nlohmann::json lastArgument(const std::string& callback) const {
        const auto found = calls(callback);
        if (found.empty()) return nullptr;
        const std::string& script = found.back();
        const std::size_t begin = script.rfind(callback + "(") + callback.size() + 1;
        return value(script.substr(begin, script.rfind(");") - begin));
    }

    /// The JSON value of a script's expression: a literal, or one that the page parses.
    static nlohmann::json value(const std::string& expression) {
        const std::string parse = "JSON.parse(";
        if (!expression.starts_with(parse)) return nlohmann::json::parse(expression);
        const std::size_t length = expression.size() - parse.size() - 1;
        const auto text = nlohmann::json::parse(expression.substr(parse.size(), length));
        return nlohmann::json::parse(text.get<std::string>());
    }

    std::vector<std::string> scripts;
    std::vector<std::string> userScripts;
    std::map<std::string, MessageHandler> handlers;
};

}  // namespace velto
