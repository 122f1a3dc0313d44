#include <gmock/gmock.h>

#include <string>

#include "cleaning/preview/picture_format.h"

namespace velto {
namespace {

using namespace std::string_literals;
using testing::Optional;

// Heads as the specifications of the formats give them, byte by byte.
const std::string png = "\x89PNG\r\n\x1A\n\0\0\0\x0DIHDR\0\0\x02\x80\0\0\x01\xE0\x08\x02\0\0\0"s;
// A segment for the application before the frame, in which another frame stands.
const std::string jpeg =
    "\xFF\xD8\xFF\xE1\0\x0B"
    "\xFF\xC0\0\x07\x08\0\x01\0\x01"
    "\xFF\xDB\0\x03\0\xFF\xFF\xC2\0\x0B\x08\x01\xE0\x02\x80\x01\x01\x11\0"s;
const std::string gif =
    "GIF89a\x0A\0\x14\0\x80\0\0\0\0\0\xFF\xFF\xFF"
    "\x21\xF9\x04\0\0\0\0\0"
    "\x2C\0\0\0\0\x0A\0\x14\0\0\x02\x02\x44\x01\0"
    "\x3B"s;
const std::string webp = "RIFF\x20\0\0\0WEBPVP8X\x0A\0\0\0\0\0\0\0\x7F\x02\0\xDF\x01\0"s;
const std::string lossless = "RIFF\x20\0\0\0WEBPVP8L\x0A\0\0\0\x2F\x7F\xC2\x77\0\0\0"s;
const std::string lossy = "RIFF\x20\0\0\0WEBPVP8 \x0A\0\0\0\0\0\0\x9D\x01\x2A\x80\x02\xE0\x01"s;

struct Sample {
    const char* name;
    std::string bytes;
    std::string_view mediaType;
    PictureSize size;
};

TEST(PictureFormat, IsToldByTheMagicBytesAndTheDimensionsByTheHead) {
    const Sample samples[] = {
        {"png", png, "image/png", {640, 480}},
        {"jpeg", jpeg, "image/jpeg", {640, 480}},
        {"gif", gif, "image/gif", {10, 20}},
        {"webp", webp, "image/webp", {640, 480}},
        {"lossless", lossless, "image/webp", {640, 480}},
        {"lossy", lossy, "image/webp", {640, 480}},
    };
    for (const Sample& sample : samples) {
        SCOPED_TRACE(sample.name);
        const auto format = pictureFormat(sample.bytes);
        ASSERT_TRUE(format);
        EXPECT_EQ(format->mediaType, sample.mediaType);
        EXPECT_THAT(pictureSize(sample.bytes), Optional(sample.size));
    }
}

TEST(PictureFormat, NothingElseIsAPicture) {
    const std::string others[] = {"",
                                  "hello",
                                  "<svg xmlns=\"http://www.w3.org/2000/svg\"/>",
                                  "<?xml version=\"1.0\"?><svg/>",
                                  "RIFF\x20\0\0\0WAVEfmt "s,
                                  "%PDF-1.7",
                                  "BM6\0\0\0"s,
                                  "\x89PNG"};
    for (const std::string& other : others) {
        EXPECT_FALSE(pictureFormat(other)) << other;
        EXPECT_FALSE(pictureSize(other)) << other;
    }
}

TEST(PictureFormat, AFrameThatIsLargerThanTheCanvasCounts) {
    std::string bytes = gif;
    bytes[gif.find("\x2C\0\0\0\0\x0A"s) + 6] = '\x40';  // the width's high byte
    EXPECT_THAT(pictureSize(bytes), Optional(PictureSize{0x400A, 20}));
}

TEST(PictureFormat, WhatEndsTooSoonHasNoDimensionsAndIsNotReadBeyond) {
    const std::string frame = jpeg.substr(0, jpeg.size() - 6);
    for (const std::string& whole : {png, jpeg, gif, webp, lossless, lossy}) {
        for (std::size_t length = 0; length < whole.size(); ++length) {
            const std::string part = whole.substr(0, length);
            const auto size = pictureSize(part);
            if (size) {
                EXPECT_THAT(pictureSize(whole), Optional(*size)) << length;
            }
        }
    }
    EXPECT_FALSE(pictureSize(png.substr(0, 20)));
    EXPECT_FALSE(pictureSize(jpeg.substr(0, 20)));
    EXPECT_FALSE(pictureSize(gif.substr(0, 19)));
}

TEST(PictureFormat, EmptyDimensionsAreNone) {
    std::string bytes = png;
    bytes.replace(16, 4, "\0\0\0\0"s);
    EXPECT_FALSE(pictureSize(bytes));
}

}  // namespace
}  // namespace velto
