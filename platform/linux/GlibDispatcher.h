#pragma once

#include <memory>
#include <thread>

#include "platform/Dispatcher.h"

namespace velto {

/// The default main context of GLib and three thread pools: for what the user has asked for, for
/// what can wait, and for what changes files, so that reading which hangs never holds up a change.
/// The thread that makes it is the main thread. Destroying it drops what has not begun and waits
/// for what has, without end: after a `finish` that was false it must not be destroyed.
class GlibDispatcher final : public Dispatcher {
public:
    GlibDispatcher();
    ~GlibDispatcher() override;

    bool isMainThread() const override;
    void main(Work work) override;
    void mainAfter(double seconds, Work work) override;
    void global(QualityOfService quality, Work work) override;
    void change(Work work) override;
    bool finish(double seconds) override;

private:
    class MainQueue;
    class Pool;

    std::thread::id mainThread_;
    std::shared_ptr<MainQueue> mainQueue_;
    std::unique_ptr<Pool> userInitiated_;
    std::unique_ptr<Pool> utility_;
    std::unique_ptr<Pool> changes_;
};

}  // namespace velto
