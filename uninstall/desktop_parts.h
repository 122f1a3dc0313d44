#pragma once

#include <string_view>

namespace velto {

/// True for the identifier of an entry that is a part of a desktop itself (its settings, its file
/// manager, its own source of applications) and came with it. Everything else that a distribution
/// has installed is an application like others.
bool isPartOfDesktop(std::string_view identifier);

}  // namespace velto
