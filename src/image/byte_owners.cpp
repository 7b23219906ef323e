#include "byte_owners.hpp"

#include <algorithm>

namespace zevran::image {

ByteOwners::ByteOwners(std::vector<ByteOwner> ranges)
{
    std::erase_if(ranges, [](const ByteOwner& owner) { return owner.end <= owner.first || owner.end <= 0; });
    std::sort(ranges.begin(), ranges.end(), [](const ByteOwner& a, const ByteOwner& b) { return a.first < b.first; });
    m_ranges = std::move(ranges);
    m_reach.reserve(m_ranges.size());
    std::int64_t reach = 0;
    for (const ByteOwner& owner : m_ranges) m_reach.push_back(reach = std::max(reach, owner.end));
}

template <typename Visit>
void ByteOwners::visitOwners(std::int64_t address, Visit visit) const
{
    // Ranges starting after the address cannot hold it; of those before, only as many
    // are looked at as the running furthest end says may still reach it.
    auto after = std::upper_bound(m_ranges.begin(), m_ranges.end(), address,
                                  [](std::int64_t at, const ByteOwner& owner) { return at < owner.first; });
    for (auto k = static_cast<std::size_t>(after - m_ranges.begin()); k > 0 && m_reach[k - 1] > address; --k)
        if (m_ranges[k - 1].end > address) visit(m_ranges[k - 1]);
}

std::optional<OwnerKind> ByteOwners::kindAt(std::int64_t address) const
{
    std::optional<OwnerKind> kind;
    visitOwners(address, [&](const ByteOwner& owner) {
        if (!kind || owner.kind < *kind) kind = owner.kind;
    });
    return kind;
}

std::vector<ByteOwner> ByteOwners::ownersAt(std::int64_t address) const
{
    std::vector<ByteOwner> owners;
    visitOwners(address, [&](const ByteOwner& owner) { owners.push_back(owner); });
    std::sort(owners.begin(), owners.end(), [](const ByteOwner& a, const ByteOwner& b) {
        return a.kind != b.kind ? a.kind < b.kind : a.first < b.first;
    });
    return owners;
}

std::optional<ByteOwner> ByteOwners::ownerAt(std::int64_t address) const
{
    const std::vector<ByteOwner> owners = ownersAt(address);
    if (owners.empty()) return std::nullopt;
    return owners.front();
}

}  // namespace zevran::image
