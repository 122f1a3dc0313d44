#include "uninstall/app_images.h"

#include <gtest/gtest.h>

namespace velto {

void PrintTo(const AppImageName& called, std::ostream* out) {
    *out << called.name << " (" << called.version << ")";
}

namespace {

// Names as projects give them to the files of their releases.
TEST(AppImageNameOf, IsWhatTheFileIsCalledWithoutItsBuild) {
    const std::pair<const char*, AppImageName> names[] = {
        {"Foobar-1.2.AppImage", {"Foobar", "1.2"}},
        {"Obsidian-1.5.3-arm64.AppImage", {"Obsidian", "1.5.3"}},
        {"krita-5.2.2-x86_64.appimage", {"krita", "5.2.2"}},
        {"Logseq-linux-x64-0.10.9.AppImage", {"Logseq", "0.10.9"}},
        {"FreeCAD_1.0.0-conda-Linux-x86_64-py311.AppImage", {"FreeCAD", "1.0.0"}},
        {"LM-Studio-0.3.5-9-x64.AppImage", {"LM-Studio", "0.3.5"}},
        {"LM Studio 0.3.AppImage", {"LM Studio", "0.3"}},
        {"nvim.appimage", {"nvim", ""}},
        {"nvim-linux-x86_64.appimage", {"nvim", ""}},
        {"Beyond-All-Reason-1.2988.0.AppImage", {"Beyond-All-Reason", "1.2988.0"}},
        {"balenaEtcher-v1.18.AppImage", {"balenaEtcher", "1.18"}},
        {"Half-Life-2.AppImage", {"Half-Life-2", ""}},
        {"7-Zip-2301-x86.AppImage", {"7-Zip", "2301"}},
        {"1.2.3.AppImage", {"1.2.3", ""}},
        {"x86_64.AppImage", {"x86_64", ""}},
        {"-.AppImage", {"-.AppImage", ""}},
        {"\xC3\xA1rbol-2.0.AppImage", {"\xC3\xA1rbol", "2.0"}},
    };
    for (const auto& [file, called] : names)
        EXPECT_EQ(appImageName(file), called) << file;
}

}  // namespace
}  // namespace velto
