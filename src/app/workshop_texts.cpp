#include "workshop_texts.hpp"

#include "language.hpp"
#include "settings/profile_file.hpp"

#include "image/file_io.hpp"
#include "window/widget_helpers.hpp"

namespace zevran::app {

namespace {

// The file's bytes, or "" when it cannot be read: a missing file simply has no keys.
std::string fileText(const std::string& path)
{
    try {
        const auto bytes = image::readWholeFile(path);
        return std::string(bytes.begin(), bytes.end());
    } catch (const std::exception&) {
        return {};
    }
}

}  // namespace

void WorkshopTexts::load(const std::string& languagePath, const std::string& englishPath, const std::string& codePage)
{
    m_language = fileText(languagePath);
    m_languageUtf8 = isValidUtf8(m_language);
    m_english = fileText(englishPath);
    m_englishUtf8 = isValidUtf8(m_english);
    m_codePage = codePage;
}

QString WorkshopTexts::text(std::string_view key) const
{
    struct Source {
        const std::string_view text;
        bool utf8;
    };
    for (const Source& source :
         {Source{m_language, m_languageUtf8}, Source{m_english, m_englishUtf8}, Source{kBuiltInEnglish, true}}) {
        const auto value = readProfileValue(source.text, kWorkshopSection, key);
        if (value && !value->empty()) return decodeLanguageValue(*value, source.utf8, m_codePage);
    }
    return window::fromUtf8(key);
}

QString WorkshopTexts::fixedText(std::string_view key, std::string_view designText) const
{
    const auto value = readProfileValue(m_language, kWorkshopSection, key);
    if (value && !value->empty()) return decodeLanguageValue(*value, m_languageUtf8, m_codePage);
    return window::fromUtf8(designText);
}

}  // namespace zevran::app
