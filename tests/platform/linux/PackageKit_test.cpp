#include "platform/linux/packages/PackageKit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "ServiceOnBus.h"

namespace velto {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

// What PackageKit 1.2.6 publishes of itself in org.freedesktop.PackageKit.xml and
// org.freedesktop.PackageKit.Transaction.xml, as far as it is asked here.
constexpr const char* serviceText = R"(<node><interface name="org.freedesktop.PackageKit">
  <method name="CreateTransaction"><arg type="o" direction="out"/></method>
</interface></node>)";
constexpr const char* transactionText =
    R"(<node><interface name="org.freedesktop.PackageKit.Transaction">
  <method name="SetHints"><arg type="as" direction="in"/></method>
  <method name="SearchFiles">
    <arg type="t" direction="in"/><arg type="as" direction="in"/>
  </method>
  <method name="RemovePackages">
    <arg type="t" direction="in"/><arg type="as" direction="in"/>
    <arg type="b" direction="in"/><arg type="b" direction="in"/>
  </method>
  <signal name="Package"><arg type="u"/><arg type="s"/><arg type="s"/></signal>
  <signal name="ErrorCode"><arg type="u"/><arg type="s"/></signal>
  <signal name="Finished"><arg type="u"/><arg type="u"/></signal>
</interface></node>)";

constexpr const char* place = "/1_dacbceda";
constexpr const char* transaction = "org.freedesktop.PackageKit.Transaction";

/// A service that answers each method as the test says.
class Daemon {
public:
    using Answer = std::function<void(Daemon&)>;

    explicit Daemon(const char* address)
        : service_(
              address, "org.freedesktop.PackageKit",
              {{"/org/freedesktop/PackageKit", serviceText}, {place, transactionText}},
              [this](const auto& method, GVariant* arguments, GDBusMethodInvocation* invocation) {
                  answer(method, arguments, invocation);
              }) {}

    void on(const std::string& method, Answer answer) {
        const std::lock_guard lock(mutex_);
        answers_[method] = std::move(answer);
    }

    void tell(std::uint32_t info, const char* identifier) {
        service_.emit(place, transaction, "Package",
                      g_variant_new("(uss)", info, identifier, "A summary"));
    }
    void fail(std::uint32_t code, const char* text) {
        service_.emit(place, transaction, "ErrorCode", g_variant_new("(us)", code, text));
    }
    void finish(std::uint32_t exit) {
        service_.emit(place, transaction, "Finished", g_variant_new("(uu)", exit, 12));
    }
    void refuse() { refuses_ = true; }
    void leave() { service_.leave(); }

    std::vector<std::string> calls() const {
        const std::lock_guard lock(mutex_);
        return calls_;
    }

private:
    void answer(const std::string& method, GVariant* arguments, GDBusMethodInvocation* invocation) {
        const std::unique_ptr<char, void (*)(gpointer)> text(g_variant_print(arguments, FALSE),
                                                             g_free);
        {
            const std::lock_guard lock(mutex_);
            calls_.push_back(method + text.get());
        }
        if (method == "CreateTransaction") {
            g_dbus_method_invocation_return_value(invocation, g_variant_new("(o)", place));
            return;
        }
        if (const Answer given = answerTo(method)) given(*this);
        if (refuses_ && method != "SetHints") {
            g_dbus_method_invocation_return_dbus_error(
                invocation, "org.freedesktop.PackageKit.Transaction.RefusedByPolicy",
                "could not get authority");
            return;
        }
        g_dbus_method_invocation_return_value(invocation, nullptr);
    }

    Answer answerTo(const std::string& method) {
        const std::lock_guard lock(mutex_);
        return answers_[method];
    }

    mutable std::mutex mutex_;
    std::vector<std::string> calls_;
    std::map<std::string, Answer> answers_;
    std::atomic<bool> refuses_ = false;
    ServiceOnBus service_;  // last: it calls the above
};

class PackageKitTest : public testing::Test {
protected:
    PackageKitTest() : bus_(g_test_dbus_new(G_TEST_DBUS_NONE)) { g_test_dbus_up(bus_); }
    ~PackageKitTest() override {
        daemon_.reset();
        g_test_dbus_down(bus_);
        g_object_unref(bus_);
    }

    const char* address() const { return g_test_dbus_get_bus_address(bus_); }
    Daemon& daemon() {
        if (!daemon_) daemon_ = std::make_unique<Daemon>(address());
        return *daemon_;
    }
    PackageKit packages() const { return PackageKit(address()); }

    /// What a removal fails with, and its text.
    std::pair<PackageError::Reason, std::string> failure() const {
        try {
            packages().remove(maps, false);
        } catch (const PackageError& error) {
            return {error.reason(), error.what()};
        }
        ADD_FAILURE() << "removed";
        return {};
    }

    const Package maps{"gnome-maps", "gnome-maps;43.4-1;amd64;installed:debian"};

private:
    GTestDBus* bus_;
    std::unique_ptr<Daemon> daemon_;
};

TEST_F(PackageKitTest, TheOwnerOfAnEntryIsTheInstalledPackageThatHasIt) {
    daemon().on("SearchFiles", [](Daemon& daemon) {
        daemon.tell(2, "gnome-maps;44.1-1;amd64;sid");  // 2: available
        daemon.tell(1, "gnome-maps;43.4-1;amd64;installed:debian");
        daemon.finish(1);
    });
    EXPECT_EQ(packages().owner("/usr/share/applications/org.gnome.Maps.desktop"), maps);
    EXPECT_THAT(daemon().calls(),
                Contains("SearchFiles(4, ['/usr/share/applications/org.gnome.Maps.desktop'])"))
        << "4: among what is installed";
    EXPECT_THAT(daemon().calls(), Contains(HasSubstr("'interactive=true', 'background=false'")));
}

TEST_F(PackageKitTest, WhatNoPackageHasHasNoOwner) {
    daemon().on("SearchFiles", [](Daemon& daemon) { daemon.finish(1); });
    EXPECT_EQ(packages().owner("/opt/x.desktop"), std::nullopt);
}

TEST_F(PackageKitTest, WhatElseWouldGoIsToldWithoutRemovingAnything) {
    daemon().on("RemovePackages", [](Daemon& daemon) {
        daemon.tell(13, "gnome-maps;43.4-1;amd64;installed:debian");  // 13: removing
        daemon.tell(13, "gnome;1:43+1;amd64;installed:debian");
        daemon.tell(1, "gnome-core;1:43+1;amd64;installed:debian");
        daemon.finish(1);
    });
    EXPECT_THAT(packages().removedWith(maps),
                ElementsAre(Package{"gnome", "gnome;1:43+1;amd64;installed:debian"}));
    EXPECT_THAT(
        daemon().calls(),
        Contains("RemovePackages(4, ['gnome-maps;43.4-1;amd64;installed:debian'], true, false)"))
        << "4: simulated";
}

TEST_F(PackageKitTest, APackageIsRemovedWithAndWithoutWhatNeedsIt) {
    daemon().on("RemovePackages", [](Daemon& daemon) { daemon.finish(1); });
    packages().remove(maps, false);
    EXPECT_THAT(
        daemon().calls(),
        Contains("RemovePackages(1, ['gnome-maps;43.4-1;amd64;installed:debian'], false, false)"));
    packages().remove(maps, true);
    EXPECT_THAT(
        daemon().calls(),
        Contains("RemovePackages(1, ['gnome-maps;43.4-1;amd64;installed:debian'], true, false)"));
}

TEST_F(PackageKitTest, WhatTheUserDoesNotAllowIsRefused) {
    daemon().on("RemovePackages", [](Daemon& daemon) {
        daemon.fail(48, "Failed to obtain authentication.");
        daemon.finish(2);
    });
    EXPECT_EQ(failure(), std::pair(PackageError::Reason::refused,
                                   std::string("Failed to obtain authentication.")));
}

TEST_F(PackageKitTest, ARemovalThatIsCancelledIsRefused) {
    daemon().on("RemovePackages", [](Daemon& daemon) { daemon.finish(3); });
    EXPECT_EQ(failure().first, PackageError::Reason::refused);
}

TEST_F(PackageKitTest, AServiceThatRefusesTheCallItselfRefuses) {
    daemon().refuse();
    const auto [reason, text] = failure();
    EXPECT_EQ(reason, PackageError::Reason::refused);
    EXPECT_THAT(text, HasSubstr("could not get authority"));
}

TEST_F(PackageKitTest, AnotherInstallationUnderWayIsBusy) {
    for (const std::uint32_t code : {26U, 67U}) {
        daemon().on("RemovePackages", [code](Daemon& daemon) {
            daemon.fail(code, "Could not get lock");
            daemon.finish(2);
        });
        EXPECT_EQ(failure().first, PackageError::Reason::busy) << code;
    }
}

TEST_F(PackageKitTest, EveryOtherFailureIsToldInTheServicesWords) {
    daemon().on("RemovePackages", [](Daemon& daemon) {
        daemon.fail(20, "gnome-maps is essential");
        daemon.finish(2);
    });
    EXPECT_EQ(failure(),
              std::pair(PackageError::Reason::failed, std::string("gnome-maps is essential")));
}

TEST_F(PackageKitTest, AFailureWithoutAnErrorIsNoSuccess) {
    daemon().on("RemovePackages", [](Daemon& daemon) { daemon.finish(2); });
    EXPECT_EQ(failure().first, PackageError::Reason::failed);
}

TEST_F(PackageKitTest, AnErrorIsNoSuccessWhateverTheEnd) {
    daemon().on("RemovePackages", [](Daemon& daemon) {
        daemon.fail(4, "internal error");
        daemon.finish(1);
    });
    EXPECT_EQ(failure().first, PackageError::Reason::failed);
}

TEST_F(PackageKitTest, AServiceThatEndsInTheMiddleIsNotWaitedFor) {
    daemon().on("RemovePackages", [](Daemon& daemon) { daemon.leave(); });
    EXPECT_EQ(failure(),
              std::pair(PackageError::Reason::unavailable, std::string("PackageKit has ended")));
}

TEST_F(PackageKitTest, WithoutTheServiceNothingIsKnown) {
    EXPECT_EQ(failure().first, PackageError::Reason::unavailable);
    EXPECT_THROW(packages().owner("/usr/share/applications/a.desktop"), PackageError);
    EXPECT_THROW(PackageKit("unix:path=/nowhere/bus").owner("/a.desktop"), PackageError);
}

}  // namespace
}  // namespace velto
