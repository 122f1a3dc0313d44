#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "settings/AppLanguage.h"

namespace velto {

/// The version of this build, as "0.1.0".
std::string_view versionText();

/// What is printed, in place of a run, when one of the process arguments is "--help" or "--version"
/// (help wins); nothing otherwise. Ends with a line break.
std::optional<std::string> informationAskedFor(const std::vector<std::string>& arguments,
                                               const AppLanguage& language);

}  // namespace velto
