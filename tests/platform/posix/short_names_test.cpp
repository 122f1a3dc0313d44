// A volume whose names are shorter than usual, as an encrypted home's: what the moves and saves
// call their own fits there.

#include <cerrno>
#include <string_view>

#include "platform/posix/MoveWorld.h"
#include "platform/values/scratch_name.h"
#include "platform/values/uuid.h"

namespace velto {
namespace {

constexpr std::size_t longest = 143;  // bytes; what eCryptfs takes

class ShortNames : public MoveBetweenVolumes {
protected:
    ShortNames() {
        calls.refuses = [this](const char* call, const char* about) {
            if (std::string_view(about).size() > longest) return ENAMETOOLONG;
            return resists && std::string_view(call) == "remove" ? EACCES : 0;
        };
    }

    int moveItem() {
        return reasonOf([&] { files.moveInSteps(*from, item, *to, item, own); });
    }

    const std::string item = std::string(longest, 'n');
    const std::string own = scratchName(newUUID());  // the longest there is
    bool resists = false;
};

TEST_F(ShortNames, AreLongEnoughForAMoveBetweenVolumes) {
    source.text(item, "content");
    EXPECT_EQ(moveItem(), 0);
    EXPECT_EQ(names(), std::set<std::string>{"target/" + item});
}

TEST_F(ShortNames, AreLongEnoughForWhatIsLeftBehind) {
    source.text(item, "content");
    resists = true;
    EXPECT_EQ(moveItem(), 0);
    ASSERT_EQ(names().size(), 2U);
    const std::string left = *names().begin();
    EXPECT_TRUE(left.starts_with("source/" + own + "-")) << left;
}

TEST_F(ShortNames, AreLongEnoughForASave) {
    files.writeAtomically(*to, item, "content");
    EXPECT_EQ(names(), std::set<std::string>{"target/" + item});
}

}  // namespace
}  // namespace velto
