#pragma once

#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include "platform/HomeLayout.h"

namespace velto {

/// Why something was not removed. The numbers count.
enum class RemovalReason {
    admin = 0,       // out of the user's reach
    perm = 1,        // refused inside the home
    busy = 2,        // in use
    gone = 3,        // not there any more
    protected_ = 4,  // in a protected place
    other = 5,
};

/// "admin", "perm", "busy", "gone", "protected", "other".
std::string_view code(RemovalReason reason);

/// Hidden places of a home that the rules name for the application at hand.
using Claims = std::vector<std::string>;

/// True when the path may be acted on at all. By the text alone, after standardising; what the path
/// leads to is judged again when it is deleted. On a home that is no Mac's, folders shared by
/// applications, what is kept from every uninstall (kept_places.h) and hidden places that no rule
/// names and nothing claims are out of bounds as well.
bool isSafeToRemove(const std::string& path, const std::string& bundlePath, const HomeLayout& home,
                    const Claims& claims = {});

/// True for what `isSafeToRemove` refuses because it is, or may lie in, a protected place of the
/// home; false for everything outside the home, which is out of reach whatever it is.
bool isProtectedPlace(const std::string& path, const HomeLayout& home, const Claims& claims = {});

/// An error as a system or a service states it.
struct RemovalError {
    enum class Domain { trash, posix, cocoa, other };

    Domain domain = Domain::other;
    int code = 0;  // trash: TrashError::Reason; posix: errno; cocoa: Foundation's file error

    bool operator==(const RemovalError&) const = default;
};

/// What a caught exception states.
RemovalError removalError(const std::exception& error);

RemovalReason classify(const RemovalError& error, const std::string& path, const HomeLayout& home);

}  // namespace velto
