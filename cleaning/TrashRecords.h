#pragma once

#include <cerrno>
#include <exception>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "platform/FileManager.h"

namespace velto {

/// Of the manifest and of the journal: more than a million items, of which a manifest holds two
/// copies each of some 300 bytes.
inline constexpr ReadLimit trashRecordsLimit = ownFile(1 << 30);

/// One file or folder in the program's trash.
struct TrashItem {
    std::string id;            // "it" and eight hexadecimal digits
    std::string opID;          // the operation that moved it in
    std::string originalPath;  // exactly as the caller gave it; restoring brings it back there
    std::string name;          // last component of the standardised path
    double gb = 0;             // decimal gigabytes
    double taken = 0;          // seconds since 1970 when it was moved in

    bool operator==(const TrashItem&) const = default;
};

/// An item that waits because a move of it to or from another volume was cut off. It is finished,
/// or taken back, once the folder of its other side can be used.
struct WaitingItem {
    enum class Way { in, out };  // of the trash
    enum class Reason {
        absent,     // the disk of that folder is not connected, or another one is
        refused,    // the folder cannot be reached as it is: no permission, a link, a fault
        unsettled,  // it is there, and what stands there does not let the move be finished
    };

    TrashItem item;  // what went into the trash, or was taken out of it
    Way way = Way::in;
    std::string folder;  // absolute path
    Reason reason = Reason::absent;
    bool isWhole = false;  // what stands in the trash is known to be all of it

    bool operator==(const WaitingItem&) const = default;
};

/// One user action that moved items into the trash.
struct Operation {
    std::string id;                // "op" and a whole UUID
    double ts = 0;                 // seconds since 1970 when it was recorded
    double gb = 0;                 // sum of its items, one decimal
    std::vector<TrashItem> items;  // full copies
    std::string kind;              // the caller's own word, without meaning here

    bool operator==(const Operation&) const = default;
};

/// The trash as it is stored.
struct Manifest {
    std::vector<TrashItem> items;       // oldest first
    std::vector<Operation> operations;  // newest first

    bool operator==(const Manifest&) const = default;
};

/// The items' gigabytes, not rounded.
double sumOf(const std::vector<TrashItem>& items);

/// Why a path was refused. The texts exist in Spanish only and are shown as they are.
class TrashError : public std::exception {
public:
    enum class Reason { outsideHome, protected_, notFound, alreadyInTrash };

    explicit TrashError(Reason reason) : reason_(reason) {}

    Reason reason() const { return reason_; }
    const char* what() const noexcept override;

private:
    Reason reason_;
};

/// An item cannot go where it should: `path()`, which was a folder on the way there, is a link now
/// (ELOOP) or no folder at all (ENOTDIR). It stays in the trash, and may go to another folder.
class ReturnBlocked : public FileError {
public:
    ReturnBlocked(const TrashItem& item, const FileError& reason)
        : FileError(reason.attempt(), reason.path(), reason.code()), item_(item) {}

    const TrashItem& item() const { return item_; }

private:
    TrashItem item_;
};

/// An item is not to be had for now: a move of it was cut off, and the volume or the folder of its
/// other side, `path()`, is out of reach. It is settled once that is back.
class ItemWaits : public FileError {
public:
    ItemWaits(const TrashItem& item, const std::string& otherSide)
        : FileError("move", otherSide, EBUSY, "out of reach while an item waits for it"),
          item_(item) {}

    const TrashItem& item() const { return item_; }

private:
    TrashItem item_;
};

// Keys equal the field names and come in their order. Reading is strict: a missing or mistyped
// field throws nlohmann::json::exception, and so does writing a number or text that JSON cannot
// express.

nlohmann::ordered_json toJson(const TrashItem& item);
nlohmann::ordered_json toJson(const Operation& operation);
Operation operationFromJson(const nlohmann::json& object);

/// The manifest's JSON, compact.
std::string encodeManifest(const Manifest& manifest);

Manifest decodeManifest(const std::string& text);

}  // namespace velto
