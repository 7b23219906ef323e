// An output stream buffer for the fuzz targets: counts what the converter writes
// and keeps it only when asked. Full-address output spans the address space up to
// the highest record (4 GiB for a record at FFFFFFF0), which is fine to count
// but not to store, so the fill blocks cost a call each and nothing more.
#pragma once

#include <cstdint>
#include <streambuf>
#include <string>

namespace zevran::fuzz {

class CountingSink : public std::streambuf {
public:
    explicit CountingSink(bool keep) : m_keep(keep) {}

    std::uint64_t count() const { return m_count; }
    const std::string& kept() const { return m_kept; }

protected:
    std::streamsize xsputn(const char* bytes, std::streamsize n) override
    {
        m_count += static_cast<std::uint64_t>(n);
        if (m_keep) m_kept.append(bytes, static_cast<std::size_t>(n));
        return n;
    }

    int_type overflow(int_type c) override
    {
        if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
        ++m_count;
        if (m_keep) m_kept.push_back(traits_type::to_char_type(c));
        return c;
    }

private:
    bool m_keep;
    std::uint64_t m_count = 0;
    std::string m_kept;
};

}  // namespace zevran::fuzz
