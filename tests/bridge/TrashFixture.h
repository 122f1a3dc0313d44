#pragma once

#include "bridge/BridgeFixture.h"

namespace velto {

inline std::string toastScript(const std::string& title, const std::string& detail) {
    return "window.velto && window.velto.toast && window.velto.toast(\"" + title + "\", \"" +
           detail + "\");";
}

inline std::string trashChangedScript(const std::string& gb) {
    return "window.velto && window.velto.onTrashChanged && window.velto.onTrashChanged(" + gb +
           ");";
}

inline nlohmann::json lastArgument(const FakeWebView& page, const std::string& callback) {
    return page.lastArgument(callback);
}

/// A window that shows a saved analysis of two large files and a group of three copies.
struct TrashFixture : BridgeFixture {
    const std::string dataFolder = "Library/Application Support/Velto";
    std::string film, archive, copy1, copy2, copy3;

    void SetUp() override {
        film = machine.home.file("Movies/film.mov", 4_MB).path();
        archive = machine.home.file("Documents/archive.zip", 2_MB).path();
        copy1 = machine.home.text("a/copy.bin", "same").path();
        copy2 = machine.home.text("b/copy.bin", "same").path();
        copy3 = machine.home.text("c/copy.bin", "same").path();

        DiskState state;
        state.total = 500;
        state.free = 100;
        state.ser = 62;
        state.cats.push_back({.id = "fotos", .name = "Fotos y vídeo", .gb = 1.5});
        state.files = {{.name = "film.mov", .gb = 1.2, .kind = "video", .path = film},
                       {.name = "archive.zip", .gb = 0.7, .kind = "doc", .path = archive}};
        state.dupGroups = {
            {.id = "hash",
             .name = "copy.bin",
             .pairs = {{{"copy.bin", "4.9"}}, {{"copy.bin", "4.9"}}, {{"copy.bin", "4.9"}}},
             .paths = {copy1, copy2, copy3},
             .recommended = 2}};
        ScanCache(*machine.platform.files, machine.platform.layout).save(state, stamp);
        openWindow();
    }

    void openWindow() {
        open();
        load();
        machine.dispatcher.runAll();
        page->scripts.clear();
        machine.log.clear();
    }

    void ask(const char* type) {
        post(type);
        machine.dispatcher.runAll();
    }
    void ask(const char* type, const nlohmann::json& payload) {
        post(type, payload);
        machine.dispatcher.runAll();
    }
    void remove(const std::vector<std::string>& paths) { ask("deleteFiles", {{"paths", paths}}); }

    /// What the page was told last.
    nlohmann::json shown() const {
        const std::string script = page->calls("setState").back();
        const std::size_t begin = script.rfind("setState(") + 9;
        return FakeWebView::value(script.substr(begin, script.rfind(", ") - begin));
    }
    std::vector<std::string> shownFiles() const {
        std::vector<std::string> names;
        const nlohmann::json state = shown();
        for (const nlohmann::json& file : state["files"])
            names.push_back(file["name"]);
        return names;
    }
    nlohmann::json savedState() const {
        return nlohmann::json::parse(machine.home.read(dataFolder + "/lastScan.json"));
    }

    static constexpr double stamp = 1'600'000'000;
};

}  // namespace velto
