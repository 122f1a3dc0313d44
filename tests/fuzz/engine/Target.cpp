#include "fuzz/engine/Target.h"

#include <cstdio>
#include <cstdlib>

namespace velto::fuzz {
namespace {

std::vector<Target>& known() {
    static std::vector<Target> list;
    return list;
}

}  // namespace

const std::vector<Target>& targets() { return known(); }

Registration::Registration(std::string_view name, void (*run)(std::string_view input)) {
    known().push_back({name, run});
}

void require(bool holds, std::string_view what) {
    if (holds) return;
    std::fprintf(stderr, "does not hold: %.*s\n", static_cast<int>(what.size()), what.data());
    std::abort();
}

}  // namespace velto::fuzz
