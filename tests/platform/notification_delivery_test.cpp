#include "platform/notification_delivery.h"

#include <optional>
#include <thread>

#include <gmock/gmock.h>

#include "support/fakes.h"

namespace velto {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const Notification done{.identifier = "velto.maintenance.1",
                        .title = "Velto maintenance complete",
                        .body = "2.5 GB freed."};

/// Answers on a thread of its own what it is told to, or nothing.
class FakeCentre final : public NotificationCentre {
public:
    ~FakeCentre() override {
        for (auto& thread : threads_)
            thread.join();
    }

    void permission(std::function<void(NotificationPermission)> answer) override {
        held.push_back([answer] { answer(NotificationPermission::given); });
        if (said) threads_.emplace_back([answer, value = *said] { answer(value); });
    }

    void add(const Notification& notification, std::function<void(std::string)> answer) override {
        added.push_back(notification.identifier);
        held.push_back([answer] { answer("later"); });
        if (outcome) threads_.emplace_back([answer, value = *outcome] { answer(value); });
    }

    std::optional<NotificationPermission> said;
    std::optional<std::string> outcome;
    std::vector<std::string> added;
    std::vector<std::function<void()>> held;  // gives every answer (once more)

private:
    std::vector<std::thread> threads_;
};

TEST(NotificationDelivery, IsHandedToACentreThatMayShowIt) {
    FakeLog log;
    FakeCentre centre;
    centre.said = NotificationPermission::given;
    centre.outcome = "";
    deliver(centre, done, 1h, log);
    EXPECT_THAT(centre.added, ElementsAre("velto.maintenance.1"));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(NotificationDelivery, WhereNobodyWasAskedItsTextIsLoggedAndNothingWaits) {
    FakeLog log;
    FakeCentre centre;
    centre.said = NotificationPermission::unasked;
    deliver(centre, done, 24h, log);  // a centre that has a question open would not answer
    EXPECT_THAT(centre.added, IsEmpty());
    EXPECT_THAT(log.lines(),
                ElementsAre("Velto ▶ no se pudo entregar la notificación: falta el permiso, que se "
                            "pide en la ventana; decía: Velto maintenance complete: 2.5 GB "
                            "freed."));
}

TEST(NotificationDelivery, TheCentreSaysWhyItRefuses) {
    FakeLog log;
    FakeCentre centre;
    centre.said = NotificationPermission::refused;
    centre.outcome = "Notifications are not allowed\nfor this application";
    deliver(centre, done, 1h, log);
    EXPECT_THAT(log.lines(),
                ElementsAre("Velto ▶ no se pudo entregar la notificación: Notifications "
                            "are not allowed for this application"));
}

TEST(NotificationDelivery, ACentreThatIsSilentIsNotWaitedForLong) {
    FakeLog log;
    FakeCentre silent;
    deliver(silent, done, 1ms, log);
    EXPECT_THAT(silent.added, IsEmpty());
    FakeCentre undecided;
    undecided.said = NotificationPermission::given;
    deliver(undecided, done, 200ms, log);
    EXPECT_THAT(log.lines(), testing::Contains(HasSubstr("no responde")).Times(2));
    // Its answers come when nobody waits any more, and twice.
    for (const FakeCentre* centre : {&silent, &undecided}) {
        for (const auto& answer : centre->held) {
            answer();
            answer();
        }
    }
}

}  // namespace
}  // namespace velto
