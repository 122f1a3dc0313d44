#include "cleaning/TrashRecords.h"

#include <cmath>

#include <nlohmann/json.hpp>

#include "platform/values/json_fields.h"
#include "platform/values/parse_json.h"
#include "platform/values/path_text.h"
#include "platform/values/write_json.h"

namespace velto {
namespace {

using nlohmann::json;
// Keys come out in the records' order.
using ordered = nlohmann::ordered_json;

/// The library writes a number that is not finite as null, which no reader would accept.
double finite(double number) {
    if (!std::isfinite(number)) throw json::other_error::create(600, "number not finite", nullptr);
    return number;
}

ordered toJson(const std::vector<TrashItem>& items) {
    ordered list = ordered::array();
    for (const TrashItem& item : items)
        list.push_back(velto::toJson(item));
    return list;
}

TrashItem itemFrom(const json& object) {
    return {.id = field<std::string>(object, "id"),
            .opID = field<std::string>(object, "opID"),
            .originalPath = pathBytes(field<std::string>(object, "originalPath")),
            .name = pathBytes(field<std::string>(object, "name")),
            .gb = field<double>(object, "gb"),
            .taken = field<double>(object, "taken")};
}

}  // namespace

double sumOf(const std::vector<TrashItem>& items) {
    double sum = 0;
    for (const TrashItem& item : items)
        sum += item.gb;
    return sum;
}

const char* TrashError::what() const noexcept {
    switch (reason_) {
        case Reason::outsideHome:
            return "La ruta está fuera de tu carpeta de usuario.";
        case Reason::protected_:
            return "Es un elemento protegido (librería de Fotos, backup, correo).";
        case Reason::notFound:
            return "El archivo ya no existe.";
        case Reason::alreadyInTrash:
            return "Ya está en la Papelera de Velto.";
    }
    return "";
}

ordered toJson(const TrashItem& item) {
    return {{"id", item.id},
            {"opID", item.opID},
            {"originalPath", pathText(item.originalPath)},
            {"name", pathText(item.name)},
            {"gb", finite(item.gb)},
            {"taken", finite(item.taken)}};
}

ordered toJson(const Operation& operation) {
    return {{"id", operation.id},
            {"ts", finite(operation.ts)},
            {"gb", finite(operation.gb)},
            {"items", toJson(operation.items)},
            {"kind", operation.kind}};
}

Operation operationFromJson(const json& object) {
    return {.id = field<std::string>(object, "id"),
            .ts = field<double>(object, "ts"),
            .gb = field<double>(object, "gb"),
            .items = listFrom(object, "items", itemFrom),
            .kind = field<std::string>(object, "kind")};
}

std::string encodeManifest(const Manifest& manifest) {
    ordered operations = ordered::array();
    for (const Operation& operation : manifest.operations)
        operations.push_back(toJson(operation));
    const ordered object{{"items", toJson(manifest.items)}, {"operations", std::move(operations)}};
    return writeJson(object);
}

Manifest decodeManifest(const std::string& text) {
    const json object = parseJson(text);
    return {.items = listFrom(object, "items", itemFrom),
            .operations = listFrom(object, "operations", operationFromJson)};
}

}  // namespace velto
