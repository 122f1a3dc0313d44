#include "app/window/PageFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>

#include "app/window/navigation.h"
#include "support/TempHome.h"
#include "support/system_platform.h"

namespace velto::window {
namespace {

using testing::HasSubstr;
using testing::Not;

struct PageFilesTest : testing::Test {
    TempHome disk;
    std::unique_ptr<FileManager> files = systemFileManager();
    PageFiles page{*files, disk.path("app.bundle")};

    PageFilesTest() {
        disk.text("app.bundle/index.html", "<!doctype html>");
        disk.text("app.bundle/velto.js", "go()");
        disk.text("secret.js", "secret");
        disk.text("app.bundle/inside/deep.js", "deep");
    }

    /// What a request gets, or "refused".
    std::string get(const std::string& address, const std::string& method = "GET") const {
        const auto file = page.answer(method, address);
        return file ? file->content : "refused";
    }

    std::string typeOf(const std::string& name) {
        disk.text("app.bundle/" + name, "x");
        const auto file = page.answer("GET", std::string(pageOrigin) + name);
        return file ? std::string(file->type) : "refused";
    }
};

TEST_F(PageFilesTest, ThePageAndItsFilesAreServed) {
    EXPECT_EQ(get("velto://app/index.html"), "<!doctype html>");
    EXPECT_EQ(get("velto://app/index.html#place"), "<!doctype html>");
    EXPECT_EQ(get("velto://app/velto.js"), "go()");
}

TEST_F(PageFilesTest, NothingOutsideTheBundleHasAName) {
    for (const std::string path : {"../secret.js",
                                   "%2e%2e/secret.js",
                                   "..%2fsecret.js",
                                   "%2E%2E%2Fsecret.js",
                                   "..",
                                   "..\\secret.js",
                                   "./velto.js",
                                   "inside/deep.js",
                                   "inside/../velto.js",
                                   "inside",
                                   "inside%2fdeep.js",
                                   "/velto.js",
                                   "//velto.js",
                                   "/etc/passwd",
                                   "velto.js/",
                                   "velto.js?",
                                   "velto.js?x",
                                   "velto%2ejs",
                                   "velto.js%00.js",
                                   ".hidden.js",
                                   "-velto.js",
                                   "",
                                   ".",
                                   "velto",
                                   "velto.js.",
                                   "v\xC3\xA9lto.js"}) {
        EXPECT_EQ(get("velto://app/" + path), "refused") << path;
    }
    EXPECT_EQ(get(std::string("velto://app/velto.js\0", 21)), "refused");
    EXPECT_EQ(get("velto://app/" + disk.path("secret.js")), "refused");
}

TEST_F(PageFilesTest, OnlyThePagesOwnOriginIsServed) {
    for (const char* address :
         {"velto://other/index.html", "velto:///index.html", "velto:index.html", "index.html", "",
          "velto://app", "velto://app:1/index.html", "velto://a@app/index.html",
          "file:///index.html", "http://app/index.html", "VELTO://app/index.html"}) {
        EXPECT_EQ(get(address), "refused") << address;
    }
}

TEST_F(PageFilesTest, ALinkIsNotServedWhereverItLeads) {
    disk.link("app.bundle/out.js", disk.path("secret.js"));
    disk.link("app.bundle/in.js", "velto.js");
    disk.link("app.bundle/nowhere.js", "gone.js");
    for (const char* name : {"out.js", "in.js", "nowhere.js"}) {
        EXPECT_EQ(get(std::string(pageOrigin) + name), "refused") << name;
    }
}

TEST_F(PageFilesTest, AFolderAndAMissingFileAreRefused) {
    disk.folder("app.bundle/folder.js");
    EXPECT_EQ(get("velto://app/folder.js"), "refused");
    EXPECT_EQ(get("velto://app/missing.js"), "refused");
    EXPECT_FALSE(PageFiles(*files, disk.path("gone")).answer("GET", pageAddress));
}

TEST_F(PageFilesTest, FilesAreReadAndNothingIsSentToThem) {
    for (const char* method : {"POST", "PUT", "HEAD", "OPTIONS", "get", ""}) {
        EXPECT_EQ(get("velto://app/index.html", method), "refused") << method;
    }
}

TEST_F(PageFilesTest, EachKindOfFileHasItsTypeAndUnknownKindsAreNotServed) {
    EXPECT_EQ(typeOf("a.html"), "text/html; charset=utf-8");
    EXPECT_EQ(typeOf("a.js"), "text/javascript; charset=utf-8");
    EXPECT_EQ(typeOf("a.css"), "text/css; charset=utf-8");
    EXPECT_EQ(typeOf("a.svg"), "image/svg+xml");
    EXPECT_EQ(typeOf("a.png"), "image/png");
    EXPECT_EQ(typeOf("a.woff2"), "font/woff2");
    EXPECT_EQ(typeOf("a.b.JS"), "text/javascript; charset=utf-8");
    for (const char* name : {"a", "a.exe", "a.json", "a.js~", "a.htm", "a.xhtml", "a.desktop"}) {
        EXPECT_EQ(typeOf(name), "refused") << name;
    }
}

TEST_F(PageFilesTest, AnEmptyFileIsAFileAndBytesStayAsTheyAre) {
    disk.text("app.bundle/empty.css", "");
    EXPECT_EQ(get("velto://app/empty.css"), "");
    const std::string bytes("\x89PNG\r\n\0\xFF", 8);
    disk.text("app.bundle/a.png", bytes);
    EXPECT_EQ(get("velto://app/a.png"), bytes);
}

TEST(PageHeaders, ThePolicyLetsThePageUseItsOwnFilesAndNothingElse) {
    std::map<std::string, std::string> fields;
    for (const HeaderField& field : PageFiles::headers())
        fields.emplace(field.name, field.value);
    EXPECT_EQ(fields.at("X-Content-Type-Options"), "nosniff");
    EXPECT_EQ(fields.at("Cache-Control"), "no-store");
    const std::string& policy = fields.at("Content-Security-Policy");
    for (const char* rule : {"default-src 'none';", "script-src 'self';", "style-src 'self';",
                             "img-src 'self' data:;", "font-src 'self';", "base-uri 'none';",
                             "form-action 'none';", "frame-ancestors 'none'"}) {
        EXPECT_THAT(policy, HasSubstr(rule));
    }
    for (const char* hole : {"unsafe", "http", "*", "blob:", "file:"}) {
        EXPECT_THAT(policy, Not(HasSubstr(hole)));
    }
}

}  // namespace
}  // namespace velto::window
