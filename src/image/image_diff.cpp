#include "image_diff.hpp"

#include "firmware_image.hpp"
#include "hex_text.hpp"
#include "mapped_file.hpp"
#include "srecord.hpp"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace zevran::image {

namespace {

// Without SSE2 (processors other than x86-64), equal stretches are passed over by
// memcmp a block at a time and then eight bytes a step.
#if !defined(__SSE2__)
constexpr std::size_t kBlock = 64 * 1024;
constexpr std::size_t kWord = sizeof(std::uint64_t);

std::uint64_t loadWord(const std::uint8_t* at)
{
    std::uint64_t word;
    std::memcpy(&word, at, kWord);
    return word;
}

// Set bits mark the zero bytes of `word` (a zero byte exists exactly when the
// result is not 0; bits above the first zero byte may be false alarms).
std::uint64_t zeroBytes(std::uint64_t word)
{
    constexpr std::uint64_t kOnes = 0x0101010101010101ULL;
    constexpr std::uint64_t kHighs = 0x8080808080808080ULL;
    return (word - kOnes) & ~word & kHighs;
}
#endif

// Files are compared through mappings of this many bytes each: few enough MiB to
// stay resident, enough that setting up a window costs nothing beside comparing it.
constexpr std::size_t kWindow = std::size_t{4} << 20;

#if defined(__SSE2__)
// Bit i set where byte i of the 16 at a and b is equal.
unsigned equalBytes(const std::uint8_t* a, const std::uint8_t* b)
{
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(
        _mm_loadu_si128(reinterpret_cast<const __m128i*>(a)), _mm_loadu_si128(reinterpret_cast<const __m128i*>(b)))));
}
#endif

// The first index in [from, to) where the two differ, or `to`.
std::size_t findDifference(const std::uint8_t* a, const std::uint8_t* b, std::size_t from, std::size_t to)
{
#if defined(__SSE2__)
    // 64 bytes a step, compared 16 at a time and the four results joined, so an equal
    // stretch costs one test a step.
    for (; from + 64 <= to; from += 64) {
        const __m128i equal = _mm_and_si128(
            _mm_and_si128(_mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(a + from)),
                                         _mm_loadu_si128(reinterpret_cast<const __m128i*>(b + from))),
                          _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(a + from + 16)),
                                         _mm_loadu_si128(reinterpret_cast<const __m128i*>(b + from + 16)))),
            _mm_and_si128(_mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(a + from + 32)),
                                         _mm_loadu_si128(reinterpret_cast<const __m128i*>(b + from + 32))),
                          _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(a + from + 48)),
                                         _mm_loadu_si128(reinterpret_cast<const __m128i*>(b + from + 48)))));
        if (_mm_movemask_epi8(equal) != 0xFFFF) break;
    }
    for (; from + 16 <= to; from += 16) {
        const unsigned equal = equalBytes(a + from, b + from);
        if (equal != 0xFFFF) return from + static_cast<std::size_t>(std::countr_one(equal));
    }
#else
    // memcmp passes over equal stretches far faster than a byte a step.
    while (from + kBlock <= to && std::memcmp(a + from, b + from, kBlock) == 0) from += kBlock;
    while (from + kWord <= to && loadWord(a + from) == loadWord(b + from)) from += kWord;
#endif
    while (from < to && a[from] == b[from]) ++from;
    return from;
}

// The first index in [from, to) where the two agree, or `to`.
std::size_t findAgreement(const std::uint8_t* a, const std::uint8_t* b, std::size_t from, std::size_t to)
{
#if defined(__SSE2__)
    for (; from + 16 <= to; from += 16) {
        const unsigned equal = equalBytes(a + from, b + from);
        if (equal != 0) return from + static_cast<std::size_t>(std::countr_zero(equal));
    }
#else
    // A word whose bytes all differ has no zero byte in its exclusive or.
    while (from + kWord <= to && zeroBytes(loadWord(a + from) ^ loadWord(b + from)) == 0) from += kWord;
#endif
    while (from < to && a[from] != b[from]) ++from;
    return from;
}

void addRun(std::vector<DiffRange>& ranges, std::size_t first, std::size_t last, std::size_t gap)
{
    if (!ranges.empty()) {
        const auto equalBetween = first - static_cast<std::size_t>(ranges.back().last) - 1;
        if (equalBetween <= gap) {
            ranges.back().last = static_cast<std::int32_t>(last);
            return;
        }
    }
    ranges.push_back({static_cast<std::int32_t>(first), static_cast<std::int32_t>(last)});
}

// The maximal runs of differing bytes among the `length` bytes at a and b, which
// stand at address `base`, added to `ranges`; false as soon as there are more than
// `maxRanges` (later runs only ever add ranges or lengthen the last).
bool addRuns(std::vector<DiffRange>& ranges, const std::uint8_t* a, const std::uint8_t* b, std::size_t length,
             std::size_t base, std::size_t gap, std::size_t maxRanges)
{
    std::size_t at = 0;
    for (;;) {
        const std::size_t first = findDifference(a, b, at, length);
        if (first == length) return true;
        at = findAgreement(a, b, first, length);
        addRun(ranges, base + first, base + at - 1, gap);
        if (ranges.size() > maxRanges) return false;
    }
}

// Addresses are signed 32-bit, as everywhere in the image.
void checkLengths(std::uint64_t olderLength, std::uint64_t newerLength)
{
    if (newerLength < olderLength)
        throw ShorterImage(static_cast<std::size_t>(olderLength), static_cast<std::size_t>(newerLength));
    constexpr auto kAddresses = std::uint64_t{std::numeric_limits<std::int32_t>::max()} + 1;
    if (newerLength > kAddresses)
        throw std::length_error("an image of " + std::to_string(newerLength) +
                                " bytes has addresses beyond 0x7FFFFFFF");
}

void checkRange(std::uint64_t imageSize, const DiffRange& range)
{
    if (range.first < 0 || range.last < range.first || static_cast<std::uint64_t>(range.last) >= imageSize)
        throw std::out_of_range("region " + describeRange(range) + " lies outside the image of " +
                                std::to_string(imageSize) + " bytes");
}

std::span<const std::uint8_t> rangeBytes(std::span<const std::uint8_t> image, const DiffRange& range)
{
    checkRange(image.size(), range);
    return image.subspan(static_cast<std::size_t>(range.first), static_cast<std::size_t>(range.size()));
}

}  // namespace

ShorterImage::ShorterImage(std::size_t olderLength, std::size_t newerLength)
    : std::runtime_error("the second image holds " + std::to_string(newerLength) + " bytes, fewer than the " +
                         std::to_string(olderLength) + " of the first; a patch cannot shorten an image"),
      m_olderLength(olderLength), m_newerLength(newerLength)
{
}

std::optional<std::vector<DiffRange>> compareImagesUpTo(std::span<const std::uint8_t> older,
                                                        std::span<const std::uint8_t> newer, std::size_t gap,
                                                        std::size_t maxRanges)
{
    checkLengths(older.size(), newer.size());
    std::vector<DiffRange> ranges;
    if (!addRuns(ranges, older.data(), newer.data(), older.size(), 0, gap, maxRanges)) return std::nullopt;
    if (newer.size() > older.size()) addRun(ranges, older.size(), newer.size() - 1, gap);
    if (ranges.size() > maxRanges) return std::nullopt;
    return ranges;
}

std::vector<DiffRange> compareImageFiles(const std::string& olderPath, const std::string& newerPath, std::size_t gap)
{
    MappedFile older(olderPath);
    MappedFile newer(newerPath);
    checkImageSize(olderPath, older.size());
    checkImageSize(newerPath, newer.size());
    checkLengths(older.size(), newer.size());
    std::vector<DiffRange> ranges;
    const std::uint64_t common = older.size();
    // A run that reaches a window's end goes on in the next: addRun joins the two.
    for (std::uint64_t offset = 0; offset < common; offset += kWindow) {
        const auto length = static_cast<std::size_t>(std::min<std::uint64_t>(kWindow, common - offset));
        const auto olderWindow = older.window(offset, length);
        const auto newerWindow = newer.window(offset, length);
        addRuns(ranges, olderWindow.data(), newerWindow.data(), length, static_cast<std::size_t>(offset), gap,
                std::numeric_limits<std::size_t>::max());
    }
    if (newer.size() > common)
        addRun(ranges, static_cast<std::size_t>(common), static_cast<std::size_t>(newer.size() - 1), gap);
    return ranges;
}

std::vector<DiffRange> compareImages(std::span<const std::uint8_t> older, std::span<const std::uint8_t> newer,
                                     std::size_t gap)
{
    return *compareImagesUpTo(older, newer, gap, std::numeric_limits<std::size_t>::max());
}

std::vector<Region> diffRegions(std::span<const std::uint8_t> newer, const std::vector<DiffRange>& ranges)
{
    std::vector<Region> regions;
    regions.reserve(ranges.size());
    for (const DiffRange& range : ranges) {
        const auto bytes = rangeBytes(newer, range);
        regions.push_back({range.first, range.last, {bytes.begin(), bytes.end()}});
    }
    return regions;
}

bool writeDiffPatch(const std::string& path, std::span<const std::uint8_t> newer, const std::vector<DiffRange>& ranges)
{
    // Every range is checked before the file is begun, so a bad one leaves no half patch.
    for (const DiffRange& range : ranges) rangeBytes(newer, range);
    PatchFile file;
    for (std::size_t k = 0; k < ranges.size(); ++k) {
        const DiffRange& range = ranges[k];
        WriteSRecordRegion(file, rangeBytes(newer, range), range.first, range.last, path, k == 0,
                           k + 1 == ranges.size());
    }
    return !ranges.empty();
}

bool writeDiffPatchFromFile(const std::string& path, const std::string& newerPath, const std::vector<DiffRange>& ranges)
{
    MappedFile newer(newerPath);
    for (const DiffRange& range : ranges) checkRange(newer.size(), range);
    // Pieces of whole lines (a multiple of 16 bytes from the range's start) give the
    // lines of the range written at once.
    constexpr std::int64_t kPiece = std::int64_t{1} << 20;
    PatchFile file;
    for (std::size_t k = 0; k < ranges.size(); ++k) {
        const DiffRange& range = ranges[k];
        for (std::int64_t first = range.first; first <= range.last; first += kPiece) {
            const std::int64_t last = std::min<std::int64_t>(range.last, first + kPiece - 1);
            const auto bytes =
                newer.window(static_cast<std::uint64_t>(first), static_cast<std::size_t>(last - first + 1));
            WriteSRecordRegion(file, bytes, static_cast<std::int32_t>(first), static_cast<std::int32_t>(last), path,
                               k == 0 && first == range.first, k + 1 == ranges.size() && last == range.last);
        }
    }
    return !ranges.empty();
}

std::string describeRange(const DiffRange& range)
{
    return "0x" + HexPad(static_cast<std::uint32_t>(range.first), 8) + " 0x" +
           HexPad(static_cast<std::uint32_t>(range.last), 8) + " " + std::to_string(range.size());
}

std::string previewBytes(std::span<const std::uint8_t> image, const DiffRange& range, std::size_t limit)
{
    std::string text;
    if (range.first < 0 || range.last < range.first) return text;
    const auto first = static_cast<std::size_t>(range.first);
    const auto end =
        std::min<std::uint64_t>(std::uint64_t{first} + std::min<std::uint64_t>(limit, range.size()), image.size());
    for (std::size_t at = first; at < end; ++at) {
        if (!text.empty()) text += ' ';
        text += ByteToHex(image[at]);
    }
    if (!text.empty() && static_cast<std::uint64_t>(range.size()) > limit) text += " ...";
    return text;
}

}  // namespace zevran::image
