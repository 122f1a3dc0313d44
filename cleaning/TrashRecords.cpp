#include "cleaning/TrashRecords.h"

#include <cmath>
#include <utility>

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

void append(std::string& text, const std::vector<TrashItem>& items) {
    text += '[';
    for (const TrashItem& item : items) {
        if (text.back() != '[') text += ',';
        text += writeJson(velto::toJson(item));
    }
    text += ']';
}

void append(std::string& text, const Operation& operation) {
    // Its items stand between its amount and its kind.
    const std::string ends = writeJson(
        ordered{{"id", operation.id}, {"ts", finite(operation.ts)}, {"gb", finite(operation.gb)}});
    text.append(ends, 0, ends.size() - 1).append(R"(,"items":)");
    append(text, operation.items);
    text.append(R"(,"kind":)").append(writeJson(ordered(operation.kind))) += '}';
}

/// What is left of a list whose objects have been taken: nothing, unless it held something else.
void requireTaken(const json& object, const char* key) {
    listFrom(object, key, [](const json& other) -> bool {
        throw json::type_error::create(302, "not an object", &other);
    });
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
    // Record by record: all of them as one JSON value would take many times their own memory.
    std::string text = R"({"items":)";
    append(text, manifest.items);
    text += R"(,"operations":[)";
    for (const Operation& operation : manifest.operations) {
        if (text.back() != '[') text += ',';
        append(text, operation);
    }
    return text + "]}";
}

Manifest decodeManifest(const std::string& text) {
    const std::vector<std::string> anItem{"items", ""};
    const std::vector<std::string> anOperation{"operations", ""};
    const std::vector<std::string> anOperationsItem{"operations", "", "items", ""};
    Manifest manifest;
    std::vector<TrashItem> ofOperation;
    const json rest = parseJson(text, [&](const auto& members, const json& object) {
        if (members == anItem) manifest.items.push_back(itemFrom(object));
        if (members == anOperationsItem) ofOperation.push_back(itemFrom(object));
        if (members != anOperation) return;
        Operation operation = operationFromJson(object);  // whose items have been taken
        ofOperation.shrink_to_fit();
        operation.items = std::exchange(ofOperation, {});
        manifest.operations.push_back(std::move(operation));
    });
    requireTaken(rest, "items");
    requireTaken(rest, "operations");
    return manifest;
}

}  // namespace velto
