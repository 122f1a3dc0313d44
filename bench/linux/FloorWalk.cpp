#include "linux/FloorWalk.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
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
    explicit Floor(const std::string& folder) { waiting_.push_back({nullptr, folder}); }

    FloorWalk run(std::size_t threads) {
        std::vector<FloorWalk> sums(threads);
        std::vector<std::thread> running;
        for (FloorWalk& sum : sums)
            running.emplace_back([this, &sum] { work(sum); });
        FloorWalk total;
        for (std::size_t index = 0; index < threads; ++index) {
            running[index].join();
            total.files += sums[index].files;
            total.bytes += sums[index].bytes;
        }
        return total;
    }

private:
    void work(FloorWalk& result) {
        FloorWalk sum;  // local: threads must not share a cache line
        std::vector<char> buffer(64 * 1024);
        std::vector<Waiting> found;
        while (true) {
            Waiting next;
            {
                std::unique_lock guard(lock_);
                changed_.wait(guard, [&] { return !waiting_.empty() || busy_ == 0; });
                if (waiting_.empty()) break;
                next = std::move(waiting_.back());
                waiting_.pop_back();
                ++busy_;
            }
            list(next, buffer, found, sum);
            {
                const std::lock_guard guard(lock_);
                for (Waiting& folder : found)
                    waiting_.push_back(std::move(folder));
                --busy_;
                if (!found.empty() || busy_ == 0) changed_.notify_all();
            }
            found.clear();
        }
        result = sum;
    }

    static void list(const Waiting& folder, std::vector<char>& buffer, std::vector<Waiting>& found,
                     FloorWalk& sum) {
        const int parent = folder.parent ? folder.parent->number : AT_FDCWD;
        const int number =
            ::openat(parent, folder.name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW);
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
                if (entry.type == DT_REG) {
                    count(number, entry.name, sum);
                } else if (entry.type == DT_DIR && entry.name[0] != '.') {
                    found.push_back({handle, entry.name});
                }
            }
        }
    }

    static void count(int folder, const char* name, FloorWalk& sum) {
        struct statx status;
        constexpr int flags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC;
        if (::statx(folder, name, flags, STATX_TYPE | STATX_BLOCKS, &status) != 0) return;
        ++sum.files;
        sum.bytes += static_cast<std::int64_t>(status.stx_blocks) * 512;
    }

    std::mutex lock_;
    std::condition_variable changed_;
    std::vector<Waiting> waiting_;
    std::size_t busy_ = 0;
};

}  // namespace

FloorWalk FloorWalk::run(const std::string& folder, std::size_t threads) {
    return Floor(folder).run(threads);
}

}  // namespace velto
