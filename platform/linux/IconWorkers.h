#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace velto {

/// Draws pictures in processes of their own (`velto-icons`), so that a hostile one costs neither
/// this program's memory nor its time. A worker that takes too long is ended and the next picture
/// gets another; a picture that ended its worker is not drawn again. After a few of those somebody
/// means harm, and nothing is drawn any more. Safe from every thread.
class IconWorkers {
public:
    /// The worker's own limit is of processor time; this one is for a machine that gives it none.
    static constexpr std::chrono::seconds usualPatience{10};

    /// `program` is the worker's file. Without it there are no pictures.
    explicit IconWorkers(std::string program, std::chrono::milliseconds patience = usualPatience);
    /// Ends all workers.
    ~IconWorkers();
    IconWorkers(const IconWorkers&) = delete;
    IconWorkers& operator=(const IconWorkers&) = delete;

    /// The picture in the bytes of a file as a PNG file of `pixels` by `pixels`; nothing when there
    /// is none, or none that can be drawn within the limits.
    std::optional<std::string> png(std::string_view file, int pixels);

private:
    class Worker;
    enum class Answer { drawn, none, ended, stopped };

    std::unique_ptr<Worker> take();
    void giveBack(std::unique_ptr<Worker> worker);
    bool mayDraw(std::size_t picture) const;

    std::string program_;
    std::chrono::milliseconds patience_;
    mutable std::mutex mutex_;
    std::condition_variable returned_;
    std::vector<std::unique_ptr<Worker>> idle_;
    std::size_t taken_ = 0;
    std::set<std::size_t> stopped_;  // what the pictures hash to
};

}  // namespace velto
