// Fast exact search for a byte pattern: the one scanning primitive behind every
// search of the image (hex search, tone signatures, text strings).
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace zevran::image {

inline constexpr std::size_t kNotFound = static_cast<std::size_t>(-1);

// Index of the first occurrence of `needle` in `haystack` at or after `from`,
// or kNotFound. An empty needle is never found.
std::size_t findBytes(std::span<const std::uint8_t> haystack, std::span<const std::uint8_t> needle,
                      std::size_t from = 0);

// Index of the last occurrence of `needle` that starts before `before`, or kNotFound.
std::size_t findBytesBefore(std::span<const std::uint8_t> haystack, std::span<const std::uint8_t> needle,
                            std::size_t before);

}  // namespace zevran::image
