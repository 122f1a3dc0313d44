#include "linux/FloorWalk.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <mutex>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace velto {
namespace {

struct Dirent {
    std::uint64_t inode;
    std::int64_t offset;
    std::uint16_t length;
    std::uint8_t type;
    char name[1];
};

/// An open folder, shared by the folders that wait in it.
struct Handle {
    explicit Handle(int opened) : number(opened) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() { ::close(number); }
    int number;
};

struct Waiting {
    std::shared_ptr<Handle> parent;
    std::string name;
};

class Floor {
public:
    Floor(const std::string& folder, std::size_t threads) : threads_(threads) {
        waiting_.push_back({nullptr, folder});
    }

    FloorWalk run() {
        std::vector<FloorWalk> sums(threads_);
        std::vector<std::thread> running;
        for (FloorWalk& sum : sums)
            running.emplace_back([this, &sum] { work(sum); });
        FloorWalk total;
        for (std::size_t index = 0; index < threads_; ++index) {
            running[index].join();
            total.files += sums[index].files;
            total.bytes += sums[index].bytes;
            total.folders += sums[index].folders;
            total.total += sums[index].total;
        }
        return total;
    }

private:
    void work(FloorWalk& result) {
        FloorWalk sum;  // local: threads must not share a cache line
        std::vector<char> buffer(64 * 1024);
        std::vector<Waiting> own;
        while (take(own)) {
            while (!own.empty()) {
                const Waiting next = std::move(own.back());
                own.pop_back();
                list(next, buffer, own, sum);
                if (idle_.load(std::memory_order_relaxed) > 0 && own.size() > 1) share(own);
            }
        }
        result = sum;
    }

    /// Waits for a folder that another thread can spare; false at the end.
    bool take(std::vector<Waiting>& own) {
        std::unique_lock guard(lock_);
        if (++idle_ == threads_ && waiting_.empty()) {
            ended_ = true;
            changed_.notify_all();
        }
        changed_.wait(guard, [&] { return ended_ || !waiting_.empty(); });
        if (waiting_.empty()) return false;
        --idle_;
        own.push_back(std::move(waiting_.back()));
        waiting_.pop_back();
        return true;
    }

    /// Gives away the folders found first, which lie highest and hold the most.
    void share(std::vector<Waiting>& own) {
        const auto half = own.begin() + static_cast<std::ptrdiff_t>(own.size() / 2);
        const std::lock_guard guard(lock_);
        std::move(own.begin(), half, std::back_inserter(waiting_));
        own.erase(own.begin(), half);
        changed_.notify_all();
    }

    static void list(const Waiting& folder, std::vector<char>& buffer, std::vector<Waiting>& found,
                     FloorWalk& sum) {
        const int parent = folder.parent ? folder.parent->number : AT_FDCWD;
        const int number = ::openat(parent, folder.name.c_str(),
                                    O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW | O_NOATIME);
        if (number < 0) {
            std::perror(folder.name.c_str());
            std::exit(1);
        }
        const auto handle = std::make_shared<Handle>(number);
        long bytes = 0;
        while ((bytes = ::syscall(SYS_getdents64, number, buffer.data(), buffer.size())) > 0) {
            for (long position = 0; position < bytes;) {
                const auto& entry = *reinterpret_cast<const Dirent*>(buffer.data() + position);
                position += entry.length;
                const std::string_view name = entry.name;
                if (name == "." || name == "..") continue;
                const std::int64_t size = sizeOf(number, entry.name);
                sum.total += size;
                if (entry.type == DT_REG) {
                    ++sum.files;
                    sum.bytes += size;
                } else if (entry.type == DT_DIR) {
                    ++sum.folders;
                    found.push_back({handle, entry.name});
                }
            }
        }
    }

    static std::int64_t sizeOf(int folder, const char* name) {
        struct statx status;
        constexpr int flags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC;
        if (::statx(folder, name, flags, STATX_TYPE | STATX_BLOCKS, &status) != 0) return 0;
        return static_cast<std::int64_t>(status.stx_blocks) * 512;
    }

    const std::size_t threads_;
    std::mutex lock_;
    std::condition_variable changed_;
    std::vector<Waiting> waiting_;
    std::atomic<std::size_t> idle_{0};
    bool ended_ = false;
};

}  // namespace

FloorWalk FloorWalk::run(const std::string& folder, std::size_t threads) {
    return Floor(folder, threads).run();
}

}  // namespace velto
