#include "tone_table.hpp"

#include "image/table_text.hpp"

namespace zevran::tones {

using image::Del_TAb;

std::string toneTableText(const std::vector<ToneSlot>& rows, std::string_view sizeCaption)
{
    std::string text;
    for (const ToneSlot& row : rows) {
        text += ' ';
        text += row.number;
        text += " : ";
        text += row.start;
        text += " - ";
        text += row.end;
        text += "  ";
        text += sizeCaption;
        text += ": ";
        text += row.size;
        text += " \t";
        text += row.note;
        text += "\r\n";
    }
    return text;
}

ToneTableRead readToneTable(std::string_view text)
{
    ToneTableRead result;
    const auto lines = image::splitTextLines(text);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].empty()) continue;
        const auto fields = image::splitAtSpaces(lines[i]);
        if (fields.size() < 10) {
            result.stoppedAtLine = i + 1;
            break;
        }
        result.rows.push_back(
            {std::string(fields[1]), Del_TAb(fields[3]), Del_TAb(fields[5]), Del_TAb(fields[8]), Del_TAb(fields[9])});
    }
    return result;
}

}  // namespace zevran::tones
