#pragma once

#include <string_view>
#include <vector>

namespace velto::fuzz {

/// One kind of input that others write. `run` takes any bytes; what must hold of them is proved
/// with `require`, and what the sanitizers prove comes on top.
struct Target {
    std::string_view name;  // of its source file, its corpus folder and its dictionary
    void (*run)(std::string_view input);
};

/// Every target that is linked into this program: one under libFuzzer, all in the replay.
const std::vector<Target>& targets();

/// A static object of a target's source file makes the target known.
struct Registration {
    Registration(std::string_view name, void (*run)(std::string_view input));
};

/// Ends the process, which is how a fuzzer learns of a finding, when something does not hold.
void require(bool holds, std::string_view what);

}  // namespace velto::fuzz
