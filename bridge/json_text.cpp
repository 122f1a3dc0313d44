#include "bridge/json_text.h"

#include "platform/values/path_text.h"
#include "platform/values/write_json.h"

namespace velto {
namespace {

/// Bytes from which on the page reads a text sooner than a literal of the script: below it, both
/// take less than a millisecond.
constexpr std::size_t longJson = 16'384;

}  // namespace

void appendPathJson(std::string& json, std::string_view path) {
    if (isPlainJsonText(path)) {
        appendJson(json, path);
    } else {
        appendJson(json, pathText(path));
    }
}

std::string scriptLiteral(std::string json) {
    if (json.size() < longJson) return json;
    std::string script = "JSON.parse(\"";
    script.reserve(json.size() + json.size() / 4);
    for (const char character : json) {
        if (character == '"' || character == '\\') script += '\\';
        script += character;
    }
    script += "\")";
    return script;
}

}  // namespace velto
