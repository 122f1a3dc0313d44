#include "cleaning/TrashRecords.h"

#include <nlohmann/json.hpp>

namespace velto {
namespace {

using nlohmann::json;
// Keys come out in the records' order.
using ordered = nlohmann::ordered_json;

ordered toJson(const TrashItem& item) {
    return {{"id", item.id},     {"opID", item.opID}, {"originalPath", item.originalPath},
            {"name", item.name}, {"gb", item.gb},     {"taken", item.taken}};
}

ordered toJson(const std::vector<TrashItem>& items) {
    ordered list = ordered::array();
    for (const TrashItem& item : items) list.push_back(toJson(item));
    return list;
}

ordered toJson(const Operation& operation) {
    return {{"id", operation.id},
            {"ts", operation.ts},
            {"gb", operation.gb},
            {"items", toJson(operation.items)},
            {"kind", operation.kind}};
}

TrashItem itemFrom(const json& object) {
    return {.id = object.at("id").get<std::string>(),
            .opID = object.at("opID").get<std::string>(),
            .originalPath = object.at("originalPath").get<std::string>(),
            .name = object.at("name").get<std::string>(),
            .gb = object.at("gb").get<double>(),
            .taken = object.at("taken").get<double>()};
}

std::vector<TrashItem> itemsFrom(const json& list) {
    std::vector<TrashItem> items;
    items.reserve(list.size());
    for (const json& item : list.get_ref<const json::array_t&>()) items.push_back(itemFrom(item));
    return items;
}

Operation operationFrom(const json& object) {
    return {.id = object.at("id").get<std::string>(),
            .ts = object.at("ts").get<double>(),
            .gb = object.at("gb").get<double>(),
            .items = itemsFrom(object.at("items")),
            .kind = object.at("kind").get<std::string>()};
}

}  // namespace

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

std::string encodeManifest(const Manifest& manifest) {
    ordered operations = ordered::array();
    for (const Operation& operation : manifest.operations) operations.push_back(toJson(operation));
    const ordered object{{"items", toJson(manifest.items)}, {"operations", operations}};
    return object.dump();
}

Manifest decodeManifest(const std::string& text) {
    const json object = json::parse(text);
    Manifest manifest{.items = itemsFrom(object.at("items")), .operations = {}};
    for (const json& operation : object.at("operations").get_ref<const json::array_t&>()) {
        manifest.operations.push_back(operationFrom(operation));
    }
    return manifest;
}

}  // namespace velto
