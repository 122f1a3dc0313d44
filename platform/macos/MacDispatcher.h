#pragma once

#include "platform/Dispatcher.h"

namespace velto {

/// Grand Central Dispatch. Work for the main thread runs while the application's loop does.
class MacDispatcher final : public Dispatcher {
public:
    bool isMainThread() const override;
    void main(Work work) override;
    void mainAfter(double seconds, Work work) override;
    void global(QualityOfService quality, Work work) override;
};

}  // namespace velto
