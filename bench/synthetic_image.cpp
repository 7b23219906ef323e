#include "synthetic_image.hpp"

#include <algorithm>
#include <cstring>
#include <string>

namespace zevran::bench {

namespace {

// splitmix64: tiny, fast and the same everywhere, unlike the standard engines'
// distributions.
class Random {
public:
    explicit Random(std::uint64_t seed) : m_state(seed) {}

    std::uint64_t next()
    {
        std::uint64_t z = (m_state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }

    std::size_t below(std::size_t limit) { return static_cast<std::size_t>(next() % limit); }

private:
    std::uint64_t m_state;
};

void putBigEndian32(std::uint8_t* at, std::uint32_t value)
{
    at[0] = static_cast<std::uint8_t>(value >> 24);
    at[1] = static_cast<std::uint8_t>(value >> 16);
    at[2] = static_cast<std::uint8_t>(value >> 8);
    at[3] = static_cast<std::uint8_t>(value);
}

// A tone as the handset stores one: the file chunk "MMMD" around a contents-info
// chunk "CNTI" and a track chunk, each tag followed by its big-endian body length.
std::size_t plantTone(std::uint8_t* at, std::size_t room, Random& random)
{
    const std::uint32_t trackLength = static_cast<std::uint32_t>(256 + random.below(3840));
    const std::uint32_t infoLength = 5;
    const std::uint32_t body = 8 + infoLength + 8 + trackLength;
    const std::size_t total = 8 + body;
    if (total > room) return 0;
    std::memcpy(at, "MMMD", 4);
    putBigEndian32(at + 4, body);
    std::memcpy(at + 8, "CNTI", 4);
    putBigEndian32(at + 12, infoLength);
    std::memcpy(at + 16, "\x00\x01\x01\x00\x00", infoLength);
    std::uint8_t* track = at + 16 + infoLength;
    std::memcpy(track, "MTR\x01", 4);
    putBigEndian32(track + 4, trackLength);
    return total;
}

}  // namespace

std::vector<std::uint8_t> makeSyntheticImage(std::size_t size, std::uint64_t seed)
{
    std::vector<std::uint8_t> image(size);
    Random random(seed);
    std::size_t i = 0;
    for (; i + 8 <= size; i += 8) {
        const std::uint64_t word = random.next();
        std::memcpy(image.data() + i, &word, 8);
    }
    for (; i < size; ++i) image[i] = static_cast<std::uint8_t>(random.next());

    const std::size_t slice = size / kPlantedTones;
    if (slice < 16384) return image;
    for (std::size_t n = 0; n < kPlantedTones; ++n) {
        std::uint8_t* base = image.data() + n * slice;
        // Tones sit in the first half of a slice, texts in the second.
        plantTone(base + 1 + random.below(slice / 4), slice / 4, random);
        const std::string text = "Ring tone " + std::to_string(n + 1) + " - Melody";
        std::uint8_t* textAt = base + slice / 2 + random.below(slice / 4);
        std::memcpy(textAt, text.c_str(), text.size() + 1);
    }
    return image;
}

const std::vector<std::uint8_t>& sharedSyntheticImage()
{
    static const std::vector<std::uint8_t> image = makeSyntheticImage();
    return image;
}

}  // namespace zevran::bench
