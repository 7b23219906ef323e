// A made-up firmware image for the benchmarks: random bytes from a fixed seed, with
// ring tones and zero-terminated texts planted at known places, so every run and
// every machine searches and converts the very same bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zevran::bench {

inline constexpr std::size_t kImageBytes = std::size_t{64} << 20;
inline constexpr std::size_t kPlantedTones = 300;
inline constexpr std::uint64_t kImageSeed = 0x5A455652414E3131;  // "ZEVRAN11"

// `size` random bytes with kPlantedTones tones ("MMMD", a big-endian 32-bit body
// length, then the body) and as many ASCII texts, one tone and one text per
// equal slice of the image so none overlap.
std::vector<std::uint8_t> makeSyntheticImage(std::size_t size = kImageBytes, std::uint64_t seed = kImageSeed);

// The default image, made on first use and kept for the whole run.
const std::vector<std::uint8_t>& sharedSyntheticImage();

}  // namespace zevran::bench
