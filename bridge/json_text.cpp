#include "bridge/json_text.h"

#include <nlohmann/json.hpp>

#include "platform/values/path_text.h"
#include "platform/values/write_json.h"

namespace velto {

void appendPathJson(std::string& json, std::string_view path) {
    if (isPlainJsonText(path)) {
        json += '"';
        json += path;
        json += '"';
    } else {
        json += writeJson(nlohmann::json(pathText(path)));
    }
}

}  // namespace velto
