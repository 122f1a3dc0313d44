#pragma once

#include <memory>
#include <thread>

#include "platform/Dispatcher.h"

namespace velto {

/// The default main context of GLib and two thread pools. The thread that makes it is the main
/// thread. Ending it drops what has not begun and waits for what has.
class GlibDispatcher final : public Dispatcher {
public:
    GlibDispatcher();
    ~GlibDispatcher() override;

    bool isMainThread() const override;
    void main(Work work) override;
    void mainAfter(double seconds, Work work) override;
    void global(QualityOfService quality, Work work) override;

private:
    class MainQueue;
    class Pool;

    std::thread::id mainThread_;
    std::shared_ptr<MainQueue> mainQueue_;
    std::unique_ptr<Pool> userInitiated_;
    std::unique_ptr<Pool> utility_;
};

}  // namespace velto
