#include "platform/linux/LinuxWorkspace.h"

#include <fcntl.h>
#include <gio/gio.h>
#include <glib-unix.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <functional>
#include <memory>

#include "support/TempHome.h"
#include "support/fakes.h"
#include "support/linux/main_loop.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/// A desktop of the tests' own: the user's applications must neither start nor be asked. GLib looks
/// for it once per process, so it lives as long.
const TempHome& desktop() {
    static const std::unique_ptr<TempHome> home = [] {
        auto owned = std::make_unique<TempHome>();
        TempHome& made = *owned;
        const auto browser = made.text("browser",
                                       "#!/bin/sh\necho \"$1 ${VELTO_TEST_OF_THE_USER-nothing} "
                                       "${VELTO_TEST_OWN-nothing}\" >" +
                                           made.path("opened"));
        chmod(browser.path().c_str(), 0700);
        mkfifo(made.path("opened").c_str(), 0600);
        made.text("data/applications/browser.desktop",
                  "[Desktop Entry]\nType=Application\nName=Browser\nExec=" + browser.path() +
                      " %u\nMimeType=x-scheme-handler/velto-test;\n");
        made.text("data/applications/mimeapps.list",
                  "[Default Applications]\nx-scheme-handler/velto-test=browser.desktop\n");
        made.link("system/mime", "/usr/share/mime");  // by which pictures are recognised
        setenv("XDG_DATA_HOME", made.path("data").c_str(), 1);
        setenv("XDG_DATA_DIRS", made.path("system").c_str(), 1);
        setenv("XDG_CONFIG_HOME", made.path("none").c_str(), 1);
        setenv("XDG_CONFIG_DIRS", made.path("none").c_str(), 1);
        return owned;
    }();
    return *home;
}

// Before the first test: others read desktop entries too, and GLib would look elsewhere for good.
[[maybe_unused]] const TempHome& preparedDesktop = desktop();

/// A session bus of the test's own, with a file manager on it when the test wants one.
class LinuxWorkspaceTest : public testing::Test {
protected:
    LinuxWorkspaceTest() {
        desktop();
        bus_ = g_test_dbus_new(G_TEST_DBUS_NONE);
        g_test_dbus_up(bus_);
    }

    ~LinuxWorkspaceTest() override {
        if (connection_ != nullptr) g_object_unref(connection_);
        g_test_dbus_down(bus_);
        g_object_unref(bus_);
    }

    void startFileManager() {
        connection_ = g_dbus_connection_new_for_address_sync(
            g_test_dbus_get_bus_address(bus_),
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, nullptr, nullptr);
        ASSERT_NE(connection_, nullptr);
        GDBusNodeInfo* const node = g_dbus_node_info_new_for_xml(
            "<node><interface name='org.freedesktop.FileManager1'><method name='ShowItems'>"
            "<arg type='as' direction='in'/><arg type='s' direction='in'/>"
            "</method></interface></node>",
            nullptr);
        static constexpr GDBusInterfaceVTable calls{.method_call = &LinuxWorkspaceTest::showItems,
                                                    .get_property = nullptr,
                                                    .set_property = nullptr,
                                                    .padding = {}};
        g_dbus_connection_register_object(connection_, "/org/freedesktop/FileManager1",
                                          node->interfaces[0], &calls, this, nullptr, nullptr);
        g_dbus_node_info_unref(node);
        bool owned = false;
        g_bus_own_name_on_connection(
            connection_, "org.freedesktop.FileManager1", G_BUS_NAME_OWNER_FLAGS_NONE,
            [](GDBusConnection*, const char*, gpointer flag) { *static_cast<bool*>(flag) = true; },
            nullptr, &owned, nullptr);
        iterateUntil([&] { return owned; });
    }

    /// Waits until the workspace has its answer: it comes before that of a later question.
    static void settle() {
        GDBusConnection* const bus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
        bool answered = false;
        g_dbus_connection_call(
            bus, "org.freedesktop.FileManager1", "/", "org.freedesktop.DBus.Peer", "Ping", nullptr,
            nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr,
            [](GObject* source, GAsyncResult* result, gpointer flag) {
                GVariant* const answer =
                    g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, nullptr);
                if (answer != nullptr) g_variant_unref(answer);
                *static_cast<bool*>(flag) = true;
            },
            &answered);
        iterateUntil([&] { return answered; });
        g_object_unref(bus);
    }

    static void showItems(GDBusConnection*, const char*, const char*, const char*, const char*,
                          GVariant* parameters, GDBusMethodInvocation* invocation, gpointer test) {
        GVariantIter* uris = nullptr;
        const char* startup = nullptr;
        g_variant_get(parameters, "(as&s)", &uris, &startup);
        const char* uri = nullptr;
        while (g_variant_iter_next(uris, "&s", &uri)) {
            static_cast<LinuxWorkspaceTest*>(test)->shown.emplace_back(uri);
        }
        g_variant_iter_free(uris);
        g_dbus_method_invocation_return_value(invocation, nullptr);
    }

    TempHome home;
    FakeLog log;
    std::vector<std::string> shown;

private:
    GTestDBus* bus_ = nullptr;
    GDBusConnection* connection_ = nullptr;
};

TEST_F(LinuxWorkspaceTest, AFileIsShownSelectedInTheFileManagerWhateverItsName) {
    startFileManager();
    LinuxWorkspace workspace(log);
    workspace.reveal("/home/ana/año 2020%/caf\xE9.txt");
    iterateUntil([&] { return !shown.empty(); });
    settle();
    EXPECT_THAT(shown, ElementsAre("file:///home/ana/a%C3%B1o%202020%25/caf%E9.txt"));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(LinuxWorkspaceTest, WithoutAFileManagerTheFolderIsTriedAndAFailureLogged) {
    LinuxWorkspace workspace(log);
    workspace.reveal(home.path("folder/file"));
    iterateUntil([&] { return !log.lines().empty(); });
    EXPECT_THAT(log.lines(), SizeIs(1));
    EXPECT_THAT(log.lines()[0], HasSubstr("no se pudo abrir file://" + home.path("folder") + ":"));
}

TEST_F(LinuxWorkspaceTest, AnAddressThatNothingOpensIsLogged) {
    LinuxWorkspace workspace(log);
    workspace.openURL("x-apple.systempreferences:com.apple.settings");
    iterateUntil([&] { return !log.lines().empty(); });
    EXPECT_THAT(log.lines()[0],
                HasSubstr("no se pudo abrir x-apple.systempreferences:com.apple.settings"));
}

TEST_F(LinuxWorkspaceTest, ALinkOpensInTheUsersBrowserWithoutWhatTheProgramSetForItself) {
    setenv("VELTO_TEST_OF_THE_USER", "chosen", 1);
    const int opened = open(desktop().path("opened").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(opened, 0);
    std::string text;
    g_unix_fd_add(
        opened, G_IO_IN,
        [](int file, GIOCondition, gpointer result) -> gboolean {
            std::array<char, 256> buffer;
            const ssize_t length = read(file, buffer.data(), buffer.size());
            if (length <= 0) return G_SOURCE_CONTINUE;
            static_cast<std::string*>(result)->assign(buffer.data(),
                                                      static_cast<std::size_t>(length));
            return G_SOURCE_REMOVE;
        },
        &text);
    LinuxWorkspace workspace(log);
    setenv("VELTO_TEST_OWN", "for the engine", 1);
    workspace.openURL("velto-test://page");
    iterateUntil([&] { return !text.empty() || !log.lines().empty(); });
    close(opened);
    unsetenv("VELTO_TEST_OF_THE_USER");
    unsetenv("VELTO_TEST_OWN");
    EXPECT_EQ(text, "velto-test://page chosen nothing\n");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(LinuxWorkspaceTest, ARelativePathIsRefusedInTheLog) {
    LinuxWorkspace(log).reveal("relative/file");
    EXPECT_THAT(log.lines(), SizeIs(1));
}

}  // namespace
}  // namespace velto
