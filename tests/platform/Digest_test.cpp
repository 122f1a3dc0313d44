#include "platform/Digest.h"

#include <gtest/gtest.h>

#include <string_view>

namespace velto {
namespace {

std::string digestOf(DigestKind kind, std::string_view text) {
    const auto digest = makeDigest(kind);
    digest->update(std::as_bytes(std::span(text)));
    return digest->finish();
}

TEST(Digest, Md5GivesTheValuesOfRfc1321) {
    const auto md5 = [](std::string_view text) { return digestOf(DigestKind::md5, text); };
    EXPECT_EQ(md5(""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(md5("a"), "0cc175b9c0f1b6a831c399e269772661");
    EXPECT_EQ(md5("abc"), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(md5("message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
    EXPECT_EQ(md5("abcdefghijklmnopqrstuvwxyz"), "c3fcd3d76192e4007dfb496cca67e13b");
}

TEST(Digest, Sha256GivesTheValuesOfFips180) {
    const auto sha256 = [](std::string_view text) { return digestOf(DigestKind::sha256, text); };
    EXPECT_EQ(sha256(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(sha256("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(sha256("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
              "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
}

TEST(Digest, AFileReadInPiecesHasTheDigestOfTheWhole) {
    const auto digest = makeDigest(DigestKind::sha256);
    const std::string thousand(1000, 'a');
    for (int piece = 0; piece < 1000; ++piece) {
        digest->update(std::as_bytes(std::span(thousand)));
    }
    EXPECT_EQ(digest->finish(), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(Digest, WhatItIsSoFarIsThatOfTheBeginningAndEndsNothing) {
    for (const DigestKind kind : {DigestKind::md5, DigestKind::sha256}) {
        const auto digest = makeDigest(kind);
        digest->update(std::as_bytes(std::span(std::string_view("message "))));
        EXPECT_EQ(digest->soFar(), digestOf(kind, "message "));
        digest->update(std::as_bytes(std::span(std::string_view("digest"))));
        EXPECT_EQ(digest->soFar(), digestOf(kind, "message digest"));
        EXPECT_EQ(digest->finish(), digestOf(kind, "message digest"));
    }
}

TEST(Digest, TheNextFileStartsAnew) {
    const auto digest = makeDigest(DigestKind::md5);
    digest->update(std::as_bytes(std::span(std::string_view("first file"))));
    digest->finish();
    digest->update(std::as_bytes(std::span(std::string_view("abc"))));
    EXPECT_EQ(digest->finish(), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(digest->finish(), "d41d8cd98f00b204e9800998ecf8427e");
}

}  // namespace
}  // namespace velto
