#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fuzz/engine/Target.h"

namespace velto::fuzz {
namespace {

std::vector<std::filesystem::path> keptInputs(std::string_view target) {
    const auto folder = std::filesystem::path(VELTO_FUZZ_CORPUS) / target;
    std::vector<std::filesystem::path> files;
    if (std::filesystem::is_directory(folder)) {
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            files.push_back(entry.path());
    }
    std::ranges::sort(files);
    return files;
}

/// The inputs that the fuzzers have kept, once each.
class Replay : public testing::Test {
public:
    explicit Replay(const Target& target) : target_(target) {}

    void TestBody() override {
        const auto inputs = keptInputs(target_.name);
        ASSERT_FALSE(inputs.empty()) << "nothing is kept for " << target_.name;
        for (const auto& path : inputs) {
            // Named first: an input that ends the process cannot be named afterwards.
            std::fprintf(stderr, "%s\n", path.c_str());
            std::ifstream stream(path, std::ios::binary);
            const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
            ASSERT_TRUE(stream.good() || stream.eof());
            target_.run(bytes);
        }
    }

private:
    Target target_;
};

}  // namespace
}  // namespace velto::fuzz

int main(int count, char** arguments) {
    testing::InitGoogleTest(&count, arguments);
    for (const velto::fuzz::Target& target : velto::fuzz::targets()) {
        testing::RegisterTest(std::string(target.name).c_str(), "TheKeptInputsAreHarmless", nullptr,
                              nullptr, __FILE__, __LINE__, [target]() -> testing::Test* {
                                  return new velto::fuzz::Replay(target);
                              });
    }
    return RUN_ALL_TESTS();
}
