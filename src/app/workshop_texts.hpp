// The workshop's own texts: the keys the classic key set lacks live in the section
// [Zevran] of each language file. They are only ever read, never written back, so a
// language file made for the classic keys keeps working unchanged and gains nothing.
#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace zevran::app {

inline constexpr std::string_view kWorkshopSection = "Zevran";

// The shipped English language file as it was built into the program: the last
// source of a workshop text, when even the program folder's English file lacks it.
extern const std::string_view kBuiltInEnglish;

class WorkshopTexts {
public:
    // Reads the language file at `languagePath` and the shipped English file at
    // `englishPath`; either may be missing. Values are decoded as the classic keys are.
    void load(const std::string& languagePath, const std::string& englishPath, const std::string& codePage);

    // The value of `key` in [Zevran] of the language file; where that is missing or
    // empty, the shipped English file's, then the built-in English one; the key
    // itself when none has it, so a forgotten key shows rather than a blank.
    QString text(std::string_view key) const;
    // The value of `key` in [Zevran] of the language file, else `designText` (UTF-8):
    // a text shown the same in every language unless a file translates it.
    QString fixedText(std::string_view key, std::string_view designText) const;

private:
    std::string m_language;
    bool m_languageUtf8 = true;
    std::string m_english;
    bool m_englishUtf8 = true;
    std::string m_codePage;
};

}  // namespace zevran::app
