#include "bridge/json_text.h"

#include <algorithm>

#include <nlohmann/json.hpp>

#include "platform/values/path_text.h"

namespace velto {
namespace {

bool isPlain(char character) {
    return character >= 0x20 && character < 0x7F && character != '"' && character != '\\';
}

}  // namespace

void appendPathJson(std::string& json, std::string_view path) {
    if (std::ranges::all_of(path, isPlain)) {
        json += '"';
        json += path;
        json += '"';
    } else {
        json += nlohmann::json(pathText(path)).dump();
    }
}

}  // namespace velto
