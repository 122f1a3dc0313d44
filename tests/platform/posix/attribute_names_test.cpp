#include "platform/posix/attribute_names.h"

#include <gmock/gmock.h>

namespace velto {
namespace {

using namespace std::string_view_literals;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(AttributeNames, EachEndsWithANullCharacter) {
    EXPECT_THAT(attributeNamesIn("user.one\0user.other\0"sv),
                ElementsAre("user.one", "user.other"));
    EXPECT_THAT(attributeNamesIn(""), IsEmpty());
    EXPECT_THAT(attributeNamesIn("user.cut"), ElementsAre("user.cut"));
}

}  // namespace
}  // namespace velto
