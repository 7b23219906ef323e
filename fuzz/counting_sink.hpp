// An output stream buffer for the fuzz targets: counts what the converter writes
// and keeps it only when asked. Full-address output spans the address space up to
// the highest record (4 GiB for a record at FFFFFFF0), which is fine to count
// but not to store. Even counting a gap of gigabytes takes tens of thousands of
// calls, so a sink may be given a cap: past it, it refuses every write as a full
// disk would, and says so through capped().
#pragma once

#include <cstdint>
#include <streambuf>
#include <string>

namespace zevran::fuzz {

class CountingSink : public std::streambuf {
public:
    explicit CountingSink(bool keep, std::uint64_t cap = UINT64_MAX) : m_keep(keep), m_cap(cap) {}

    std::uint64_t count() const { return m_count; }
    bool capped() const { return m_capped; }
    const std::string& kept() const { return m_kept; }

protected:
    std::streamsize xsputn(const char* bytes, std::streamsize n) override
    {
        if (m_capped || static_cast<std::uint64_t>(n) > m_cap - m_count) {
            m_capped = true;
            return 0;
        }
        m_count += static_cast<std::uint64_t>(n);
        if (m_keep) m_kept.append(bytes, static_cast<std::size_t>(n));
        return n;
    }

    int_type overflow(int_type c) override
    {
        if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
        if (m_capped || m_count == m_cap) {
            m_capped = true;
            return traits_type::eof();
        }
        ++m_count;
        if (m_keep) m_kept.push_back(traits_type::to_char_type(c));
        return c;
    }

private:
    bool m_keep;
    std::uint64_t m_cap;
    std::uint64_t m_count = 0;
    bool m_capped = false;
    std::string m_kept;
};

}  // namespace zevran::fuzz
