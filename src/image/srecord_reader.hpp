// Reading S-record text line by line, in the two ways the converter offers:
// the handset tool's own reading (every line but "S00"/"S70" is an S3 data line,
// checksums unread, bad digits as 0) and a strict reading of any Motorola file.
#pragma once

#include "failure.hpp"

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zevran::image {

// An S-record line that cannot be converted; the message starts "line N: ".
// A record that cannot be read: its line, and why.
class SRecordError : public WorkshopError {
public:
    SRecordError(std::uint64_t line, Reason reason, std::vector<std::string> values = {});
    SRecordError(std::uint64_t line, const std::string& what);
    std::uint64_t line() const { return m_line; }

private:
    std::uint64_t m_line;
};

struct SRecordData {
    bool isData = false;  // false for a line that carries no data (header, count, trailer)
    std::uint32_t address = 0;
    std::vector<std::uint8_t> bytes;
};

// The handset tool's reading: lines starting "S00" or "S70" carry no data; any
// other is read as S3: address from characters 5-12, count - 5 data bytes from
// character 13. A non-hex digit reads as 0 and a short line gives zero bytes, since
// that is how the tool has always read them; checksums are not read. A count field
// below 5 throws SRecordError.
void readDesignRecord(std::string_view line, std::uint64_t lineNumber, SRecordData& record);

// The strict reading of a Motorola file as its producer meant it: S1, S2 and S3
// data with 2-, 3- and 4-byte addresses; S0, S5, S6, S7, S8 and S9 carry no data;
// a blank line is skipped. Anything malformed, and a checksum that does not match,
// throws SRecordError.
void readStrictRecord(std::string_view line, std::uint64_t lineNumber, SRecordData& record);

// A line that the strict reading passes over instead of refusing: one that is not
// blank and does not start with "S", such as the comment lines some producers write
// between their records.
bool isForeignLine(std::string_view line);

// Splits text into lines at CR LF, a lone CR or a lone LF, across buffer refills.
// Lines longer than kMaxKeptLine are cut there: no S-record line is that long, and
// the tail of a longer one is never read.
class LineSplitter {
public:
    static constexpr std::size_t kMaxKeptLine = 1024;

    // Feeds the next piece of text; `onLine(std::string_view)` is called for every
    // line completed by it.
    template <typename OnLine>
    void feed(std::string_view text, OnLine&& onLine);

    // Ends the input: a last line without a line end is delivered too.
    template <typename OnLine>
    void finish(OnLine&& onLine);

    // Feeds `text` up to the end of the first line it completes and returns the
    // characters taken; after a return short of text.size() the splitter holds nothing,
    // so the caller may read on from there line by line itself. A line whose end is not
    // in `text` (or is a CR as its last character) is kept and all of `text` is taken.
    template <typename OnLine>
    std::size_t feedFirstLine(std::string_view text, OnLine&& onLine);

    // True while no part of a line is kept.
    bool idle() const { return !m_havePartial && !m_skipLf; }

private:
    void keep(std::string_view piece);

    std::string m_partial;
    bool m_havePartial = false;
    bool m_skipLf = false;  // the last piece ended in CR, so a leading LF belongs to it
};

template <typename OnLine>
void LineSplitter::feed(std::string_view text, OnLine&& onLine)
{
    std::size_t pos = 0;
    if (m_skipLf && !text.empty()) {
        if (text[0] == '\n') pos = 1;
        m_skipLf = false;
    }
    while (pos < text.size()) {
        std::size_t end = pos;
        while (end < text.size() && text[end] != '\r' && text[end] != '\n') ++end;
        if (end == text.size()) {
            keep(text.substr(pos));
            return;
        }
        std::string_view line = text.substr(pos, end - pos);
        if (m_havePartial) {
            keep(line);
            onLine(std::string_view(m_partial));
            m_partial.clear();
            m_havePartial = false;
        } else {
            onLine(line.substr(0, kMaxKeptLine));
        }
        pos = end + 1;
        if (text[end] == '\r') {
            if (pos < text.size()) {
                if (text[pos] == '\n') ++pos;
            } else {
                m_skipLf = true;
            }
        }
    }
}

template <typename OnLine>
void LineSplitter::finish(OnLine&& onLine)
{
    if (m_havePartial) onLine(std::string_view(m_partial));
    m_partial.clear();
    m_havePartial = false;
    m_skipLf = false;
}

template <typename OnLine>
std::size_t LineSplitter::feedFirstLine(std::string_view text, OnLine&& onLine)
{
    std::size_t pos = 0;
    if (m_skipLf && !text.empty()) {
        if (text[0] == '\n') pos = 1;
        m_skipLf = false;
    }
    const std::size_t end = text.find_first_of("\r\n", pos);
    if (end == std::string_view::npos || (text[end] == '\r' && end + 1 == text.size())) {
        feed(text.substr(pos), onLine);
        return text.size();
    }
    const std::string_view line = text.substr(pos, end - pos);
    if (m_havePartial) {
        keep(line);
        // Taken out first, so the splitter holds nothing even if onLine throws.
        const std::string whole = std::move(m_partial);
        m_partial.clear();
        m_havePartial = false;
        onLine(std::string_view(whole));
    } else {
        onLine(line.substr(0, kMaxKeptLine));
    }
    return end + 1 + (text[end] == '\r' && text[end + 1] == '\n' ? 1 : 0);
}

}  // namespace zevran::image
