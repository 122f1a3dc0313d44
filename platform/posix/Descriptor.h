#pragma once

#include <unistd.h>

#include <utility>

namespace velto {

/// An open file descriptor, closed with the object.
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
        if (number_ >= 0) ::close(number_);
    }

    int number() const { return number_; }
    bool isOpen() const { return number_ >= 0; }

    /// Gives the descriptor away without closing it.
    int release() { return std::exchange(number_, -1); }

private:
    int number_ = -1;
};

}  // namespace velto
