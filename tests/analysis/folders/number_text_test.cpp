#include "analysis/folders/number_text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>

namespace velto::number_text {
namespace {

TEST(NumberText, EveryNumberIsReadAsItWasWritten) {
    const std::uint64_t most = UINT64_MAX;
    for (std::uint64_t near = 1; near <= most / 2; near *= 2) {
        for (const std::uint64_t number : {near - 1, near, near + 1, most - near}) {
            std::string text;
            append(text, number);
            EXPECT_EQ(text.find('\0'), std::string::npos) << number;
            Reader reader(text);
            EXPECT_EQ(reader.number(most), number);
            EXPECT_TRUE(reader.isGood()) << number;
            EXPECT_EQ(reader.left(), 0U) << number;
        }
        if (near > most / 4) break;
    }
}

TEST(NumberText, NoChangeOfAByteLeavesTheChecksumAsItWas) {
    std::string content;
    for (int length = 0; length < 40; ++length) {
        const std::string sum = checksumOf(content);
        EXPECT_EQ(sum.size(), checksumLength);
        for (char& byte : content) {
            const char before = byte;
            for (int other = 0; other < 256; ++other) {
                byte = static_cast<char>(other);
                EXPECT_EQ(checksumOf(content) == sum, byte == before) << length << ' ' << other;
            }
            byte = before;
        }
        content += static_cast<char>('a' + length % 7);
    }
}

TEST(NumberText, NorDoesALongerOrShorterOrReorderedContent) {
    std::set<std::string> sums;
    for (std::size_t length = 0; length < 100; ++length)
        sums.insert(checksumOf(std::string(length, '\0')));
    EXPECT_EQ(sums.size(), 100U);
    EXPECT_NE(checksumOf("firstly:secondly"), checksumOf("secondlyfirstly:"));
}

}  // namespace
}  // namespace velto::number_text
