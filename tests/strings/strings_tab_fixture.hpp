// What the strings tab's window tests share: the phone image they search, the S-record
// framing of a patch, and a fixture that searches, adds replacements and reads the edit
// list and its pop-up menu as a user does.
#pragma once

#include "app/list_cells.hpp"
#include "app/qt_files.hpp"
#include "app/window_fixture.hpp"

#include "app/main_window.hpp"
#include "strings/ui/strings_tab.hpp"

#include <QAction>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QTreeView>
#include <cstdint>
#include <vector>

namespace zevran::test {

inline const QString kZhong = QString::fromUtf8("\xE4\xB8\xAD");  // 中: D6 D0 in GBK, U+4E2D
inline const QString kWen = QString::fromUtf8("\xE6\x96\x87");    // 文: CE C4 in GBK, U+6587

// A 256-byte phone image, zero everywhere but for these stored strings:
//   0x00 "Menu"         never found: the search starts at index 1
//   0x10 "Menu", 0x20 "Menu items", 0x30 "Menu"
//   0x40 "Hi  "         in handset codes: A1 48 A1 69 A1 20 A1 20
//   0x50 "OK!"          in handset codes with a stray byte: A1 4F A1 4B 21, 5 bytes
//   0x60 "中文"          in GBK: D6 D0 CE C4
//   0x70 "中文"          in handset codes: 4E 2D 65 87
//   0xE0 "Tail", and 0xFC "Tail" running to the image's end without a zero
inline QByteArray phoneImage(int size = 0x100)
{
    QByteArray image(0x100, '\0');
    const auto place = [&image](int offset, const QByteArray& bytes) { image.replace(offset, bytes.size(), bytes); };
    place(0x00, "Menu");
    place(0x10, "Menu");
    place(0x20, "Menu items");
    place(0x30, "Menu");
    place(0x40, "\xA1\x48\xA1\x69\xA1\x20\xA1\x20");
    place(0x50, "\xA1\x4F\xA1\x4B\x21");
    place(0x60, "\xD6\xD0\xCE\xC4");
    place(0x70, "\x4E\x2D\x65\x87");
    place(0xE0, "Tail");
    place(0xFC, "Tail");
    return image.left(size);
}

inline std::vector<std::uint8_t> bytesOf(const QByteArray& bytes) { return {bytes.begin(), bytes.end()}; }

inline const QByteArray kS0 = "S00600004844521B\r\n";
inline const QByteArray kS7 = "S705A002000058\r\n";


class StringsTabFixture : public WindowFixture {
protected:
    using StringsTab = strings::StringsTab;

    StringsTab* m_tab = nullptr;

    void startTab()
    {
        startWindow();
        m_tab = m_window->findChild<StringsTab*>();
    }

    void open(const QString& name, const QByteArray& bytes = phoneImage())
    {
        writeBytes(path(name), bytes);
        m_window->openPhoneFile(path(name));
    }

    void search(const QString& text, bool handsetCodes = false)
    {
        m_tab->searchText->setText(text);
        (handsetCodes ? m_tab->searchHandsetCodes : m_tab->searchSingleByteCodes)->setChecked(true);
        m_tab->SeachString->click();
    }

    void add(const QString& replacement)
    {
        m_tab->replacementText->setText(replacement);
        m_tab->Add2List->click();
    }

    // Start, end, length and hit counter as the tab shows them.
    QStringList found() const
    {
        return {m_tab->foundStart->text(), m_tab->foundEnd->text(), m_tab->foundLength->text(),
                m_tab->hitCount->text()};
    }

    QStringList row(int index) const
    {
        if (index >= rowCount(m_tab->editList)) return {"no row", QString::number(index)};
        return rowTexts(m_tab->editList, index);
    }

    QAction* action(const char* name) const
    {
        return m_window->findChild<QMenu*>("menufile4")->findChild<QAction*>(name);
    }

    // Removeone, Removeall, outputStrS3, outputStraxf.
    QList<bool> itemsEnabled() const
    {
        return {action("Removeone")->isEnabled(), action("Removeall")->isEnabled(), action("outputStrS3")->isEnabled(),
                action("outputStraxf")->isEnabled()};
    }

    QAction* saveButton() const { return m_window->findChild<QAction*>("Save"); }
};

}  // namespace zevran::test
