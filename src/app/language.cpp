#include "language.hpp"

#include "image/file_io.hpp"
#include "settings/profile_file.hpp"
#include "strings/code_page.hpp"

#include <QAbstractButton>
#include <QAction>
#include <QGroupBox>
#include <QLabel>
#include <QMenu>
#include <QStatusBar>
#include <QTabWidget>
#include <QTreeWidget>

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
    const char* section;
    std::string key;
    std::function<void(const QString&)> apply;
};

std::vector<Entry> languageEntries(QWidget* window, image::InterfaceTexts& texts)
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
    auto header = [window](const char* list, int column) {
        return [window, list, column](const QString& text) {
            if (auto* view = window->findChild<QTreeWidget*>(list)) view->headerItem()->setText(column, text);
        };
    };
    auto panel = [window](int number) {
        return [window, number](const QString& text) {
            if (auto* label = window->findChild<QLabel*>(QString("StatusBar1Panel%1").arg(number))) label->setText(text);
        };
    };
    auto keep = [](QString& slot) { return [&slot](const QString& text) { slot = text; }; };

    std::vector<Entry> entries{
        {"Menu", "menufile", caption("file")},       {"Menu", "menuopen", caption("menuopen")},
        {"Menu", "menulanguage", caption("menulanguage")}, {"Menu", "menuexit", caption("menuexit")},
        {"Menu", "menuhelp", caption("menuhelp")},   {"Menu", "help", caption("help")},
        {"Menu", "homepage", caption("homepage")},
    };
    for (const char* item : {"outputselect", "outputall", "addaddress", "addmmf", "moveone", "moveall", "movemmf",
                             "moveallmmf", "moveaddress", "movealladdress", "outputs3", "outputaxf", "Removeone",
                             "Removeall", "outputStrS3", "outputStraxf", "outputpic", "outputpicall", "outputpics3"})
        entries.push_back({"Popup Menu", item, caption(item)});
    entries.push_back({"StatusBar", "StatusBar1", panel(1)});
    entries.push_back({"StatusBar", "StatusBar2", panel(3)});
    entries.push_back({"StatusBar", "StatusBar3", panel(5)});

    entries.push_back({"SSTab1", "Tab1Name", tab(0)});
    for (const char* frame : {"Frame5", "Frame7", "Frame8"}) entries.push_back({"SSTab1", std::string(frame) + "Name", caption(frame)});
    for (const char* button : {"GetTone", "SaveToneTable", "OpenToneTable"}) entries.push_back({"SSTab1", button, caption(button)});
    for (int c = 0; c < 2; ++c) entries.push_back({"SSTab1", "Listview1Header" + std::to_string(c + 1), header("ListView1", c)});
    for (int c = 0; c < 3; ++c) entries.push_back({"SSTab1", "Listview3Header" + std::to_string(c + 1), header("ListView3", c)});
    for (int c = 0; c < 5; ++c) entries.push_back({"SSTab1", "Listview4Header" + std::to_string(c + 1), header("ListView4", c)});

    entries.push_back({"SSTab2", "Tab2Name", tab(1)});
    for (const char* frame : {"Frame10", "Frame11", "Frame13"}) entries.push_back({"SSTab2", std::string(frame) + "Name", caption(frame)});
    // The table buttons are labelled a second time from the tone section, as always.
    for (const char* button : {"SaveToneTable", "OpenToneTable"}) entries.push_back({"SSTab1", button, caption(button)});
    for (int c = 0; c < 5; ++c) entries.push_back({"SSTab2", "Listview2Header" + std::to_string(c + 1), header("ListView2", c)});
    for (const char* name : {"SeachString", "Add2List", "Option1", "Option2", "Option3", "Option4", "SearchBegin", "Label4",
                             "Label8", "Label9", "Label10", "Label11", "Label12", "Label13", "Label14"})
        entries.push_back({"SSTab2", name, caption(name)});

    entries.push_back({"SSTab3", "Tab3Name", tab(2)});
    entries.push_back({"SSTab3", "Frame16Name", caption("Frame16")});
    for (const char* name : {"OpenPicTable", "SavePicTable", "RepeatPlay"}) entries.push_back({"SSTab3", name, caption(name)});
    for (int c = 0; c < 7; ++c) entries.push_back({"SSTab3", "Listview5Header" + std::to_string(c + 1), header("ListView5", c)});
    for (const char* name : {"Label28", "Label30", "Check1", "Label25"}) entries.push_back({"SSTab3", name, caption(name)});

    entries.push_back({"SSTab4", "Tab4Name", tab(3)});
    for (const char* frame : {"Frame18", "Frame19"}) entries.push_back({"SSTab4", std::string(frame) + "Name", caption(frame)});
    entries.push_back({"SSTab4", "OpenS3File", caption("OpenS3File")});
    entries.push_back({"SSTab4", "ComS3ToBin", keep(texts.ComS3ToBin)});
    for (const char* name : {"OpenBinFile", "AllAdd", "PartAdd", "Label2", "Label35", "Label36", "Label37",
                             "AllAddressOption", "FillDataOption", "PartAddressOption"})
        entries.push_back({"SSTab4", name, caption(name)});

    entries.push_back({"SSTab5", "Tab5Name", tab(4)});
    entries.push_back({"SSTab5", "Label15", caption("Label15")});

    entries.push_back({"String", "StatusBar1Str1", panel(4)});
    entries.push_back({"String", "StatusBar1Str2", panel(6)});
    entries.push_back({"String", "StatusBar1Str3", keep(texts.StatusBar1Str3)});
    entries.push_back({"String", "HelpStr", keep(texts.HelpStr)});
    for (int n : {1, 2, 3, 5, 6, 7}) entries.push_back({"String", "MsgTitle" + std::to_string(n), keep(texts.MsgTitle[static_cast<std::size_t>(n)])});
    // No key is read for message 38: it shows an empty text.
    for (int n = 1; n <= 39; ++n)
        if (n != 14 && n != 38)
            entries.push_back({"String", "MsgStr" + std::to_string(n), keep(texts.MsgStr[static_cast<std::size_t>(n)])});
    for (int n = 1; n <= 7; ++n) entries.push_back({"Filter", "Filter" + std::to_string(n), keep(texts.Filter[static_cast<std::size_t>(n)])});
    return entries;
}

}  // namespace

bool isValidUtf8(std::string_view bytes)
{
    std::size_t i = 0;
    if (bytes.rfind("\xEF\xBB\xBF", 0) == 0) i = 3;
    while (i < bytes.size()) {
        const auto lead = static_cast<unsigned char>(bytes[i]);
        const int extra = lead < 0x80 ? 0 : lead >= 0xC2 && lead < 0xE0 ? 1 : lead >= 0xE0 && lead < 0xF0 ? 2
                                                                      : lead >= 0xF0 && lead < 0xF5 ? 3 : -1;
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

void ApplyLanguage(QWidget* window, const std::string& path, image::InterfaceTexts& texts, const std::string& codePage,
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
