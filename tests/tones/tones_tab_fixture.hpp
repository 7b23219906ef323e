// What the ring-tone tab's window tests share: the phone image with its tones, SMAF
// tones with a CRC, the S-record patch a plan gives, and a fixture that opens the image,
// plans pairs and reads the lists as a user does.
#pragma once

#include "app/list_cells.hpp"
#include "app/qt_files.hpp"
#include "app/window_fixture.hpp"
#include "app/main_window.hpp"
#include "image/srecord.hpp"
#include "tones/tone_check.hpp"
#include "tones/ui/tone_columns.hpp"
#include "tones/ui/tones_tab.hpp"
#include <QTreeView>
#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

namespace zevran::test {


inline const QByteArray kLanguage =
    "[SSTab1]\r\nListview1Header1=Name\r\nListview1Header2=Size\r\nListview4Header4=Size\r\n"
    "[String]\r\nMsgTitle1=Warning\r\nMsgStr1=Empty.\r\nMsgStr3=No phone file.\r\nMsgStr4=Nothing to save.\r\n"
    "MsgStr6=Saved.\r\nMsgStr8=Nothing selected.\r\nMsgStr9=Exported.\r\nMsgStr10=Written.\r\nMsgStr11=Nothing checked.\r\n"
    "MsgStr12=Too large.\r\nMsgStr13=Patched.\r\n"
    "[Filter]\r\nFilter1=S-record (*.s3)|*.s3\r\nFilter4=Tables (*.txt)|*.txt\r\nFilter6=Tones (*.mmf)|*.mmf\r\n"
    "[Zevran]\r\nToneCrcOk=CRC correct\r\nToneCrcBad=CRC wrong\r\nToneCrcNone=no CRC\r\nToneTitle=Title:\r\n";

inline void putBigEndian(QByteArray& bytes, int at, quint32 value)
{
    for (int i = 0; i < 4; ++i) bytes[at + i] = static_cast<char>(value >> (24 - 8 * i));
}

inline void putChunk(QByteArray& out, const QByteArray& id, const QByteArray& body)
{
    out += id;
    QByteArray length(4, '\0');
    putBigEndian(length, 0, static_cast<quint32>(body.size()));
    out += length + body;
}

// A SMAF tone of `size` bytes titled "Spring" (or with the contents chunk body
// `contents`), ending in the CRC of all before it.
inline QByteArray smafTone(int size, const QByteArray& contents = QByteArray::fromHex("0001010000") + "ST:Spring,")
{
    QByteArray body;
    putChunk(body, "CNTI", contents);
    putChunk(body, QByteArray("MTR\x01", 4), QByteArray(size - 8 - body.size() - 8 - 2, '\x5A'));
    body += QByteArray(2, '\0');
    QByteArray tone;
    putChunk(tone, "MMMD", body);
    const auto crc = zevran::tones::smafCrc(
        std::span(reinterpret_cast<const std::uint8_t*>(tone.constData()), static_cast<std::size_t>(tone.size() - 2)));
    tone[tone.size() - 2] = static_cast<char>(crc >> 8);
    tone[tone.size() - 1] = static_cast<char>(crc);
    return tone;
}

// Signatures at 0 (never found), 0x100 (a real tone of 160 bytes), 0x400 (declared
// size 100: too small), 0x500 (101) and 0x1234 (256).
inline QByteArray phoneImage()
{
    QByteArray image(0x2000, '\x11');
    auto signature = [&image](int at, quint32 length) {
        image.replace(at, 4, "MMMD");
        putBigEndian(image, at + 4, length);
    };
    signature(0, 0x100);
    image.replace(0x100, 160, smafTone(160));
    signature(0x400, 92);
    signature(0x500, 93);
    signature(0x1234, 0xF8);
    return image;
}

inline QStringList listTexts(const QAbstractItemView* list)
{
    QStringList rows;
    for (int i = 0; i < rowCount(list); ++i) rows << rowTexts(list, i).join('|');
    return rows;
}

inline QByteArray patchFile(const std::vector<std::pair<std::uint32_t, QByteArray>>& regions)
{
    std::string text(zevran::image::S0Line);
    for (const auto& [first, bytes] : regions)
        text += zevran::image::sRecordRegionText(
            std::span(reinterpret_cast<const std::uint8_t*>(bytes.constData()), static_cast<std::size_t>(bytes.size())),
            first);
    text += zevran::image::S7Line;
    return QByteArray::fromStdString(text);
}

inline QByteArray padded(const QByteArray& bytes, int size) { return bytes + QByteArray(size - bytes.size(), '\0'); }


class TonesTabFixture : public WindowFixture {
protected:
    tones::TonesTab* m_tab = nullptr;

    QAction* action(const char* name) const { return m_window->findChild<QAction*>(name); }
    void showMenu(const char* name) { emit m_window->findChild<QMenu*>(name)->aboutToShow(); }

    void openPhone(const QString& name)
    {
        writeBytes(path(name), phoneImage());
        m_window->openPhoneFile(path(name));
    }

    void select(QAbstractItemView* list, std::initializer_list<int> rows) { selectRows(list, rows); }

    // Files a (120 bytes), b (101) and c (300) in the listed folder, then a plan
    // pairing a with tone 001 and c with tone 003, both checked.
    void planTwoPairs()
    {
        QDir().mkpath(path("tones"));
        writeBytes(path("tones/a.mmf"), QByteArray(120, 'A'));
        writeBytes(path("tones/c.mmf"), QByteArray(300, 'C'));
        m_tab->showToneFiles(path("tones"));
        m_tab->GetTone->click();
        select(m_tab->toneFileList, {0, 1});
        action("addmmf")->trigger();
        select(m_tab->toneList, {0, 2});
        action("addaddress")->trigger();
        for (int i = 0; i < 2; ++i) setCheckState(m_tab->planList, i, 0, Qt::Checked);
    }

    // A window on English texts, with a second language that translates a few tone texts.
    void startTab()
    {
        QDir().mkpath(path("language"));
        writeBytes(path("language/English.ini"), kLanguage);
        writeBytes(path("language/Other.ini"), "[Zevran]\r\nToneCrcBad=Mauvais CRC\r\nTonesFound=%1 sonneries\r\n");
        writeBytes(path("zevran.ini"), "[Language]\r\nLanguage=English.ini\r\n");
        startWindow();
        m_tab = m_window->findChild<tones::TonesTab*>();
    }
};

}  // namespace zevran::test
