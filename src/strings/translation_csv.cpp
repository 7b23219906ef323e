// CSV as RFC 4180 has it: CRLF between records, a field quoted when it holds a comma,
// a quote or a line break, a quote inside doubled. The reader also takes LF alone.
#include "translation_files.hpp"

#include "utf8_text.hpp"

#include <algorithm>
#include <map>

namespace zevran::strings {

namespace {

using Reason = TranslationFileFailure::Reason;

struct Record {
    std::size_t line = 0;  // where it starts
    std::vector<std::string> fields;
};

// Splits the text into records; throws at a quote that does not close.
std::vector<Record> parseRecords(std::string_view text, const std::string& fileName)
{
    std::vector<Record> records;
    std::size_t line = 1;
    std::size_t pos = 0;
    while (pos < text.size()) {
        Record record{line, {}};
        for (;;) {
            std::string field;
            if (pos < text.size() && text[pos] == '"') {
                const std::size_t openedAt = line;
                for (++pos;; ++pos) {
                    if (pos >= text.size())
                        throw fileError(Reason::Syntax, fileName, openedAt, 0, "a quoted field does not end");
                    if (text[pos] == '"') {
                        if (pos + 1 < text.size() && text[pos + 1] == '"') {
                            field += '"';
                            ++pos;
                            continue;
                        }
                        ++pos;
                        break;
                    }
                    if (text[pos] == '\n') ++line;
                    field += text[pos];
                }
            }
            while (pos < text.size() && text[pos] != ',' && text[pos] != '\n' && text[pos] != '\r')
                field += text[pos++];
            record.fields.push_back(std::move(field));
            if (pos < text.size() && text[pos] == ',') {
                ++pos;
                continue;
            }
            break;
        }
        if (pos < text.size() && text[pos] == '\r') ++pos;
        if (pos < text.size() && text[pos] == '\n') ++pos;
        ++line;
        const bool blank = record.fields.size() == 1 && record.fields[0].empty();
        if (!blank) records.push_back(std::move(record));
    }
    return records;
}

std::string trimmedLower(std::string_view text)
{
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return std::tolower(c); });
    return lower;
}

}  // namespace

std::string csvField(std::string_view text)
{
    if (text.find_first_of(",\"\r\n") == std::string_view::npos) return std::string(text);
    std::string quoted = "\"";
    for (char c : text) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + "\"";
}

std::string csvText(std::span<const StoredString> strings)
{
    std::string text = "address,encoding,budget,source,target\r\n";
    for (const StoredString& s : strings) {
        const std::string key = entryKey(s.address, s.codes);
        text += key.substr(0, 10) + "," + std::string(codesWord(s.codes)) + "," + std::to_string(s.bytes) + "," +
                csvField(s.text) + ",\r\n";
    }
    return text;
}

std::vector<TranslationEntry> readCsv(std::string_view text, const std::string& fileName)
{
    if (text.substr(0, 3) == "\xEF\xBB\xBF") text.remove_prefix(3);
    if (!isValidUtf8(text)) throw fileError(Reason::NotUtf8, fileName);
    const std::vector<Record> records = parseRecords(text, fileName);
    if (records.empty()) throw fileError(Reason::MissingColumn, fileName, 1, 0, "address");
    std::map<std::string, std::size_t> columns;
    for (std::size_t i = 0; i < records[0].fields.size(); ++i) columns.emplace(trimmedLower(records[0].fields[i]), i);
    for (const char* needed : {"address", "encoding", "source", "target"})
        if (!columns.count(needed)) throw fileError(Reason::MissingColumn, fileName, 1, 0, needed);
    const auto budgetColumn = columns.find("budget");
    std::vector<TranslationEntry> entries;
    for (std::size_t r = 1; r < records.size(); ++r) {
        const Record& record = records[r];
        const auto field = [&record](std::size_t column) {
            return column < record.fields.size() ? record.fields[column] : std::string();
        };
        const std::string address = field(columns["address"]);
        const std::string encoding = field(columns["encoding"]);
        const auto where = parseAddress(address);
        const auto codes = parseCodesWord(encoding);
        if (!where || !codes) throw fileError(Reason::BadKey, fileName, record.line, 0, address + " " + encoding);
        TranslationEntry entry{*where, *codes, 0, field(columns["source"]), field(columns["target"])};
        if (budgetColumn != columns.end()) {
            const std::string budget = field(budgetColumn->second);
            if (!budget.empty() && budget.size() < 10 && std::all_of(budget.begin(), budget.end(), ::isdigit))
                entry.budget = static_cast<std::uint32_t>(std::stoul(budget));
        }
        entries.push_back(std::move(entry));
    }
    return entries;
}

}  // namespace zevran::strings
