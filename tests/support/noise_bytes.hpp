// Bytes that look like nothing, the same for the same seed: a fixed 32-bit linear
// congruential sequence, so tests can bury a picture among them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zevran::test {

inline std::vector<std::uint8_t> noise(std::size_t count, std::uint32_t seed)
{
    std::vector<std::uint8_t> bytes(count);
    for (auto& b : bytes) {
        seed = seed * 1664525u + 1013904223u;
        b = static_cast<std::uint8_t>(seed >> 24);
    }
    return bytes;
}

}  // namespace zevran::test
