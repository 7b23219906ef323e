#include "byte_search.hpp"

#include <algorithm>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace zevran::image {

namespace {

#if defined(__SSE2__)
// Compares the needle's first and last bytes against 16 candidate positions at once
// and checks the middle only where both agree; random data rarely gets that far.
std::size_t findWideNeedle(const std::uint8_t* hay, std::size_t hayLength, const std::uint8_t* needle,
                           std::size_t needleLength)
{
    const std::size_t lastOffset = needleLength - 1;
    const __m128i first = _mm_set1_epi8(static_cast<char>(needle[0]));
    const __m128i last = _mm_set1_epi8(static_cast<char>(needle[lastOffset]));
    const std::size_t positions = hayLength - lastOffset;  // candidate start positions
    std::size_t i = 0;
    for (; i + 16 <= positions; i += 16) {
        __m128i blockFirst = _mm_loadu_si128(reinterpret_cast<const __m128i*>(hay + i));
        __m128i blockLast = _mm_loadu_si128(reinterpret_cast<const __m128i*>(hay + i + lastOffset));
        __m128i both = _mm_and_si128(_mm_cmpeq_epi8(blockFirst, first), _mm_cmpeq_epi8(blockLast, last));
        unsigned mask = static_cast<unsigned>(_mm_movemask_epi8(both));
        while (mask != 0) {
            unsigned bit = static_cast<unsigned>(__builtin_ctz(mask));
            if (std::memcmp(hay + i + bit + 1, needle + 1, needleLength - 2) == 0) return i + bit;
            mask &= mask - 1;
        }
    }
    for (; i < positions; ++i) {
        if (hay[i] == needle[0] && std::memcmp(hay + i + 1, needle + 1, lastOffset) == 0) return i;
    }
    return kNotFound;
}
#endif

}  // namespace

std::size_t findBytes(std::span<const std::uint8_t> haystack, std::span<const std::uint8_t> needle, std::size_t from)
{
    if (needle.empty() || from >= haystack.size() || haystack.size() - from < needle.size()) return kNotFound;
    const std::uint8_t* start = haystack.data() + from;
    const std::size_t length = haystack.size() - from;
    if (needle.size() == 1) {
        const void* hit = std::memchr(start, needle[0], length);
        return hit ? static_cast<std::size_t>(static_cast<const std::uint8_t*>(hit) - haystack.data()) : kNotFound;
    }
#if defined(__SSE2__)
    std::size_t hit = findWideNeedle(start, length, needle.data(), needle.size());
    return hit == kNotFound ? kNotFound : from + hit;
#else
    const void* hit = memmem(start, length, needle.data(), needle.size());
    return hit ? static_cast<std::size_t>(static_cast<const std::uint8_t*>(hit) - haystack.data()) : kNotFound;
#endif
}

std::size_t findBytesBefore(std::span<const std::uint8_t> haystack, std::span<const std::uint8_t> needle,
                            std::size_t before)
{
    if (needle.empty() || haystack.size() < needle.size()) return kNotFound;
    // Candidates start at most at size - needle; memrchr finds the first byte's places
    // from the back as fast as memchr does from the front.
    std::size_t end = std::min(before, haystack.size() - needle.size() + 1);
    while (end > 0) {
        const void* hit = memrchr(haystack.data(), needle[0], end);
        if (!hit) return kNotFound;
        const auto at = static_cast<std::size_t>(static_cast<const std::uint8_t*>(hit) - haystack.data());
        if (std::memcmp(haystack.data() + at, needle.data(), needle.size()) == 0) return at;
        end = at;
    }
    return kNotFound;
}

}  // namespace zevran::image
