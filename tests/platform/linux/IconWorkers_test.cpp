#include "platform/linux/IconWorkers.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

#include "platform/linux/LinuxIcons.h"
#include "platform/posix/PosixFileManager.h"
#include "support/TempHome.h"
#include "support/linux/icon_worker.h"
#include "support/made_picture.h"

namespace velto {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds soon{300};
constexpr Colour red{200, 10, 10, 255};

class IconWorkersTest : public testing::Test {
protected:
    /// A worker that notes each of its starts and then does what the script says.
    std::string worker(const std::string& script) {
        const std::string path =
            home.text("worker", "#!/bin/sh\necho >> '" + home.path("starts") + "'\n" + script)
                .path();
        EXPECT_EQ(chmod(path.c_str(), 0700), 0);
        return path;
    }
    auto starts() {
        const std::string noted = home.exists("starts") ? home.read("starts") : "";
        return std::ranges::count(noted, '\n');
    }

    TempHome home;
};

/// Seconds of the processor that ended children have used.
double secondsOfChildren() {
    rusage used{};
    getrusage(RUSAGE_CHILDREN, &used);
    return static_cast<double>(used.ru_utime.tv_sec + used.ru_stime.tv_sec);
}

TEST_F(IconWorkersTest, APictureIsDrawnAtTheSizeWantedBySeveralThreadsAtOnce) {
    IconWorkers workers(iconWorker);
    const std::string picture = pngPicture(64, 64, red);
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&] {
            for (int pixels = 16; pixels < 32; ++pixels) {
                const auto png = workers.png(picture, pixels);
                ASSERT_TRUE(png && png->size() > 24);
                EXPECT_EQ((*png)[19], pixels);  // the last byte of the width
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

TEST_F(IconWorkersTest, WhatIsNoPictureHasNoneAndTheNextOneIsDrawn) {
    IconWorkers workers(iconWorker);
    EXPECT_FALSE(workers.png("no picture", 32));
    EXPECT_FALSE(workers.png("", 32));
    EXPECT_FALSE(workers.png(pngPicture(4, 4, red), 0));
    EXPECT_FALSE(workers.png(pngPicture(4, 4, red), 5'000));
    EXPECT_TRUE(workers.png(pngPicture(4, 4, red), 32));
}

TEST_F(IconWorkersTest, WithoutTheWorkerThereAreNoPictures) {
    EXPECT_FALSE(IconWorkers(home.path("missing")).png(pngPicture(4, 4, red), 32));
}

TEST_F(IconWorkersTest, APictureThatTakesForEverIsGivenUpAndNotTriedAgain) {
    IconWorkers workers(worker("exec sleep 600"), soon);
    EXPECT_FALSE(workers.png("one", 32));
    EXPECT_FALSE(workers.png("one", 32));
    EXPECT_EQ(starts(), 1);
    EXPECT_FALSE(workers.png("another", 32));
    EXPECT_EQ(starts(), 2);
}

TEST_F(IconWorkersTest, AFolderFullOfHarmfulPicturesEndsTheDrawing) {
    IconWorkers workers(worker("kill -KILL $$"));
    for (int picture = 0; picture < 100; ++picture)
        EXPECT_FALSE(workers.png(std::to_string(picture), 32));
    EXPECT_EQ(starts(), 8);
}

TEST_F(IconWorkersTest, AWorkerThatHasGoneByItselfIsReplaced) {
    IconWorkers workers(worker("exit 0"));
    for (int picture = 0; picture < 10; ++picture)
        EXPECT_FALSE(workers.png(std::to_string(picture), 32));
    EXPECT_EQ(starts(), 20) << "each picture is tried once more";
}

TEST_F(IconWorkersTest, NothingButAPictureOfTheRightSizeIsTaken) {
    // More than asked for; something else.
    EXPECT_FALSE(IconWorkers(worker("printf '\\377\\377\\377\\377'; cat"), soon).png("a", 32));
    EXPECT_FALSE(IconWorkers(worker("printf '\\010\\0\\0\\0<script>'; cat"), soon).png("a", 32));
    EXPECT_FALSE(IconWorkers(worker("printf '\\010\\0\\0\\0'; exec sleep 600"), soon).png("a", 32));
}

TEST_F(IconWorkersTest, ADrawingThatAsksForTheWholeMachineGetsLittleOfIt) {
    // A huge page with a blur over all of it, and a noise of a million layers.
    const std::string head = R"(<svg xmlns="http://www.w3.org/2000/svg" )";
    const std::string blurred =
        head +
        R"(width="9000" height="9000"><filter id="f"><feGaussianBlur stdDeviation="999"/></filter>)"
        R"svg(<rect width="9000" height="9000" filter="url(#f)"/></svg>)svg";
    const std::string noisy =
        head +
        R"(width="32" height="32"><filter id="f"><feTurbulence baseFrequency="1" )"
        R"svg(numOctaves="99999999"/></filter><rect width="32" height="32" filter="url(#f)"/></svg>)svg";
    const double before = secondsOfChildren();
    {
        IconWorkers workers(iconWorker, std::chrono::minutes(2));
        for (const std::string& drawing : {blurred, noisy})
            workers.png(drawing, 32);
        EXPECT_TRUE(workers.png(pngPicture(4, 4, red), 32)) << "the others are drawn all the same";
    }
    EXPECT_LT(secondsOfChildren() - before, 15);
}

TEST_F(IconWorkersTest, FilesThatAreNoPicturesAreNotEvenRead) {
    const PosixFileManager files;
    LinuxIcons icons(files, worker("exit 0"));
    ASSERT_EQ(mkfifo(home.path("pipe.png").c_str(), 0600), 0);
    EXPECT_FALSE(icons.pngDataURL(home.path("pipe.png"), 32));
    EXPECT_FALSE(icons.pngDataURL(home.sparse("sparse.png", 3'000'000'000).path(), 32));
    EXPECT_FALSE(icons.pngDataURL(
        home.text("long.svg", "<svg>" + std::string(2'000'000, ' ') + "</svg>").path(), 32));
    EXPECT_EQ(starts(), 0);
}

}  // namespace
}  // namespace velto
