#include "language.hpp"

#include "image/file_io.hpp"
#include "image/ui/converter_tab.hpp"
#include "pictures/ui/pictures_tab.hpp"
#include "strings/ui/strings_tab.hpp"
#include "tones/ui/tones_tab.hpp"
#include "settings/profile_file.hpp"
#include "strings/code_page.hpp"

#include <QAbstractButton>
#include <QAction>
#include <QGroupBox>
#include <QLabel>
#include <QMenu>
#include <QStatusBar>
#include <QTabWidget>
#include <QAbstractItemView>

#include <array>
#include <functional>
#include <vector>

namespace zevran::app {

namespace {

void setCaption(QObject* target, const QString& text)
{
    if (auto* button = qobject_cast<QAbstractButton*>(target)) button->setText(text);
    else if (auto* group = qobject_cast<QGroupBox*>(target)) group->setTitle(text);
    else if (auto* label = qobject_cast<QLabel*>(target)) label->setText(text);
    else if (auto* menu = qobject_cast<QMenu*>(target)) menu->setTitle(text);
    else if (auto* action = qobject_cast<QAction*>(target)) action->setText(text);
}

struct Entry {
    std::string section;
    std::string key;
    std::function<void(const QString&)> apply;
};

// What a tab's key labels: a control or a list's header column of the tab, or a text kept for later.
std::function<void(const QString&)> labelOf(QWidget* window, const char* tabName, const window::CaptionKey& key,
                                            window::InterfaceTexts& texts)
{
    if (key.kept) return [&texts, kept = key.kept](const QString& text) { texts.*kept = text; };
    return [window, tabName, name = key.objectName, column = key.column](const QString& text) {
        auto* tab = window->findChild<QWidget*>(tabName);
        if (!tab) return;
        if (column >= 0) {
            if (auto* view = tab->findChild<QAbstractItemView*>(name))
                view->model()->setHeaderData(column, Qt::Horizontal, text, Qt::EditRole);
            return;
        }
        for (QObject* target : tab->findChildren<QObject*>(name)) setCaption(target, text);
    };
}

std::vector<Entry> languageEntries(QWidget* window, window::InterfaceTexts& texts)
{
    auto caption = [window](const char* name) {
        return [window, name](const QString& text) {
            for (QObject* target : window->findChildren<QObject*>(name)) setCaption(target, text);
        };
    };
    auto tab = [window](int index) {
        return [window, index](const QString& text) {
            if (auto* tabs = window->findChild<QTabWidget*>("SSTab1")) tabs->setTabText(index, text);
        };
    };
    auto panel = [window](int number) {
        return [window, number](const QString& text) {
            if (auto* label = window->findChild<QLabel*>(QString("StatusBar1Panel%1").arg(number)))
                label->setText(text);
        };
    };
    auto keep = [](QString& slot) { return [&slot](const QString& text) { slot = text; }; };

    std::vector<Entry> entries{
        {"Menu", "menufile", caption("file")},
        {"Menu", "menuopen", caption("menuopen")},
        {"Menu", "menulanguage", caption("menulanguage")},
        {"Menu", "menuexit", caption("menuexit")},
        {"Menu", "menuhelp", caption("menuhelp")},
        {"Menu", "help", caption("help")},
        {"Menu", "homepage", caption("homepage")},
    };
    for (const char* item : {"outputselect", "outputall", "addaddress", "addmmf", "moveone", "moveall", "movemmf",
                             "moveallmmf", "moveaddress", "movealladdress", "outputs3", "outputaxf", "Removeone",
                             "Removeall", "outputStrS3", "outputStraxf", "outputpic", "outputpicall", "outputpics3"})
        entries.push_back({"Popup Menu", item, caption(item)});
    entries.push_back({"StatusBar", "StatusBar1", panel(1)});
    entries.push_back({"StatusBar", "StatusBar2", panel(3)});
    entries.push_back({"StatusBar", "StatusBar3", panel(5)});

    // Each tab labels its own controls, after its name on the tab bar.
    const std::array<std::pair<const char*, std::vector<window::CaptionKey>>, 4> tabs{{
        {"TonesTab", tones::TonesTab::captionKeys()},
        {"StringsTab", strings::StringsTab::captionKeys()},
        {"PicturesTab", pictures::PicturesTab::captionKeys()},
        {"ConverterTab", image::ConverterTab::captionKeys()},
    }};
    for (int index = 0; index < 4; ++index) {
        const auto& [tabName, keys] = tabs[static_cast<std::size_t>(index)];
        entries.push_back(
            {"SSTab" + std::to_string(index + 1), "Tab" + std::to_string(index + 1) + "Name", tab(index)});
        for (const window::CaptionKey& key : keys)
            entries.push_back({key.section, key.key, labelOf(window, tabName, key, texts)});
    }
    entries.push_back({"SSTab5", "Tab5Name", tab(4)});
    entries.push_back({"SSTab5", "Label15", caption("Label15")});

    entries.push_back({"String", "StatusBar1Str1", panel(4)});
    entries.push_back({"String", "StatusBar1Str2", panel(6)});
    entries.push_back({"String", "StatusBar1Str3", keep(texts.StatusBar1Str3)});
    entries.push_back({"String", "HelpStr", keep(texts.HelpStr)});
    for (int n : {1, 2, 3, 5, 6, 7})
        entries.push_back(
            {"String", "MsgTitle" + std::to_string(n), keep(texts.MsgTitle[static_cast<std::size_t>(n)])});
    // No key is read for message 38: it shows an empty text.
    for (int n = 1; n <= 39; ++n)
        if (n != 14 && n != 38)
            entries.push_back(
                {"String", "MsgStr" + std::to_string(n), keep(texts.MsgStr[static_cast<std::size_t>(n)])});
    for (int n = 1; n <= 7; ++n)
        entries.push_back({"Filter", "Filter" + std::to_string(n), keep(texts.Filter[static_cast<std::size_t>(n)])});
    return entries;
}

}  // namespace

bool isValidUtf8(std::string_view bytes)
{
    std::size_t i = 0;
    if (bytes.rfind("\xEF\xBB\xBF", 0) == 0) i = 3;
    while (i < bytes.size()) {
        const auto lead = static_cast<unsigned char>(bytes[i]);
        const int extra = lead < 0x80                   ? 0
                          : lead >= 0xC2 && lead < 0xE0 ? 1
                          : lead >= 0xE0 && lead < 0xF0 ? 2
                          : lead >= 0xF0 && lead < 0xF5 ? 3
                                                        : -1;
        if (extra < 0 || bytes.size() - i <= static_cast<std::size_t>(extra)) return false;
        for (int k = 1; k <= extra; ++k)
            if ((static_cast<unsigned char>(bytes[i + static_cast<std::size_t>(k)]) & 0xC0) != 0x80) return false;
        i += static_cast<std::size_t>(extra) + 1;
    }
    return true;
}

QString decodeLanguageValue(const std::string& value, bool utf8File, const std::string& codePage)
{
    if (utf8File) return QString::fromUtf8(value.data(), static_cast<qsizetype>(value.size()));
    try {
        const std::string text = strings::decodeText(value, codePage);
        return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    } catch (const strings::CodePageError&) {
        return QString::fromLatin1(value.data(), static_cast<qsizetype>(value.size()));
    }
}

void ApplyLanguage(QWidget* window, const std::string& path, window::InterfaceTexts& texts, const std::string& codePage,
                   bool writeBack)
{
    bool utf8File = true;
    try {
        const auto bytes = image::readWholeFile(path);
        utf8File = isValidUtf8(std::string(bytes.begin(), bytes.end()));
    } catch (const image::FileError&) {
        // A missing file is created by the reads below, empty keys and all.
    }
    const ProfileFile language(path);
    for (const Entry& entry : languageEntries(window, texts)) {
        const std::string value = writeBack ? language.ReadSetting(entry.section, entry.key, "")
                                            : language.read(entry.section, entry.key).value_or("");
        entry.apply(decodeLanguageValue(value, utf8File, codePage));
    }
}

}  // namespace zevran::app
