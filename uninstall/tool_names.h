#pragma once

#include <string_view>

namespace velto {

// Names that come from files and are handed to other programs. Each is held to the grammar of the
// program that takes it, so that none is ever read as an option, a pattern or a path.

/// An application of Flatpak's: at least three elements between full stops, of ASCII letters,
/// digits, low lines and hyphens, none of which begins with a digit or a hyphen; at most 255 bytes.
bool isFlatpakIdentifier(std::string_view name);

/// A unit of systemd's (systemd.unit(5)): ASCII letters, digits and ":-_.\@", at most 255 bytes, no
/// hyphen in front.
bool isUnitName(std::string_view name);

/// The label of a launchd service: at most 255 bytes, no hyphen in front, no slash (it would end
/// the part of a target that names the domain), no white space or control characters.
bool isServiceLabel(std::string_view label);

}  // namespace velto
