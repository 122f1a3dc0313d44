#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <vector>

#include "bridge/BridgeLink.h"
#include "bridge/payload.h"
#include "monitor/activity.h"
#include "platform/Platform.h"
#include "settings/AppLanguage.h"

namespace velto {

/// The intents that ask one of the user's applications to quit, or end it. Only what the last
/// sample has told to be one can be meant, and each of its processes is held and recognised before
/// it is touched. Main thread. Make it with std::make_shared.
class QuitIntents : public std::enable_shared_from_this<QuitIntents> {
public:
    /// Everything outlives the object, which belongs to the bridge behind `link`.
    struct Context {
        BridgeLink& link;
        const Platform& platform;
        const AppLanguage& language;
    };

    explicit QuitIntents(const Context& context);

    /// What can be quit, as the page is told it.
    void know(std::vector<QuittableApplication> applications);

    void onQuitApplication(const Payload& payload);
    void onEndApplication(const Payload& payload);

    // How long an application may take to quit.
    static constexpr std::int64_t microsecondsBetweenLooks = 100'000;
    static constexpr int looks = 50;

private:
    void stop(const Payload& payload, bool byForce);
    void tell(const QuittableApplication& application, bool byForce, bool hasEnded);

    BridgeLink& link_;
    const Platform& platform_;
    const AppLanguage& language_;
    std::vector<QuittableApplication> known_;
    std::set<std::int32_t> stopping_;  // groups, until they are told of
};

}  // namespace velto
