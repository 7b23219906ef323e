#include "string_extract.hpp"

#include "character_tables.hpp"
#include "utf8_text.hpp"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

namespace zevran::strings {

// Stored bytes as code points; a byte or unit that is no character reads as U+FFFD.
std::u32string decodeCodePoints(std::span<const std::uint8_t> bytes, StringCodes codes, const CodePageTable& table);

namespace {

// A run of characters ending in a zero: [start, start + bytes), the zero at start + bytes.
struct Candidate {
    std::uint32_t start = 0;
    std::uint32_t bytes = 0;
    std::uint32_t characters = 0;
    std::uint32_t common = 0;       // characters of CharacterClass::Common
    std::uint32_t commonBytes = 0;  // the bytes those take
    StringCodes codes = StringCodes::Single;

    std::uint32_t terminator() const { return start + bytes; }
    // At most one character in four is a rare one.
    bool plausible() const { return characters > 0 && 4 * (characters - common) <= characters; }
    void count(CharacterClass found, std::uint32_t width)
    {
        ++characters;
        if (found == CharacterClass::Common) ++common, commonBytes += width;
    }
};

constexpr std::size_t kProgressStep = std::size_t{1} << 20;
// String tables keep their strings end to end, aligned at most to 8 bytes.
constexpr std::uint32_t kMaxZeroGap = 8;
// A string on its own must be this long and all common characters: noise makes short
// plausible runs about a hundred times a MiB.
constexpr std::uint32_t kLoneStringBytes = 12;
// Random bytes run on as characters for some 8 bytes on average; 32 covers nearly all.
constexpr std::uint32_t kMaxSkippedBytes = 32;

// Every string ends at a zero byte, so the scan goes from zero to zero: from each,
// back over the bytes that can be text, then forward over that run as a reader would.
// Noise holds one zero in 256 bytes, so most of the image is never looked at twice.
class Scanner {
public:
    Scanner(std::span<const std::uint8_t> image, const CodePageTable& table, std::uint32_t shortest)
        : m_image(image), m_table(table), m_units(handsetUnitClasses()), m_shortest(shortest)
    {
        for (unsigned b = 1; b < 256; ++b)
            m_mayBeText[b] = table.singleClass[b] != CharacterClass::NotText || table.lead[b];
        for (unsigned pair = 0x100; pair < 0x10000; ++pair)
            if (table.pairClass[pair] != CharacterClass::NotText) m_mayBeText[pair & 0xFF] = true;
    }

    // The strings of both encodings that end at the zero byte at `zero`.
    void stringsEndingAt(std::size_t zero)
    {
        singleByteEndingAt(zero);
        handsetEndingAt(zero);
    }
    std::vector<Candidate>& candidates() { return m_candidates; }

private:
    void keep(const Candidate& candidate)
    {
        if (candidate.bytes >= m_shortest && candidate.plausible()) m_candidates.push_back(candidate);
    }
    void singleByteEndingAt(std::size_t zero);
    void handsetEndingAt(std::size_t zero);

    std::span<const std::uint8_t> m_image;
    const CodePageTable& m_table;
    const std::vector<CharacterClass>& m_units;
    std::uint32_t m_shortest;
    std::array<bool, 256> m_mayBeText{};  // a character of the code page may hold the byte
    std::vector<Candidate> m_candidates;
};

// A byte no character holds ends every run, so reading forward from past it gives the
// same run as reading the whole image from its start.
void Scanner::singleByteEndingAt(std::size_t zero)
{
    std::size_t from = zero;
    while (from > 0 && m_mayBeText[m_image[from - 1]]) --from;
    Candidate run{static_cast<std::uint32_t>(from)};
    for (std::size_t i = from; i < zero;) {
        const std::uint8_t byte = m_image[i];
        CharacterClass found = m_table.singleClass[byte];
        std::size_t width = 1;
        if (found == CharacterClass::NotText && m_table.lead[byte] && i + 1 < zero) {
            found = m_table.pairClass[byte << 8 | m_image[i + 1]];
            width = 2;
        }
        if (found == CharacterClass::NotText) {
            // Restart after the byte: a bad pair's second byte may begin a string.
            run = Candidate{static_cast<std::uint32_t>(i + 1)};
            ++i;
            continue;
        }
        run.count(found, static_cast<std::uint32_t>(width));
        i += width;
    }
    run.bytes = static_cast<std::uint32_t>(zero - run.start);
    if (run.bytes > 0) keep(run);
}

// Units of the zero's parity, high byte first, back to a unit that is no character or
// that ends a string itself. A string begins at the first unit of that run that follows
// a zero byte (the end of the string before it, or padding), or at the run's first
// unit when none does: a run can reach back into the string before, whose last
// characters and terminator read as units of the other parity.
void Scanner::handsetEndingAt(std::size_t zero)
{
    std::size_t from = zero;
    while (from >= 2 && m_units[m_image[from - 2] << 8 | m_image[from - 1]] != CharacterClass::NotText) from -= 2;
    if (from == zero) return;
    std::size_t start = from;
    for (std::size_t pos = from; pos < zero; pos += 2) {
        if (pos == 0 || m_image[pos - 1] == 0) {
            start = pos;
            break;
        }
    }
    Candidate string{
        static_cast<std::uint32_t>(start), static_cast<std::uint32_t>(zero - start), 0, 0, 0, StringCodes::Handset};
    for (std::size_t pos = start; pos < zero; pos += 2) string.count(m_units[m_image[pos] << 8 | m_image[pos + 1]], 2);
    keep(string);
}

// Where two readings share bytes, the one whose common characters cover more bytes
// than its rare ones stays (then the longer, then the single-byte one): a handset
// Chinese text also reads as single-byte letters and rare GBK characters.
bool ranksAbove(const Candidate& a, const Candidate& b)
{
    const auto score = [](const Candidate& c) { return 2 * static_cast<std::int64_t>(c.commonBytes) - c.bytes; };
    if (score(a) != score(b)) return score(a) > score(b);
    if (a.bytes != b.bytes) return a.bytes > b.bytes;
    return a.codes < b.codes;
}

std::vector<Candidate> withoutOverlaps(std::vector<Candidate> candidates)
{
    std::sort(candidates.begin(), candidates.end(),
              [](const Candidate& a, const Candidate& b) { return a.start < b.start; });
    std::vector<Candidate> kept;
    std::vector<Candidate> group;
    auto settle = [&] {
        std::sort(group.begin(), group.end(), ranksAbove);
        std::vector<Candidate> chosen;
        for (const Candidate& c : group) {
            const bool clashes = std::any_of(chosen.begin(), chosen.end(), [&](const Candidate& other) {
                return c.start <= other.terminator() && other.start <= c.terminator();
            });
            if (!clashes) chosen.push_back(c);
        }
        std::sort(chosen.begin(), chosen.end(),
                  [](const Candidate& a, const Candidate& b) { return a.start < b.start; });
        kept.insert(kept.end(), chosen.begin(), chosen.end());
        group.clear();
    };
    std::uint32_t groupEnd = 0;
    for (const Candidate& c : candidates) {
        if (!group.empty() && c.start > groupEnd) settle();
        groupEnd = group.empty() ? c.terminator() : std::max(groupEnd, c.terminator());
        group.push_back(c);
    }
    settle();
    return kept;
}

// Only zero bytes, at most kMaxZeroGap of them, lie between the two strings.
bool adjacent(std::span<const std::uint8_t> image, const Candidate& before, const Candidate& after)
{
    const std::uint32_t gapStart = before.terminator() + 1;
    if (after.start < gapStart || after.start - gapStart > kMaxZeroGap) return false;
    return std::all_of(image.begin() + gapStart, image.begin() + after.start, [](std::uint8_t b) { return b == 0; });
}

bool isVowel(char32_t c) { return std::u32string_view(U"aeiouyAEIOUY").find(c) != std::u32string_view::npos; }

// Latin letters as menus write them: no capital straight after a small letter inside a
// word ("pGs" is machine code), no two capitals before a small one, and a word of three
// letters or more has a vowel unless it is all capitals of at most four ("SMS", "MMS").
// Machine code and packed numbers read as letters far more often than as words.
bool lettersReadAsWords(std::u32string_view text)
{
    // A menu text neither starts with blank space nor ends in a tab or line break.
    if (text.empty() || text.front() == ' ' || text.front() == '\t' || text.front() == '\n' || text.back() == '\t' ||
        text.back() == '\n')
        return false;
    const auto isUpper = [](char32_t c) { return c >= 'A' && c <= 'Z'; };
    const auto isLower = [](char32_t c) { return c >= 'a' && c <= 'z'; };
    for (std::size_t i = 0; i < text.size();) {
        if (!isUpper(text[i]) && !isLower(text[i])) {
            ++i;
            continue;
        }
        std::size_t end = i;
        bool vowel = false, allUpper = true;
        for (; end < text.size() && (isUpper(text[end]) || isLower(text[end])); ++end) {
            if (end > i && isLower(text[end - 1]) && isUpper(text[end])) return false;
            vowel = vowel || isVowel(text[end]);
            allUpper = allUpper && isUpper(text[end]);
        }
        const std::size_t length = end - i;
        if (length >= 3 && !vowel && !(allUpper && length <= 4)) return false;
        // Two capitals and a small letter ("DRing") begin no word: a stray byte before one.
        if (length >= 3 && isUpper(text[i]) && isUpper(text[i + 1]) && isLower(text[i + 2])) return false;
        i = end;
    }
    return true;
}

bool readsAsWords(std::span<const std::uint8_t> image, const Candidate& c, const CodePageTable& table)
{
    return lettersReadAsWords(decodeCodePoints(image.subspan(c.start, c.bytes), c.codes, table));
}

// The bytes from `from` to the candidate's terminator read afresh in its encoding;
// nullopt where one is no character.
std::optional<Candidate> reread(std::span<const std::uint8_t> image, const Candidate& c, std::uint32_t from,
                                const CodePageTable& table)
{
    Candidate read{from, c.terminator() - from, 0, 0, 0, c.codes};
    for (std::uint32_t i = from; i < c.terminator();) {
        std::uint32_t width = c.codes == StringCodes::Handset ? 2 : 1;
        CharacterClass found = CharacterClass::NotText;
        if (c.codes == StringCodes::Handset) {
            found = handsetUnitClasses()[image[i] << 8 | image[i + 1]];
        } else if ((found = table.singleClass[image[i]]) == CharacterClass::NotText && table.lead[image[i]] &&
                   i + 1 < c.terminator()) {
            found = table.pairClass[image[i] << 8 | image[i + 1]];
            width = 2;
        }
        if (found == CharacterClass::NotText) return std::nullopt;
        read.count(found, width);
        i += width;
    }
    return read;
}

// Where its letters read as words, the candidate as it is; where they do not, or where
// a rare character spoils a long text, the candidate read from the first later byte (up
// to kMaxSkippedBytes on) that leaves a long text of common characters reading as words:
// a text stored among other data often follows bytes that read as characters, or that
// take its first letter as the second byte of a two-byte character.
std::optional<Candidate> settledStart(std::span<const std::uint8_t> image, const Candidate& c,
                                      const CodePageTable& table)
{
    const bool words = readsAsWords(image, c, table);
    if (words && c.common == c.characters) return c;
    const std::uint32_t step = c.codes == StringCodes::Handset ? 2 : 1;
    for (std::uint32_t skip = step; skip <= kMaxSkippedBytes && c.bytes >= kLoneStringBytes + skip; skip += step) {
        const auto later = reread(image, c, c.start + skip, table);
        if (later && later->common == later->characters && readsAsWords(image, *later, table)) return later;
    }
    return words ? std::optional(c) : std::nullopt;
}

bool wanted(StringCodes codes, CodesWanted wanted)
{
    return wanted == CodesWanted::Both || (wanted == CodesWanted::Single) == (codes == StringCodes::Single);
}

}  // namespace

std::string_view codesWord(StringCodes codes) { return codes == StringCodes::Single ? "single" : "handset"; }

std::u32string decodeCodePoints(std::span<const std::uint8_t> bytes, StringCodes codes, const CodePageTable& table)
{
    std::u32string text;
    if (codes == StringCodes::Handset) {
        for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
            const char32_t cp = handsetUnitCharacter(static_cast<std::uint16_t>(bytes[i] << 8 | bytes[i + 1]));
            text += cp ? cp : kReplacementCharacter;
        }
        return text;
    }
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        char32_t cp = table.single[bytes[i]];
        if (!cp && table.lead[bytes[i]] && i + 1 < bytes.size()) {
            cp = table.pair[bytes[i] << 8 | bytes[i + 1]];
            if (cp) ++i;
        }
        text += cp ? cp : kReplacementCharacter;
    }
    return text;
}

std::string decodeStored(std::span<const std::uint8_t> bytes, StringCodes codes, std::string_view codePage)
{
    std::string text;
    for (char32_t cp : decodeCodePoints(bytes, codes, codePageTable(codePage))) appendUtf8(text, cp);
    return text;
}

ExtractResult extractStrings(std::span<const std::uint8_t> image, const ExtractOptions& options)
{
    const CodePageTable& table = codePageTable(options.codePage);
    // Strings of two bytes and up stand as neighbours even when too short to list.
    Scanner scanner(image, table, std::max<std::uint32_t>(1, std::min<std::uint32_t>(2, options.minBytes)));
    const std::uint8_t* const begin = image.data();
    for (std::size_t chunk = 0; chunk < image.size(); chunk += kProgressStep) {
        if (options.progress && !options.progress(chunk, image.size())) return {{}, true};
        const std::uint8_t* const chunkEnd = begin + std::min(image.size(), chunk + kProgressStep);
        for (const std::uint8_t* zero = begin + chunk;
             (zero = static_cast<const std::uint8_t*>(std::memchr(zero, 0, static_cast<std::size_t>(chunkEnd - zero))));
             ++zero)
            scanner.stringsEndingAt(static_cast<std::size_t>(zero - begin));
    }
    if (options.progress && !options.progress(image.size(), image.size())) return {{}, true};
    std::vector<Candidate> found;
    for (const Candidate& c : scanner.candidates())
        if (const auto settled = settledStart(image, c, table)) found.push_back(*settled);
    const std::vector<Candidate> strings = withoutOverlaps(std::move(found));
    ExtractResult result;
    for (std::size_t i = 0; i < strings.size(); ++i) {
        const Candidate& c = strings[i];
        if (c.bytes < options.minBytes || !wanted(c.codes, options.codes)) continue;
        const bool besideAnother = (i > 0 && adjacent(image, strings[i - 1], c)) ||
                                   (i + 1 < strings.size() && adjacent(image, c, strings[i + 1]));
        const bool longAndCommon = c.bytes >= kLoneStringBytes && c.common == c.characters;
        if (!besideAnother && !longAndCommon) continue;
        result.strings.push_back(
            {c.start, c.codes, c.bytes, decodeStored(image.subspan(c.start, c.bytes), c.codes, options.codePage)});
    }
    return result;
}

}  // namespace zevran::strings
