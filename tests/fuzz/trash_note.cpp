#include <string>

#include "fuzz/engine/Target.h"
#include "maintenance/SystemTrash.h"

namespace velto::fuzz {
namespace {

void judge(std::string_view input) {
    const auto date = deletionDate(std::string(input));
    require(!date || *date == *date, "a date is a number");
    require(date == deletionDate(std::string(input)), "and the same each time");
}

const Registration registered("trash_note", judge);

}  // namespace
}  // namespace velto::fuzz
