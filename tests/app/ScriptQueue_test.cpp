#include "app/window/ScriptQueue.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velto::window {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ScriptQueueTest : public testing::Test {
protected:
    static std::string longScript(char letter) {
        return std::string(ScriptQueue::longScript, letter);
    }

    /// The page has run the long script that was sent as the `index`th.
    void end(std::size_t index) { ends.at(index)(); }

    std::vector<char> sent;  // the first letter of each
    std::vector<std::function<void()>> ends;
    std::optional<ScriptQueue> queue{
        [this](const std::string& script, const std::function<void()>& ended) {
            sent.push_back(script.front());
            if (ended) ends.push_back(ended);
        }};
};

TEST_F(ScriptQueueTest, ShortScriptsGoAtOnceAndNobodyWaitsForThem) {
    queue->put("a");
    queue->put(std::string(ScriptQueue::longScript - 1, 'b'));
    EXPECT_THAT(sent, ElementsAre('a', 'b'));
    EXPECT_THAT(ends, IsEmpty());
}

TEST_F(ScriptQueueTest, WhatFollowsALongScriptWaitsUntilThePageHasRunIt) {
    for (const std::string& script :
         {longScript('a'), std::string("b"), longScript('c'), std::string("d")}) {
        queue->put(script);
    }
    EXPECT_THAT(sent, ElementsAre('a'));
    end(0);
    EXPECT_THAT(sent, ElementsAre('a', 'b', 'c'));
    queue->put("e");
    EXPECT_THAT(sent, ElementsAre('a', 'b', 'c'));
    end(1);
    EXPECT_THAT(sent, ElementsAre('a', 'b', 'c', 'd', 'e'));
    queue->put("f");
    EXPECT_THAT(sent, ElementsAre('a', 'b', 'c', 'd', 'e', 'f'));
}

TEST_F(ScriptQueueTest, ALongScriptThatEndsAtOnceHoldsNothingUp) {
    ScriptQueue atOnce([&](const std::string& script, const std::function<void()>& ended) {
        sent.push_back(script.front());
        if (ended) ended();
    });
    for (const char letter : {'a', 'b', 'c'})
        atOnce.put(longScript(letter));
    EXPECT_THAT(sent, ElementsAre('a', 'b', 'c'));
}

TEST_F(ScriptQueueTest, AnotherPageHearsNothingThatWasMeantForTheLast) {
    queue->put(longScript('a'));
    queue->put("b");
    queue->clear();
    queue->put(longScript('c'));
    queue->put("d");
    end(0);  // of the page that is gone
    EXPECT_THAT(sent, ElementsAre('a', 'c'));
    end(1);
    EXPECT_THAT(sent, ElementsAre('a', 'c', 'd'));
}

TEST_F(ScriptQueueTest, AScriptMayEndWhenTheQueueIsGone) {
    queue->put(longScript('a'));
    queue->put("b");
    queue.reset();
    end(0);
    EXPECT_THAT(sent, ElementsAre('a'));
}

}  // namespace
}  // namespace velto::window
