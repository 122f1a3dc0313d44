#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace velto {

/// The name that a restored item gets when its own is taken: "Informe.pdf" becomes "Informe
/// (restaurado 1).pdf". Spanish in every language. One of more than `longest` bytes loses the end
/// of its stem, between two characters, and of an extension that leaves no room for a stem the end
/// too.
std::string restoredName(std::string_view name, int number, std::size_t longest);

/// The name of what the trash has of an item whose move was given up, when nobody can tell whether
/// it is whole: "Informe.pdf" becomes "Informe (copia sin terminar).pdf". Spanish in every
/// language, cut as above, and no longer than any volume that held `name` takes.
std::string unfinishedName(std::string_view name);

/// True for `name` itself and for each name that `restoredName` makes of it.
bool isRestoredName(std::string_view candidate, std::string_view name);

}  // namespace velto
