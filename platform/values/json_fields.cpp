#include "platform/values/json_fields.h"

#include <cmath>

namespace velto {

bool isFinite(const nlohmann::json& value) {
    if (value.is_number_float()) return std::isfinite(value.get<double>());
    if (!value.is_structured()) return true;
    for (const nlohmann::json& element : value) {
        if (!isFinite(element)) return false;
    }
    return true;
}

}  // namespace velto
