#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace velto {

/// An open file descriptor, closed with the object. Closing keeps `errno`, so that a descriptor may
/// go out of scope between a failure and its report.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor() {
        if (number_ < 0) return;
        const int error = errno;
        ::close(number_);  // never repeated: after EINTR the number may be someone else's already
        errno = error;
    }

    int number() const { return number_; }
    bool isOpen() const { return number_ >= 0; }

    /// Gives the descriptor away without closing it.
    int release() { return std::exchange(number_, -1); }

private:
    int number_ = -1;
};

}  // namespace velto
