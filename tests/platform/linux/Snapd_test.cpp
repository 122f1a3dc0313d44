#include "platform/linux/packages/Snapd.h"

#include <gio/gunixsocketaddress.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libsoup/soup.h>

#include <future>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "support/TempHome.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Answers on a socket as snapd does. The answers have the form of those in snapd's documentation
/// of its interface (https://snapcraft.io/docs/snapd-api).
class SnapDaemon {
public:
    struct Answer {
        unsigned status = 200;
        std::string text;
    };

    explicit SnapDaemon(const std::string& socket) {
        std::promise<void> listening;
        thread_ = std::thread([this, socket, &listening] { serve(socket, listening); });
        listening.get_future().wait();
    }
    ~SnapDaemon() {
        g_main_context_invoke(
            context_,
            [](gpointer loop) {
                g_main_loop_quit(static_cast<GMainLoop*>(loop));
                return G_SOURCE_REMOVE;
            },
            loop_);
        thread_.join();
        g_main_loop_unref(loop_);
        g_main_context_unref(context_);
    }
    SnapDaemon(const SnapDaemon&) = delete;
    SnapDaemon& operator=(const SnapDaemon&) = delete;

    /// The answers to one request, "GET /v2/...", in their order; the last one is given again.
    void on(const std::string& request, std::vector<Answer> answers) {
        const std::lock_guard lock(mutex_);
        answers_[request] = std::move(answers);
    }
    std::vector<std::string> requests() const {
        const std::lock_guard lock(mutex_);
        return requests_;
    }

private:
    void serve(const std::string& socket, std::promise<void>& listening) {
        g_main_context_push_thread_default(context_);
        SoupServer* const server = soup_server_new(nullptr, nullptr);
        GSocketAddress* const address = g_unix_socket_address_new(socket.c_str());
        soup_server_listen(server, address, {}, nullptr);
        const auto asked = [](SoupServer*, SoupServerMessage* message, const char* path,
                              GHashTable*, gpointer data) {
            static_cast<SnapDaemon*>(data)->answer(message, path);
        };
        soup_server_add_handler(server, nullptr, asked, this, nullptr);
        listening.set_value();
        g_main_loop_run(loop_);
        g_object_unref(address);
        g_object_unref(server);
        while (g_main_context_iteration(context_, FALSE) != FALSE) {
        }
        g_main_context_pop_thread_default(context_);
    }

    void answer(SoupServerMessage* message, const std::string& path) {
        const std::lock_guard lock(mutex_);
        const std::string request = soup_server_message_get_method(message) + (" " + path);
        const SoupMessageBody* const body = soup_server_message_get_request_body(message);
        const char* const leave = soup_message_headers_get_one(
            soup_server_message_get_request_headers(message), "X-Allow-Interaction");
        requests_.push_back(request + " " +
                            std::string(body->data, static_cast<std::size_t>(body->length)) +
                            (leave != nullptr && std::string(leave) == "true" ? "" : " silently"));
        auto& answers = answers_[request];
        if (answers.empty()) {
            answers.push_back({404, error(404, "not found", "snap-not-found")});
        }
        const Answer given = answers.front();
        if (answers.size() > 1) answers.erase(answers.begin());
        soup_server_message_set_status(message, given.status, nullptr);
        soup_server_message_set_response(message, "application/json", SOUP_MEMORY_COPY,
                                         given.text.data(), given.text.size());
    }

public:
    static std::string error(int status, const char* text, const char* kind) {
        return R"({"type":"error","status-code":)" + std::to_string(status) +
               R"(,"status":"Error","result":{"message":")" + text + R"(","kind":")" + kind +
               "\"}}";
    }

private:
    mutable std::mutex mutex_;
    std::map<std::string, std::vector<Answer>> answers_;
    std::vector<std::string> requests_;
    GMainContext* context_ = g_main_context_new();
    GMainLoop* loop_ = g_main_loop_new(context_, FALSE);
    std::thread thread_;
};

class SnapdTest : public testing::Test {
protected:
    std::string entry(const std::string& file) const { return entries_ + "/" + file; }

    /// What a removal fails with, and its text.
    std::pair<PackageError::Reason, std::string> failure() {
        try {
            snapd_.remove(firefox, false);
        } catch (const PackageError& error) {
            return {error.reason(), error.what()};
        }
        ADD_FAILURE() << "removed";
        return {};
    }

    const Package firefox{"firefox", "firefox"};
    const std::string begun =
        R"({"type":"async","status-code":202,"status":"Accepted","result":null,"change":"41"})";
    TempHome home_;
    std::string socket_ = home_.path("snapd.socket");
    std::string entries_ = home_.path("applications");
    SnapDaemon daemon_{socket_};
    Snapd snapd_{socket_, entries_};
};

TEST_F(SnapdTest, AnEntryBelongsToTheSnapInItsName) {
    daemon_.on("GET /v2/snaps/firefox", {{200, R"({"type":"sync","status-code":200,"status":"OK",
        "result":{"id":"3wdH","name":"firefox","type":"app","version":"133.0"}})"}});
    EXPECT_EQ(snapd_.owner(entry("firefox_firefox.desktop")), firefox);
    EXPECT_EQ(snapd_.owner(entry("other_other.desktop")), std::nullopt) << "not installed";
    EXPECT_EQ(snapd_.owner("/usr/share/applications/firefox.desktop"), std::nullopt);
}

TEST_F(SnapdTest, ASecondInstallationIsASnapOfItsOwn) {
    daemon_.on("GET /v2/snaps/firefox_work", {{200, R"({"type":"sync","status-code":200,
        "result":{"name":"firefox_work","type":"app"}})"}});
    EXPECT_EQ(snapd_.owner(entry("firefox+work_firefox.desktop")),
              (Package{"firefox_work", "firefox_work"}));
}

TEST_F(SnapdTest, WhatHoldsUpTheSystemIsNoApplication) {
    daemon_.on("GET /v2/snaps/core22", {{200, R"({"type":"sync","status-code":200,
        "result":{"name":"core22","type":"base"}})"}});
    EXPECT_EQ(snapd_.owner(entry("core22_tool.desktop")), std::nullopt);
}

TEST_F(SnapdTest, ANameThatIsNoneIsAskedOfNobody) {
    EXPECT_EQ(snapd_.owner(entry("..%2Fx_y.desktop")), std::nullopt);
    EXPECT_EQ(snapd_.owner(entry("_y.desktop")), std::nullopt);
    EXPECT_THROW(snapd_.remove({"a", "a/../b"}, false), PackageError);
    EXPECT_THAT(daemon_.requests(), IsEmpty());
}

TEST_F(SnapdTest, ARemovalIsWaitedForToItsEnd) {
    daemon_.on("POST /v2/snaps/firefox", {{202, begun}});
    daemon_.on("GET /v2/changes/41",
               {{200, R"({"type":"sync","result":{"id":"41","status":"Doing","ready":false}})"},
                {200, R"({"type":"sync","result":{"id":"41","status":"Done","ready":true}})"}});
    snapd_.remove(firefox, false);
    EXPECT_THAT(daemon_.requests(), ElementsAre(R"(POST /v2/snaps/firefox {"action":"remove"})",
                                                "GET /v2/changes/41 ", "GET /v2/changes/41 "));
}

TEST_F(SnapdTest, ARemovalThatSnapdUndoesHasFailed) {
    daemon_.on("POST /v2/snaps/firefox", {{202, begun}});
    daemon_.on("GET /v2/changes/41", {{200, R"({"type":"sync","result":{"id":"41",
        "status":"Error","ready":true,"err":"cannot perform the following tasks"}})"}});
    EXPECT_EQ(failure(), std::pair(PackageError::Reason::failed,
                                   std::string("cannot perform the following tasks")));
}

TEST_F(SnapdTest, EveryRefusalHasItsReason) {
    using enum PackageError::Reason;
    const std::map<std::pair<int, const char*>, PackageError::Reason> reasons{
        {{401, "login-required"}, refused},     {{403, "auth-cancelled"}, refused},
        {{400, "snap-not-installed"}, missing}, {{404, "snap-not-found"}, missing},
        {{409, "snap-change-conflict"}, busy},  {{500, ""}, failed}};
    for (const auto& [answer, reason] : reasons) {
        const auto [status, kind] = answer;
        daemon_.on(
            "POST /v2/snaps/firefox",
            {{static_cast<unsigned>(status), SnapDaemon::error(status, "in its own words", kind)}});
        EXPECT_EQ(failure(), std::pair(reason, std::string("in its own words"))) << kind;
    }
}

TEST_F(SnapdTest, AnAnswerThatIsNoneOfItsOwnIsAFailure) {
    for (const char* text : {"", "<html>", "[]", "{}", R"({"type":"error"})", R"({"type":"async"})",
                             R"({"type":"async","change":7})"}) {
        daemon_.on("POST /v2/snaps/firefox", {{200, text}});
        EXPECT_EQ(failure().first, PackageError::Reason::failed) << text;
        daemon_.on("GET /v2/snaps/firefox", {{200, text}});
        EXPECT_THROW(snapd_.owner(entry("firefox_firefox.desktop")), PackageError) << text;
    }
}

TEST_F(SnapdTest, WithoutSnapdNothingIsKnown) {
    Snapd nobody(home_.path("nowhere.socket"), entries_);
    try {
        nobody.owner(entry("firefox_firefox.desktop"));
        ADD_FAILURE() << "answered";
    } catch (const PackageError& error) {
        EXPECT_EQ(error.reason(), PackageError::Reason::unavailable);
    }
}

}  // namespace
}  // namespace velto
