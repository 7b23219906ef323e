#include "srecord_block.hpp"

#include "srecord_digits.hpp"

#include <algorithm>
#include <bit>

#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#define ZEVRAN_X86_KERNELS 1
#include <immintrin.h>
#endif

namespace zevran::image {

namespace {

// --- plain C++: every processor ---
namespace portable {

#define ZEVRAN_KERNEL inline

ZEVRAN_KERNEL const char* findLineEnd(const char* from, const char* textEnd)
{
    while (from < textEnd && *from != '\r' && *from != '\n') ++from;
    return from;
}

ZEVRAN_KERNEL void tolerantBytes(const char* digits, std::size_t count, std::uint8_t* out, const char*)
{
    for (std::size_t i = 0; i < count; ++i) out[i] = digits::tolerantPair(digits + 2 * i);
}

ZEVRAN_KERNEL void headerFields(const char* line, const char*, std::uint32_t& countField, std::uint32_t& address)
{
    countField = digits::tolerantPair(line + 2);
    address = 0;
    for (std::size_t i = 0; i < 4; ++i) address = address << 8 | digits::tolerantPair(line + 4 + 2 * i);
}

ZEVRAN_KERNEL bool strictBytes(const char* digitText, std::size_t count, std::uint8_t* out, const char*, unsigned& sum)
{
    for (std::size_t i = 0; i < count; ++i) {
        const int value = digits::strictPair(digitText + 2 * i);
        if (value < 0) return false;
        out[i] = static_cast<std::uint8_t>(value);
        sum += static_cast<unsigned>(value);
    }
    return true;
}

ZEVRAN_KERNEL bool strictHeader(const char* line, const char*, std::size_t addressBytes, unsigned& sum,
                                std::uint32_t& address)
{
    std::uint8_t bytes[5];
    if (!strictBytes(line + 2, addressBytes + 1, bytes, nullptr, sum)) return false;
    address = 0;
    for (std::size_t i = 1; i <= addressBytes; ++i) address = address << 8 | bytes[i];
    return true;
}

#include "srecord_block_loop.inc"

#undef ZEVRAN_KERNEL

}  // namespace portable

#if ZEVRAN_X86_KERNELS

// Bytes 0..n-1 of the 16 at kKeep + 16 - n are FF, the rest 0: masks a vector's tail.
alignas(32) constexpr std::uint8_t kKeep[32] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                                                0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};

std::uint32_t bigEndianAddress(std::uint64_t headerBytes)
{
    return __builtin_bswap32(static_cast<std::uint32_t>(headerBytes >> 8));
}

// --- SSE2: part of every x86-64 processor, 16 characters a step ---
namespace sse2 {

#define ZEVRAN_KERNEL inline
#define ZEVRAN_VECTOR_KERNEL

// Digit values of 16 characters, a non-hex one as 0; `hex` marks the hex digits.
ZEVRAN_KERNEL __m128i digitValues(__m128i c, __m128i& hex)
{
    const __m128i isDecimal =
        _mm_and_si128(_mm_cmpgt_epi8(c, _mm_set1_epi8('0' - 1)), _mm_cmpgt_epi8(_mm_set1_epi8('9' + 1), c));
    // Setting bit 5 turns only 'A'..'F' into 'a'..'f'; bytes from 0x80 stay negative.
    const __m128i lower = _mm_or_si128(c, _mm_set1_epi8(0x20));
    const __m128i isLetter =
        _mm_and_si128(_mm_cmpgt_epi8(lower, _mm_set1_epi8('a' - 1)), _mm_cmpgt_epi8(_mm_set1_epi8('f' + 1), lower));
    hex = _mm_or_si128(isDecimal, isLetter);
    return _mm_or_si128(_mm_and_si128(isDecimal, _mm_sub_epi8(c, _mm_set1_epi8('0'))),
                        _mm_and_si128(isLetter, _mm_sub_epi8(lower, _mm_set1_epi8('a' - 10))));
}

// In each 16-bit lane the first character (the high digit) is the low byte.
ZEVRAN_KERNEL __m128i pairValues(__m128i d)
{
    return _mm_or_si128(_mm_slli_epi16(_mm_and_si128(d, _mm_set1_epi16(0x00FF)), 4), _mm_srli_epi16(d, 8));
}

// The 16 bytes of the 32 digits at `at`; `hexMask` gets one bit per hex character.
ZEVRAN_KERNEL __m128i sixteenBytes(const char* at, std::uint32_t& hexMask)
{
    __m128i hexLow;
    __m128i hexHigh;
    const __m128i low = pairValues(digitValues(_mm_loadu_si128(reinterpret_cast<const __m128i*>(at)), hexLow));
    const __m128i high = pairValues(digitValues(_mm_loadu_si128(reinterpret_cast<const __m128i*>(at + 16)), hexHigh));
    hexMask = static_cast<std::uint32_t>(_mm_movemask_epi8(hexLow)) |
              static_cast<std::uint32_t>(_mm_movemask_epi8(hexHigh)) << 16;
    return _mm_packus_epi16(low, high);
}

ZEVRAN_KERNEL const char* findLineEnd(const char* from, const char* textEnd)
{
    for (; from + 16 <= textEnd; from += 16) {
        const __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
        const auto ends = static_cast<unsigned>(_mm_movemask_epi8(
            _mm_or_si128(_mm_cmpeq_epi8(c, _mm_set1_epi8('\r')), _mm_cmpeq_epi8(c, _mm_set1_epi8('\n')))));
        if (ends != 0) return from + std::countr_zero(ends);
    }
    return portable::findLineEnd(from, textEnd);
}

ZEVRAN_KERNEL void tolerantBytes(const char* digitText, std::size_t count, std::uint8_t* out, const char* textEnd)
{
    std::size_t i = 0;
    std::uint32_t hexMask;
    for (; i < count && digitText + 2 * i + 32 <= textEnd; i += 16)
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), sixteenBytes(digitText + 2 * i, hexMask));
    portable::tolerantBytes(digitText + 2 * i, count - std::min(i, count), out + i, textEnd);
}

ZEVRAN_KERNEL void headerFields(const char* line, const char* textEnd, std::uint32_t& countField,
                                std::uint32_t& address)
{
    if (line + 18 > textEnd) return portable::headerFields(line, textEnd, countField, address);
    __m128i hex;
    const __m128i pairs = pairValues(digitValues(_mm_loadu_si128(reinterpret_cast<const __m128i*>(line + 2)), hex));
    const auto bytes = static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_packus_epi16(pairs, pairs)));
    countField = static_cast<std::uint32_t>(bytes & 0xFF);
    address = bigEndianAddress(bytes);
}

ZEVRAN_KERNEL bool strictHeader(const char* line, const char* textEnd, std::size_t addressBytes, unsigned& sum,
                                std::uint32_t& address)
{
    if (line + 18 > textEnd) return portable::strictHeader(line, textEnd, addressBytes, sum, address);
    __m128i hex;
    const __m128i pairs = pairValues(digitValues(_mm_loadu_si128(reinterpret_cast<const __m128i*>(line + 2)), hex));
    const unsigned wanted = (1u << (2 * addressBytes + 2)) - 1;
    if ((static_cast<unsigned>(_mm_movemask_epi8(hex)) & wanted) != wanted) return false;
    const __m128i bytes = _mm_packus_epi16(pairs, _mm_setzero_si128());
    const __m128i header =
        _mm_and_si128(bytes, _mm_loadu_si128(reinterpret_cast<const __m128i*>(kKeep + 16 - addressBytes - 1)));
    sum += static_cast<unsigned>(_mm_cvtsi128_si32(_mm_sad_epu8(header, _mm_setzero_si128())));
    address = bigEndianAddress(static_cast<std::uint64_t>(_mm_cvtsi128_si64(bytes))) >> (8 * (4 - addressBytes));
    return true;
}

#include "srecord_block_loop.inc"

#undef ZEVRAN_KERNEL
#undef ZEVRAN_VECTOR_KERNEL

}  // namespace sse2

// --- AVX2: 32 characters a step, where the processor has it ---
namespace avx2 {

#define ZEVRAN_KERNEL __attribute__((target("avx2"))) inline
#define ZEVRAN_VECTOR_KERNEL

// The 16 bytes of the 32 digits at `at`, a non-hex digit as 0; `hexMask` gets one bit
// per hex character.
ZEVRAN_KERNEL __m128i sixteenBytes(const char* at, std::uint32_t& hexMask)
{
    const __m256i c = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(at));
    const __m256i isDecimal = _mm256_and_si256(_mm256_cmpgt_epi8(c, _mm256_set1_epi8('0' - 1)),
                                               _mm256_cmpgt_epi8(_mm256_set1_epi8('9' + 1), c));
    const __m256i lower = _mm256_or_si256(c, _mm256_set1_epi8(0x20));
    const __m256i isLetter = _mm256_and_si256(_mm256_cmpgt_epi8(lower, _mm256_set1_epi8('a' - 1)),
                                              _mm256_cmpgt_epi8(_mm256_set1_epi8('f' + 1), lower));
    hexMask = static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_or_si256(isDecimal, isLetter)));
    const __m256i values =
        _mm256_or_si256(_mm256_and_si256(isDecimal, _mm256_sub_epi8(c, _mm256_set1_epi8('0'))),
                        _mm256_and_si256(isLetter, _mm256_sub_epi8(lower, _mm256_set1_epi8('a' - 10))));
    // high * 16 + low in each 16-bit lane, the first character being the high digit.
    const __m256i pairs = _mm256_maddubs_epi16(values, _mm256_set1_epi16(0x0110));
    return _mm_packus_epi16(_mm256_castsi256_si128(pairs), _mm256_extracti128_si256(pairs, 1));
}

ZEVRAN_KERNEL const char* findLineEnd(const char* from, const char* textEnd)
{
    for (; from + 32 <= textEnd; from += 32) {
        const __m256i c = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
        const auto ends = static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_or_si256(
            _mm256_cmpeq_epi8(c, _mm256_set1_epi8('\r')), _mm256_cmpeq_epi8(c, _mm256_set1_epi8('\n')))));
        if (ends != 0) return from + std::countr_zero(ends);
    }
    return sse2::findLineEnd(from, textEnd);
}

ZEVRAN_KERNEL void tolerantBytes(const char* digitText, std::size_t count, std::uint8_t* out, const char* textEnd)
{
    std::size_t i = 0;
    std::uint32_t hexMask;
    for (; i < count && digitText + 2 * i + 32 <= textEnd; i += 16)
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), sixteenBytes(digitText + 2 * i, hexMask));
    portable::tolerantBytes(digitText + 2 * i, count - std::min(i, count), out + i, textEnd);
}

ZEVRAN_KERNEL void headerFields(const char* line, const char* textEnd, std::uint32_t& countField,
                                std::uint32_t& address)
{
    sse2::headerFields(line, textEnd, countField, address);
}

ZEVRAN_KERNEL bool strictHeader(const char* line, const char* textEnd, std::size_t addressBytes, unsigned& sum,
                                std::uint32_t& address)
{
    return sse2::strictHeader(line, textEnd, addressBytes, sum, address);
}

#include "srecord_block_loop.inc"

#undef ZEVRAN_KERNEL
#undef ZEVRAN_VECTOR_KERNEL

}  // namespace avx2

bool haveAvx2()
{
    static const bool have = __builtin_cpu_supports("avx2");
    return have;
}

#endif

}  // namespace

std::size_t decodeRecordBlock(RecordKernel kernel, std::string_view text, RecordReading reading, RecordOutput& out)
{
#if ZEVRAN_X86_KERNELS
    if (kernel == RecordKernel::Avx2 && haveAvx2()) return avx2::decodeBlock(text, reading, out);
    if (kernel != RecordKernel::Portable) return sse2::decodeBlock(text, reading, out);
#endif
    return portable::decodeBlock(text, reading, out);
}

std::vector<RecordKernel> availableRecordKernels()
{
    std::vector<RecordKernel> kernels{RecordKernel::Portable};
#if ZEVRAN_X86_KERNELS
    kernels.push_back(RecordKernel::Sse2);
    if (haveAvx2()) kernels.push_back(RecordKernel::Avx2);
#endif
    return kernels;
}

RecordKernel fastestRecordKernel() { return availableRecordKernels().back(); }

const char* recordKernelName(RecordKernel kernel)
{
    switch (kernel) {
    case RecordKernel::Portable: return "portable";
    case RecordKernel::Sse2: return "SSE2";
    case RecordKernel::Avx2: return "AVX2";
    }
    return "?";
}

}  // namespace zevran::image
