#include "platform/linux/GlibDispatcher.h"

#include <glib.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <limits>
#include <mutex>
#include <unordered_map>
#include <utility>

namespace velto {
namespace {

// Work is handed over through queues of our own under a std::mutex; GLib's sources and pools carry
// tokens only. That keeps the order in our hands.

using Work = Dispatcher::Work;

constexpr int userInitiatedThreads = 64;  // work may block on files; as many as that helps nobody
constexpr int utilityThreads = 2;
constexpr int changingThreads = 4;  // more than there are services that change anything
constexpr int utilityNiceness = 10;

std::mutex handOverMutex;

/// Called before something is given to another thread by way of GLib, and by that thread when it
/// has it. GLib orders the two by locks that ThreadSanitizer does not see; this one it sees.
void passHandOver() { const std::lock_guard lock(handOverMutex); }

/// Work that throws is a program fault: it ends the program here, not somewhere inside GLib.
void perform(const Work& work) noexcept { work(); }

/// Rounded up: never earlier than asked.
guint milliseconds(double seconds) {
    const double value = std::ceil(seconds * 1000);
    if (!(value > 0)) return 0;
    return static_cast<guint>(
        std::min(value, static_cast<double>(std::numeric_limits<gint>::max())));
}

}  // namespace

/// The work that waits for the main thread. Tokens in the main context hold it, so it outlives the
/// dispatcher where the context does.
class GlibDispatcher::MainQueue : public std::enable_shared_from_this<MainQueue> {
public:
    void add(Work work) {
        {
            const std::lock_guard lock(mutex_);
            waiting_.push_back(std::move(work));
        }
        auto token = makeToken(0);
        passHandOver();
        g_idle_add_full(G_PRIORITY_DEFAULT, &MainQueue::runNext, token.release(),
                        &MainQueue::deleteToken);
    }

    void addDelayed(double seconds, Work work) {
        std::uint64_t identifier = 0;
        {
            const std::lock_guard lock(mutex_);
            identifier = ++lastDelayed_;
            delayed_.emplace(identifier, std::move(work));
        }
        auto token = makeToken(identifier);
        passHandOver();
        g_timeout_add_full(G_PRIORITY_DEFAULT, milliseconds(seconds), &MainQueue::runDelayed,
                           token.release(), &MainQueue::deleteToken);
    }

    /// Drops everything, outside the lock: what the work holds may add work as it goes.
    void close() {
        std::deque<Work> waiting;
        std::unordered_map<std::uint64_t, Work> delayed;
        {
            const std::lock_guard lock(mutex_);
            waiting.swap(waiting_);
            delayed.swap(delayed_);
        }
    }

private:
    struct Token {
        std::shared_ptr<MainQueue> queue;
        std::uint64_t delayed;  // which delayed work, 0 for the next that waits
    };

    std::unique_ptr<Token> makeToken(std::uint64_t delayed) {
        return std::make_unique<Token>(Token{shared_from_this(), delayed});
    }

    static void deleteToken(gpointer token) {
        const std::unique_ptr<Token> owned(static_cast<Token*>(token));
    }

    static gboolean runNext(gpointer data) {
        passHandOver();
        MainQueue& queue = *static_cast<Token*>(data)->queue;
        Work work;
        {
            const std::lock_guard lock(queue.mutex_);
            if (queue.waiting_.empty()) return G_SOURCE_REMOVE;  // closed meanwhile
            work = std::move(queue.waiting_.front());
            queue.waiting_.pop_front();
        }
        perform(work);
        return G_SOURCE_REMOVE;
    }

    static gboolean runDelayed(gpointer data) {
        passHandOver();
        const Token& token = *static_cast<Token*>(data);
        std::unordered_map<std::uint64_t, Work>::node_type node;
        {
            const std::lock_guard lock(token.queue->mutex_);
            node = token.queue->delayed_.extract(token.delayed);
        }
        if (!node.empty()) perform(node.mapped());
        return G_SOURCE_REMOVE;
    }

    std::mutex mutex_;
    std::deque<Work> waiting_;
    std::unordered_map<std::uint64_t, Work> delayed_;
    std::uint64_t lastDelayed_ = 0;
};

class GlibDispatcher::Pool {
public:
    /// Exclusive threads are the pool's own for good, so their niceness stays with it.
    Pool(int threads, bool exclusive, int niceness)
        : niceness_(niceness),
          pool_(g_thread_pool_new(&Pool::runNext, this, threads, exclusive ? TRUE : FALSE,
                                  nullptr)) {}

    ~Pool() { close(); }

    /// Drops what has not begun and waits for what has. Work that is added later, by what still
    /// runs here or in another pool, is dropped too.
    void close() {
        std::deque<Work> dropped;
        GThreadPool* pool = nullptr;
        {
            const std::lock_guard lock(mutex_);
            dropped.swap(waiting_);
            pool = std::exchange(pool_, nullptr);
        }
        constexpr gboolean dropTokens = TRUE, waitForRunning = TRUE;
        if (pool != nullptr) g_thread_pool_free(pool, dropTokens, waitForRunning);
        passHandOver();
    }

    /// Drops what has not begun, and what is added from now on. What dropped work holds goes on a
    /// thread of the pool, as one more piece of work: letting go of it may hang too. Once is
    /// enough: a second time would drop that work, here.
    void drop() {
        auto dropped = std::make_shared<std::deque<Work>>();
        const std::lock_guard lock(mutex_);
        if (!takesMore_ || pool_ == nullptr) return;
        dropped->swap(waiting_);
        push([dropped = std::move(dropped)] { dropped->clear(); });
        takesMore_ = false;
    }

    void waitUntilIdle() {
        std::unique_lock lock(mutex_);
        idle_.wait(lock, [this] { return isIdle(); });
    }

    /// True when it is idle by then.
    bool waitUntilIdle(std::chrono::steady_clock::time_point end) {
        std::unique_lock lock(mutex_);
        return idle_.wait_until(lock, end, [this] { return isIdle(); });
    }

    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;

    void add(Work work) {
        const std::lock_guard lock(mutex_);
        if (takesMore_ && pool_ != nullptr) push(std::move(work));
    }

private:
    /// With the lock held, while there is a pool.
    void push(Work work) {
        waiting_.push_back(std::move(work));
        passHandOver();
        // False means that no new thread could be made: the token then waits for a running one.
        g_thread_pool_push(pool_, this, nullptr);
    }

    static void runNext(gpointer, gpointer data) {
        passHandOver();
        static_cast<Pool*>(data)->runOne();
        passHandOver();
    }

    void runOne() {
        if (niceness_ != 0) lowerPriority();
        Work work;
        {
            const std::lock_guard lock(mutex_);
            if (waiting_.empty()) return;  // dropped meanwhile
            work = std::move(waiting_.front());
            waiting_.pop_front();
            ++running_;
        }
        perform(work);
        work = nullptr;  // what it holds is part of it
        const std::lock_guard lock(mutex_);
        --running_;
        if (isIdle()) idle_.notify_all();
    }

    bool isIdle() const { return waiting_.empty() && running_ == 0; }

    void lowerPriority() const {
        thread_local const int result = setpriority(PRIO_PROCESS, 0, niceness_);
        static_cast<void>(result);  // at worst the work runs as fast as any other
    }

    int niceness_;
    std::mutex mutex_;
    std::condition_variable idle_;
    std::deque<Work> waiting_;
    std::size_t running_ = 0;
    bool takesMore_ = true;
    GThreadPool* pool_;
};

GlibDispatcher::GlibDispatcher()
    : mainThread_(std::this_thread::get_id()),
      mainQueue_(std::make_shared<MainQueue>()),
      userInitiated_(std::make_unique<Pool>(userInitiatedThreads, false, 0)),
      utility_(std::make_unique<Pool>(utilityThreads, true, utilityNiceness)),
      changes_(std::make_unique<Pool>(changingThreads, false, 0)) {}

GlibDispatcher::~GlibDispatcher() {
    // The pools first: work that is running may still post its result to the main queue.
    userInitiated_->close();
    utility_->close();
    changes_->close();
    mainQueue_->close();
}

bool GlibDispatcher::finish(double seconds) {
    const auto end = std::chrono::steady_clock::now() +
                     std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                         std::chrono::duration<double>(seconds));
    userInitiated_->drop();
    utility_->drop();
    changes_->waitUntilIdle();
    const bool isOneIdle = userInitiated_->waitUntilIdle(end);
    return utility_->waitUntilIdle(end) && isOneIdle;
}

bool GlibDispatcher::isMainThread() const { return std::this_thread::get_id() == mainThread_; }

void GlibDispatcher::main(Work work) { mainQueue_->add(std::move(work)); }

void GlibDispatcher::mainAfter(double seconds, Work work) {
    mainQueue_->addDelayed(seconds, std::move(work));
}

void GlibDispatcher::global(QualityOfService quality, Work work) {
    Pool& pool = quality == QualityOfService::utility ? *utility_ : *userInitiated_;
    pool.add(std::move(work));
}

void GlibDispatcher::change(Work work) { changes_->add(std::move(work)); }

}  // namespace velto
