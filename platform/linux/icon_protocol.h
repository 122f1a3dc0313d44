#pragma once

#include <cstdint>

namespace velto {

/// What the program and `velto-icons`, which draws pictures for it, say to each other: on one
/// socket, which is the worker's standard input and output. Each request is answered before the
/// next one is sent. The worker ends when the socket does.
struct IconRequest {
    std::uint32_t pixels;  // of each side of what is wanted
    std::uint32_t length;  // bytes of the picture's file, which follow
};

struct IconReply {
    std::uint32_t length;  // bytes of the PNG file, which follow; 0 when there is no picture
};

inline constexpr std::uint32_t mostIconPixels = 1024;
inline constexpr std::uint32_t longestPicture = 8 * 1024 * 1024;

/// Four bytes a pixel, and room for what stands around them.
constexpr std::uint32_t longestReply(std::uint32_t pixels) {
    return 4 * pixels * pixels + pixels + 64 * 1024;
}

}  // namespace velto
