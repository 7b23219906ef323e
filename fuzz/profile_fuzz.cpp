// Profile text through readProfileValue and writeProfileValue. The input is split at
// NUL bytes into text, section, key and value (missing parts are empty). Reading
// must survive any text. A write of a value the file can hold must read back as
// written, and every other section and key named in the text must read as before.
#include "settings/profile_file.hpp"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

using namespace zevran::app;

namespace {

// Each write is checked against every pair, so the pairs are capped to keep a run
// linear in practice; the fuzzer varies which pairs come first.
constexpr std::size_t kMostPairs = 64;
constexpr std::size_t kMostWrittenPairs = 8;

void fail(const char* what, std::string_view section, std::string_view key)
{
    std::fprintf(stderr, "profile_fuzz: %s (section \"%.*s\", key \"%.*s\")\n", what, static_cast<int>(section.size()),
                 section.data(), static_cast<int>(key.size()), key.data());
    std::abort();
}

bool blank(char c) { return c == ' ' || c == '\t'; }

bool hasLineEnd(std::string_view text) { return text.find_first_of("\r\n") != std::string_view::npos; }

bool trimmed(std::string_view text) { return text.empty() || (!blank(text.front()) && !blank(text.back())); }

std::string_view trim(std::string_view text)
{
    while (!text.empty() && blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && blank(text.back())) text.remove_suffix(1);
    return text;
}

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool sameName(std::string_view a, std::string_view b)
{
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return lower(x) == lower(y); });
}

// When the written line reads back as the value. The section line "[section]" must
// name the section whole; the key line "key=value" must be a key line (not blank, not
// a comment, not a section line) whose key and value are exactly those given. Empty
// names qualify: "[]" and "=v" read back like any other.
bool writable(std::string_view section, std::string_view key, std::string_view value)
{
    if (hasLineEnd(section) || section.find(']') != std::string_view::npos || !trimmed(section)) return false;
    if (hasLineEnd(key) || key.find('=') != std::string_view::npos || !trimmed(key)) return false;
    if (!key.empty() && key.front() == ';') return false;
    // "[a=b]" is a section line, whatever follows its "=".
    if (!key.empty() && key.front() == '[' &&
        (key.find(']') != std::string_view::npos || value.find(']') != std::string_view::npos))
        return false;
    return !hasLineEnd(value) && trimmed(value) && value.size() <= kProfileValueLimit;
}

using Pair = std::pair<std::string, std::string>;

// The (section, key) pairs the text names, found the plain way: one per key line
// that follows a section line.
std::vector<Pair> collectPairs(std::string_view text)
{
    std::vector<Pair> pairs;
    std::optional<std::string_view> section;
    while (!text.empty() && pairs.size() < kMostPairs) {
        const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
        const std::string_view line = trim(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (!line.empty() && line.front() == '[' && line.find(']') != std::string_view::npos) {
            section = trim(line.substr(1, line.find(']') - 1));
            continue;
        }
        const std::size_t equals = line.find('=');
        if (!section || line.empty() || line.front() == ';' || equals == std::string_view::npos) continue;
        pairs.emplace_back(std::string(*section), std::string(trim(line.substr(0, equals))));
    }
    return pairs;
}

void checkRead(std::string_view text, std::string_view section, std::string_view key)
{
    const auto value = readProfileValue(text, section, key);
    if (!value) return;
    if (value->size() > kProfileValueLimit) fail("value read is longer than 255 bytes", section, key);
    if (hasLineEnd(*value)) fail("value read holds a line end", section, key);
    if (value->size() < kProfileValueLimit && !trimmed(*value)) fail("value read is not trimmed", section, key);
}

void checkWrite(std::string_view text, std::string_view section, std::string_view key, std::string_view value,
                const std::vector<Pair>& textPairs)
{
    if (!writable(section, key, value)) return;
    const std::string written = writeProfileValue(text, section, key, value);
    const auto back = readProfileValue(written, section, key);
    if (!back) fail("written key cannot be read back", section, key);
    if (*back != value) fail("written key reads back another value", section, key);

    std::vector<Pair> pairs = textPairs;
    const std::vector<Pair> writtenPairs = collectPairs(written);
    pairs.insert(pairs.end(), writtenPairs.begin(), writtenPairs.end());
    for (const auto& [otherSection, otherKey] : pairs) {
        if (sameName(otherSection, section) && sameName(otherKey, key)) continue;
        if (readProfileValue(text, otherSection, otherKey) != readProfileValue(written, otherSection, otherKey))
            fail("a write changed another key", otherSection, otherKey);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    std::string_view parts[4];
    for (std::string_view& part : parts) {
        const std::size_t nul = std::min(rest.find('\0'), rest.size());
        part = rest.substr(0, nul);
        rest.remove_prefix(std::min(nul + 1, rest.size()));
    }
    const auto [text, section, key, value] = parts;

    checkRead(text, section, key);
    const std::vector<Pair> pairs = collectPairs(text);
    for (const auto& [s, k] : pairs) checkRead(text, s, k);

    checkWrite(text, section, key, value, pairs);
    // The pairs already in the text take the path that rewrites a line in place.
    for (std::size_t i = 0; i < std::min(pairs.size(), kMostWrittenPairs); ++i)
        checkWrite(text, pairs[i].first, pairs[i].second, value, pairs);
    return 0;
}
