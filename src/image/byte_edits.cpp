#include "byte_edits.hpp"

#include <algorithm>

namespace zevran::image {

std::optional<Region> overwriteRegion(std::size_t imageSize, std::int64_t address, std::span<const std::uint8_t> bytes)
{
    if (address < 0 || static_cast<std::size_t>(address) >= imageSize || bytes.empty()) return std::nullopt;
    const std::size_t count = std::min(bytes.size(), imageSize - static_cast<std::size_t>(address));
    Region region;
    region.first = static_cast<std::int32_t>(address);
    region.last = static_cast<std::int32_t>(address + static_cast<std::int64_t>(count) - 1);
    region.bytes.assign(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count));
    return region;
}

void OriginalBytes::remember(std::span<const std::uint8_t> image, std::int64_t first, std::size_t count)
{
    if (first < 0 || static_cast<std::size_t>(first) >= image.size() || count == 0) return;
    std::size_t begin = static_cast<std::size_t>(first);
    std::size_t end = begin + std::min(count, image.size() - begin);
    // Kept runs that overlap or touch [begin, end) are joined into one, their bytes
    // winning over the image's, which may already have been written over.
    auto from = m_kept.upper_bound(begin);
    if (from != m_kept.begin()) {
        auto before = std::prev(from);
        if (before->first + before->second.size() >= begin) from = before;
    }
    auto to = from;
    while (to != m_kept.end() && to->first <= end) ++to;
    if (from != to) {
        begin = std::min(begin, from->first);
        const auto last = std::prev(to);
        end = std::max(end, last->first + last->second.size());
    }
    std::vector<std::uint8_t> joined(image.begin() + static_cast<std::ptrdiff_t>(begin),
                                     image.begin() + static_cast<std::ptrdiff_t>(end));
    for (auto run = from; run != to; ++run)
        std::copy(run->second.begin(), run->second.end(),
                  joined.begin() + static_cast<std::ptrdiff_t>(run->first - begin));
    m_kept.erase(from, to);
    m_kept.emplace(begin, std::move(joined));
}

void OriginalBytes::remember(std::span<const std::uint8_t> image, const std::vector<Region>& regions)
{
    for (const Region& region : regions) remember(image, region.first, region.bytes.size());
}

bool OriginalBytes::changedAt(std::span<const std::uint8_t> image, std::size_t address) const
{
    auto run = m_kept.upper_bound(address);
    if (run == m_kept.begin()) return false;
    --run;
    const std::size_t offset = address - run->first;
    return offset < run->second.size() && address < image.size() && image[address] != run->second[offset];
}

std::vector<std::pair<std::size_t, std::size_t>> OriginalBytes::changedSpans(std::span<const std::uint8_t> image) const
{
    std::vector<std::pair<std::size_t, std::size_t>> spans;
    for (const auto& [first, original] : m_kept) {
        const std::size_t count = std::min(original.size(), image.size() > first ? image.size() - first : 0);
        for (std::size_t i = 0; i < count;) {
            if (image[first + i] == original[i]) {
                ++i;
                continue;
            }
            const std::size_t start = i;
            while (i < count && image[first + i] != original[i]) ++i;
            spans.emplace_back(first + start, first + i);
        }
    }
    return spans;
}

std::vector<Region> OriginalBytes::changedRegions(std::span<const std::uint8_t> image) const
{
    std::vector<Region> regions;
    for (const auto& [begin, end] : changedSpans(image)) {
        Region region;
        region.first = static_cast<std::int32_t>(begin);
        region.last = static_cast<std::int32_t>(end - 1);
        region.bytes.assign(image.begin() + static_cast<std::ptrdiff_t>(begin),
                            image.begin() + static_cast<std::ptrdiff_t>(end));
        regions.push_back(std::move(region));
    }
    return regions;
}

std::size_t OriginalBytes::keptBytes() const
{
    std::size_t bytes = 0;
    for (const auto& run : m_kept) bytes += run.second.size();
    return bytes;
}

}  // namespace zevran::image
