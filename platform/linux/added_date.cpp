#include "platform/added_date.h"

namespace velto {

std::optional<double> dateAddedToFolder(const std::string&) { return std::nullopt; }

}  // namespace velto
