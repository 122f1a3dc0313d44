// Trees of every shape go to and fro between two volumes and come back as they were.

#include <fmt/format.h>

#include <algorithm>
#include <random>

#include "platform/posix/MoveWorld.h"
#include "support/exhaustive.h"
#include "support/extended_attributes.h"

namespace velto {
namespace {

/// Makes the same tree from the same seed.
class RandomTree {
public:
    RandomTree(TempHome& home, unsigned seed, bool takesAnyByte)
        : home_(home), random_(seed), takesAnyByte_(takesAnyByte) {}

    void make(const std::string& place, int depth) {
        makeEntry(place, depth, true);
        // From the bottom up: what is made in a folder changes its time.
        std::ranges::reverse(made_);
        for (const std::string& path : made_)
            finish(path);
    }

private:
    unsigned upTo(unsigned most) {
        return std::uniform_int_distribution<unsigned>(0, most)(random_);
    }

    std::string name() {
        std::string text(1 + (upTo(9) == 0 ? upTo(254) : upTo(12)), ' ');
        for (char& letter : text) {
            // Any byte but NUL and the slash, or ASCII where a name has to be text.
            do {
                const unsigned others = takesAnyByte_ ? 254 : 126;
                letter = static_cast<char>(upTo(2) == 0 ? 1 + upTo(others) : 'a' + upTo(25));
            } while (letter == '/');
        }
        return text == "." || text == ".." ? "dots" : text;
    }

    void makeEntry(const std::string& place, int depth, bool isRoot) {
        if (home_.exists(place)) return;
        const unsigned kind = isRoot && depth > 1 ? 9 : upTo(9);
        made_.push_back(home_.path(place));
        if (kind == 0) {
            home_.link(place, name());
        } else if (kind == 1) {
            home_.sparse(place, upTo(300'000));
        } else if (kind < 6 || depth == 0) {
            std::string content(upTo(3) == 0 ? upTo(200'000) : upTo(100), '\0');
            for (std::size_t at = 0; at < content.size(); at += 1 + upTo(200))
                content[at] = static_cast<char>(upTo(255));
            home_.text(place, content);
        } else {
            home_.folder(place);
            for (unsigned count = upTo(6); count > 0; --count)
                makeEntry(place + "/" + name(), depth - 1, false);
        }
    }

    void finish(const std::string& path) {
        struct stat status {};
        if (lstat(path.c_str(), &status) != 0) return;
        if (!S_ISLNK(status.st_mode)) {
            for (unsigned count = upTo(2); count > 0; --count) {
                // May be refused; then there is one fewer.
                setExtendedAttribute(path, fmt::format("user.{}", upTo(1000)),
                                     std::string(upTo(100), 'v'));
            }
            const unsigned mine = S_ISDIR(status.st_mode) ? 0700 : 0600;
            const unsigned mode = geteuid() == 0 ? upTo(07777) : mine | (upTo(07777) & 01777);
            setMode(path, static_cast<mode_t>(mode));
        }
        const auto time = [&] { return timespec{upTo(2'000'000'000), upTo(999'999'999)}; };
        const timespec accessed = time();
        setTimes(path, accessed, time());
    }

    TempHome& home_;
    std::mt19937 random_;
    bool takesAnyByte_;
    std::vector<std::string> made_;
};

using RandomMoves = MoveBetweenVolumes;

TEST_F(RandomMoves, ATreeComesBackAsItWas) {
    const unsigned seeds = isExhaustive() ? 1'000 : 15;
    const bool anyBytes =
        takesNamesOfAnyBytes(source.path()) && takesNamesOfAnyBytes(target.path());
    for (unsigned seed = 1; seed <= seeds; ++seed) {
        RandomTree(source, seed, anyBytes).make("item", 4);
        const std::string text = sourceText();
        calls.knowsExclusiveRename = seed % 3 != 0;
        ASSERT_EQ(move(), 0) << "seed " << seed;
        ASSERT_EQ(targetText(), text) << "seed " << seed;
        ASSERT_TRUE(isOnlyAtTarget()) << "seed " << seed;
        ASSERT_EQ(moveBack(), 0) << "seed " << seed;
        ASSERT_EQ(sourceText(), text) << "seed " << seed;
        ASSERT_TRUE(isOnlyAtSource()) << "seed " << seed;
        files.removeAll(*from, "item");
    }
}

}  // namespace
}  // namespace velto
