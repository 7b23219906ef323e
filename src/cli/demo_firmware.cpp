#include "demo_firmware.hpp"

#include "demo_pictures.hpp"

#include "image/hex_text.hpp"
#include "pictures/picture_table.hpp"
#include "strings/code_page.hpp"
#include "tones/tone_check.hpp"

#include <algorithm>
#include <stdexcept>

namespace zevran::cli {

namespace {

using Bytes = std::vector<std::uint8_t>;

// xorshift32 with a fixed seed: the demo must come out the same on every machine,
// which the standard library's distributions do not promise.
class Random {
public:
    explicit Random(std::uint32_t seed) : m_state(seed ? seed : 1) {}
    std::uint32_t next()
    {
        m_state ^= m_state << 13;
        m_state ^= m_state >> 17;
        m_state ^= m_state << 5;
        return m_state;
    }
    std::uint32_t below(std::uint32_t count) { return next() % count; }
    std::uint8_t byte() { return static_cast<std::uint8_t>(next() >> 24); }

private:
    std::uint32_t m_state;
};

std::uint32_t nameSeed(std::string_view text)
{
    std::uint32_t hash = 2166136261u;  // FNV-1a
    for (unsigned char c : text) hash = (hash ^ c) * 16777619u;
    return hash;
}

void append(Bytes& out, std::string_view text) { out.insert(out.end(), text.begin(), text.end()); }
void append(Bytes& out, std::span<const std::uint8_t> bytes) { out.insert(out.end(), bytes.begin(), bytes.end()); }

void appendBig32(Bytes& out, std::size_t value)
{
    for (int shift = 24; shift >= 0; shift -= 8) out.push_back(static_cast<std::uint8_t>(value >> shift));
}

// A chunk: four-character id, big-endian body length, body.
void appendChunk(Bytes& out, std::string_view id, std::span<const std::uint8_t> body)
{
    append(out, id);
    appendBig32(out, body.size());
    append(out, body);
}

// Events of four bytes (wait, note-on with its channel, note, gate time) wandering over
// a pentatonic scale, zero waits as padding, and the four zero bytes that end a sequence.
// The note-on byte every fourth place keeps "MMMD" from ever forming here.
Bytes melody(std::string_view title, std::size_t length)
{
    static constexpr std::uint8_t kScale[] = {60, 62, 64, 67, 69, 72, 74, 76, 79};
    static constexpr std::uint8_t kWaits[] = {0x0C, 0x18, 0x18, 0x30};
    Random random(nameSeed(title));
    Bytes sequence;
    std::size_t step = random.below(std::size(kScale));
    while (sequence.size() + 8 <= length) {
        step = std::clamp<std::size_t>(step + random.below(5), 2, std::size(kScale) + 1) - 2;
        sequence.insert(sequence.end(),
                        {kWaits[random.below(std::size(kWaits))], static_cast<std::uint8_t>(0x90 | random.below(2)),
                         kScale[step], static_cast<std::uint8_t>(kWaits[random.below(std::size(kWaits))] - 4)});
    }
    sequence.resize(length, 0x00);
    return sequence;
}

// Thumb-like code: halfwords whose high byte comes from common instruction groups,
// now and then a pool of 32-bit literals below 0x20200000. No high byte is 0x4D and
// every literal's top two bytes are small, so no tone signature forms by chance.
void fillWithCode(Bytes& image, std::size_t first, std::size_t last, Random& random)
{
    static constexpr std::uint8_t kHighBytes[] = {0x20, 0x21, 0x1C, 0x68, 0x60, 0x46, 0xB5, 0xBD, 0xD0, 0xD1, 0xE7,
                                                  0x4B, 0x49, 0x48, 0x2A, 0x28, 0x30, 0x3A, 0x98, 0x18, 0x1A, 0xF0,
                                                  0xF8, 0x47, 0x40, 0x42, 0x70, 0x78, 0x80, 0x88, 0xDB, 0xE0};
    static constexpr std::uint8_t kLiteralTops[] = {0x00, 0x08, 0x20};
    std::size_t at = first;
    while (at + 2 <= last) {
        if (random.below(40) == 0 && at + 4 <= last) {
            for (std::uint32_t words = 1 + random.below(6); words > 0 && at + 4 <= last; --words, at += 4) {
                image[at] = random.byte();
                image[at + 1] = random.byte();
                image[at + 2] = static_cast<std::uint8_t>(random.below(0x20));
                image[at + 3] = kLiteralTops[random.below(std::size(kLiteralTops))];
            }
        } else {
            image[at] = random.byte();
            image[at + 1] = kHighBytes[random.below(std::size(kHighBytes))];
            at += 2;
        }
    }
    if (at < last) image[at] = 0x00;
}

class Planter {
public:
    explicit Planter(Bytes& image) : m_image(image) {}
    void write(std::size_t offset, std::span<const std::uint8_t> bytes)
    {
        if (offset + bytes.size() > m_image.size()) throw std::logic_error("a demo item overruns the image");
        std::copy(bytes.begin(), bytes.end(), m_image.begin() + static_cast<std::ptrdiff_t>(offset));
    }
    void put(std::size_t offset, std::span<const std::uint8_t> bytes, std::string what)
    {
        write(offset, bytes);
        m_planted.push_back(
            {static_cast<std::uint32_t>(offset), static_cast<std::uint32_t>(bytes.size()), std::move(what)});
    }
    std::vector<PlantedItem> planted() const { return m_planted; }

private:
    Bytes& m_image;
    std::vector<PlantedItem> m_planted;
};

// Where things lie: code throughout, two erased blocks, strings, pictures, tones.
constexpr std::size_t kVersionAt = 0x000200;
constexpr std::size_t kCodeFrom = 0x000300;
constexpr std::size_t kErasedFrom = 0x0B0000, kErasedTo = 0x0C0000;
constexpr std::size_t kStringsAt = 0x0C0000;
constexpr std::size_t kHandsetStringsAt = 0x0C0200;
constexpr std::size_t kPicturesAt = 0x0D0000;
constexpr std::size_t kTonesAt = 0x140011;
constexpr std::size_t kTailErasedFrom = 0x1E0000;

// A reset vector table: the initial stack pointer, then Thumb entry points.
void putVectorTable(Bytes& image, Random& random)
{
    for (std::size_t i = 0; i < 64; ++i) {
        const std::uint32_t word = i == 0 ? 0x20010000u : 0x08000301u + 2 * random.below(0x8000);
        for (std::size_t b = 0; b < 4; ++b) image[4 * i + b] = static_cast<std::uint8_t>(word >> (8 * b));
    }
}

void putVersion(Planter& planter)
{
    Bytes record;
    append(record, "VersionString:");
    // Three record bytes stand between the marker and the version text.
    record.insert(record.end(), {0x00, 0x01, 0x08});
    append(record, kDemoVersion);
    record.push_back(0x00);
    planter.put(kVersionAt, record, "version " + std::string(kDemoVersion));
}

// Menu texts as the handset keeps them: each after a zero byte and ended by one.
void putStrings(Planter& planter)
{
    const std::string_view singleByte[] = {"Welcome",  "Call ended", "Messages", "Settings",
                                           "欢迎使用", "短信息",     "通话结束"};
    std::size_t at = kStringsAt;
    planter.write(at++, Bytes{0x00});
    for (std::string_view text : singleByte) {
        Bytes stored;
        append(stored, strings::encodeText(text));
        stored.push_back(0x00);
        planter.put(at, stored, "string \"" + std::string(text) + "\" (GBK)");
        at += stored.size();
    }
    // Handset codes take two bytes a character, so these strings end in a zero pair.
    const std::string_view handset[] = {"Hello", "中文菜单", "Missed calls"};
    at = kHandsetStringsAt;
    planter.write(at, Bytes{0x00, 0x00});
    at += 2;
    for (std::string_view text : handset) {
        const std::string hex = image::TextToHexCodes(text);
        Bytes stored;
        for (std::size_t i = 0; i + 1 < hex.size(); i += 2) stored.push_back(image::HexByteValue(hex.substr(i, 2)));
        stored.insert(stored.end(), {0x00, 0x00});
        planter.put(at, stored, "string \"" + std::string(text) + "\" (handset codes)");
        at += stored.size();
    }
}

// Pictures one after another on 256-byte boundaries, erased bytes between; returns the table.
std::string putPictures(Bytes& image, Planter& planter)
{
    std::vector<pictures::PictureEntry> rows;
    std::size_t at = kPicturesAt;
    for (const DemoPicture& picture : demoPictures()) {
        planter.put(at, picture.bytes,
                    "picture " + picture.name + ", " + std::to_string(picture.width) + "*" +
                        std::to_string(picture.height) + ", " + std::to_string(picture.depth) + "-bit, " +
                        std::to_string(picture.frames) + (picture.frames == 1 ? " frame" : " frames"));
        // Mono pictures are listed as 64*96 so that one BMP row is one display column.
        rows.push_back({image::ZeroPad(std::to_string(rows.size() + 1), 3), picture.name,
                        "0X" + image::HexPad(static_cast<std::uint32_t>(at), 8), std::to_string(picture.frames),
                        std::to_string(picture.frameSize()),
                        std::to_string(picture.width) + "*" + std::to_string(picture.height),
                        std::to_string(picture.depth)});
        const std::size_t end = at + picture.bytes.size();
        at = (end + 0xFF) / 0x100 * 0x100;
        std::fill(image.begin() + static_cast<std::ptrdiff_t>(end), image.begin() + static_cast<std::ptrdiff_t>(at),
                  0xFF);
    }
    return pictures::pictureTableText(rows, {"Frames", "Size", "Pixels", "Bits"}, "");
}

// Six tones of 320 bytes to 20 KB at unaligned offsets with code between them; the fourth
// carries a seventh inside its score track.
void putTones(Planter& planter, Random& random)
{
    struct Planned {
        std::string_view title;
        std::size_t size;
    };
    const Planned tones[] = {{"Door Chime", 320},  {"Low Battery", 1100},  {"Morning Bell", 2900},
                             {"Polka Dots", 6000}, {"Night Train", 11000}, {"Zevran Theme", 20000}};
    const Bytes inner = smafTone("Music Box", 700);
    std::size_t at = kTonesAt;
    for (const Planned& tone : tones) {
        const bool nesting = tone.title == "Polka Dots";
        const Bytes bytes = smafTone(tone.title, tone.size,
                                     nesting ? std::span<const std::uint8_t>(inner) : std::span<const std::uint8_t>());
        planter.put(at, bytes, "tone \"" + std::string(tone.title) + "\"" + (nesting ? " holding \"Music Box\"" : ""));
        if (nesting) {
            const auto within = std::search(bytes.begin(), bytes.end(), inner.begin(), inner.end()) - bytes.begin();
            planter.put(at + static_cast<std::size_t>(within), inner, "tone \"Music Box\", nested");
        }
        at += bytes.size() + 0x100 + std::size_t{2} * random.below(0x200) + 1;
    }
}

// Bare signatures whose declared sizes (length + 8) lie outside 101..99999.
void putFalseSignatures(Planter& planter)
{
    const std::pair<std::size_t, std::uint32_t> signatures[] = {
        {0x0A1235, 0x00000010}, {0x12F3A1, 0x0000005C}, {0x1D0007, 0x7FFFFFFF}};
    for (const auto& [offset, length] : signatures) {
        Bytes bytes;
        append(bytes, "MMMD");
        appendBig32(bytes, length);
        planter.put(offset, bytes, "false signature, length 0x" + image::HexPad(length, 8));
    }
}

std::size_t signatureCount(const Bytes& image)
{
    static constexpr std::uint8_t signature[] = {'M', 'M', 'M', 'D'};
    std::size_t count = 0;
    auto it = image.begin();
    while ((it = std::search(it, image.end(), std::begin(signature), std::end(signature))) != image.end()) {
        ++count;
        ++it;
    }
    return count;
}

}  // namespace

Bytes smafTone(std::string_view title, std::size_t size, std::span<const std::uint8_t> embedded)
{
    // Class, type, code type, copy status, copy count; then tags, each ending in a comma.
    Bytes contents = {0x00, 0x32, 0x01, 0x00, 0x00};
    append(contents, "ST:" + std::string(title) + ",AW:Zevran Workshop,");
    // Format, sequence type, two timebases, then the status of 16 channels.
    Bytes track = {0x02, 0x00, 0x02, 0x02};
    for (int channel = 0; channel < 16; ++channel) track.push_back(channel < 2 ? 0x40 : 0x00);
    appendChunk(track, "Mtsu", Bytes{0xFF, 0xF0, 0x06, 0x43, 0x79, 0x07, 0x7F, 0x01, 0xF7});
    if (!embedded.empty()) appendChunk(track, "Mtsp", embedded);
    const std::size_t fixed = 8 + (8 + contents.size()) + (8 + track.size() + 8) + 2;
    if (size < fixed + 8)
        throw std::invalid_argument("a tone titled \"" + std::string(title) + "\" needs at least " +
                                    std::to_string(fixed + 8) + " bytes, not " + std::to_string(size));
    appendChunk(track, "Mtsq", melody(title, size - fixed));
    // Made with its signature rather than appended to an empty vector: GCC 12 at -O3 takes
    // that insert for a write past the end (-Wstringop-overflow).
    Bytes tone = {'M', 'M', 'M', 'D'};
    appendBig32(tone, size - 8);
    appendChunk(tone, "CNTI", contents);
    appendChunk(tone, "MTR\x05", track);
    const std::uint16_t crc = tones::smafCrc(tone);
    tone.insert(tone.end(), {static_cast<std::uint8_t>(crc >> 8), static_cast<std::uint8_t>(crc)});
    return tone;
}

DemoFirmware makeDemoFirmware()
{
    DemoFirmware demo;
    Bytes& image = demo.image;
    image.assign(kDemoImageSize, 0xFF);
    Random random(0x5A45564Eu);
    putVectorTable(image, random);
    fillWithCode(image, kCodeFrom, kErasedFrom, random);
    fillWithCode(image, kErasedTo, kTailErasedFrom, random);
    Planter planter(image);
    putVersion(planter);
    putStrings(planter);
    demo.pictureTable = putPictures(image, planter);
    putTones(planter, random);
    putFalseSignatures(planter);
    demo.planted = planter.planted();
    std::sort(demo.planted.begin(), demo.planted.end(),
              [](const PlantedItem& a, const PlantedItem& b) { return a.offset < b.offset; });
    // Seven tones and three false signatures; pixel bytes must not have made another.
    if (signatureCount(image) != 10) throw std::logic_error("the demo image holds a stray tone signature");
    // Two fit no slot (the smallest is 320 bytes), one fits the larger half, one none.
    demo.spareTones = {{"blip.mmf", smafTone("Blip", 180)},
                       {"ping.mmf", smafTone("Ping", 260)},
                       {"waltz.mmf", smafTone("Waltz", 4000)},
                       {"anthem.mmf", smafTone("Anthem", 24000)}};
    return demo;
}

}  // namespace zevran::cli
