#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

/// What an intent carries, and how it is read. Every conversion that fails gives nothing, and the
/// intent then does nothing.
namespace velto {

/// Absent means that the message had no payload.
using Payload = std::optional<nlohmann::json>;

namespace payload {

std::optional<std::string> string(const Payload& payload);

/// The payload as an object; null when it is something else.
const nlohmann::json* object(const Payload& payload);

/// A value of an object; null when there is no object or it lacks the key.
const nlohmann::json* member(const Payload& payload, const char* key);

std::optional<std::string> stringMember(const Payload& payload, const char* key);

/// A list of strings and nothing else; it may be empty.
std::optional<std::vector<std::string>> stringsMember(const Payload& payload, const char* key);

// Paths come in the form of `pathText` and are given as their own bytes.

/// Nothing for what no file can be called, as below.
std::optional<std::string> path(const Payload& payload);
std::optional<std::string> pathMember(const Payload& payload, const char* key);

/// A list of paths and nothing else; it may be empty. Entries that no file can be called stay in
/// it: they are refused where they are used, each by itself.
std::optional<std::vector<std::string>> pathListMember(const Payload& payload, const char* key);

/// The same, but an empty list gives nothing.
std::optional<std::vector<std::string>> pathsMember(const Payload& payload, const char* key);

/// A boolean, or a number (0 is false). Nothing when absent or something else.
std::optional<bool> boolMember(const Payload& payload, const char* key);

/// A whole number or a boolean. Nothing when absent or something else.
std::optional<std::int64_t> integerMember(const Payload& payload, const char* key);

/// A description for the log, on one line: "nil" for none. A summary tells enough to follow what
/// happens and not what the user's files are called: long texts are cut, of paths only the last
/// name is left, of lists the count and the first item, of objects within objects the keys. The
/// whole is the payload as JSON.
enum class Detail { summary, whole };
std::string description(const Payload& payload, Detail detail = Detail::summary);

}  // namespace payload
}  // namespace velto
