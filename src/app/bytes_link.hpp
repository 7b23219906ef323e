// Ties the "Bytes" tab to the window: its edits enter the image as undo steps through
// the image history, in a "bin" image as in an "asf" one; File > "Write changes as
// patch..." writes every byte that differs from the file as opened; the lists of the
// other tabs report the bytes their rows own and gain "Show bytes" in their pop-up menus.
#pragma once

#include "image_history.hpp"

#include "bytes/ui/bytes_host.hpp"

#include <QObject>

class QAction;
class QMenu;
class QTabWidget;
class QAbstractItemView;

namespace zevran::tones {
class TonesTab;
}
namespace zevran::strings {
class StringsTab;
}
namespace zevran::pictures {
class PicturesTab;
}
namespace zevran::bytes {
class BytesTab;
}

namespace zevran::app {

class BytesLink : public QObject, public bytes::BytesHost {
    Q_OBJECT
public:
    BytesLink(window::TabHost& host, ImageHistory& history, QObject* parent);

    // "Write changes as patch..." at the end of the File menu so far.
    void addFileItem(QMenu* file);
    // The tab, placed last among `tabs`, and "Show bytes" in the pop-up menus of the
    // found tones, the string edit list and the pictures.
    struct Lists {
        tones::TonesTab* tones;
        strings::StringsTab* strings;
        pictures::PicturesTab* pictures;
        QMenu* toneMenu;
        QMenu* editListMenu;
        QMenu* pictureMenu;
    };
    void attach(QTabWidget* tabs, const Lists& lists);
    void applyTexts();

    bytes::BytesTab* tab() const { return m_tab; }

    window::TabHost& tabHost() override { return m_host; }
    bool overwriteBytes(std::int64_t address, std::span<const std::uint8_t> bytes) override;
    const image::OriginalBytes& originals() const override { return m_history.originals(); }
    bool writeChangesAsPatch() override;
    std::vector<image::ByteOwner> ownedRanges() const override;
    void showOwner(const image::ByteOwner& owner) override;

    // "Show bytes" of the selected row of a list: its bytes selected in the view.
    void showRowBytes(image::OwnerKind kind);

private:
    QAbstractItemView* listOf(image::OwnerKind kind) const;
    QWidget* tabOf(image::OwnerKind kind) const;
    std::vector<image::ByteOwner> rangesOf(image::OwnerKind kind) const;
    void addShowBytes(QMenu* menu, image::OwnerKind kind);
    void updateWriteItem();

    window::TabHost& m_host;
    ImageHistory& m_history;
    QTabWidget* m_tabs = nullptr;
    Lists m_lists{};
    bytes::BytesTab* m_tab = nullptr;
    QAction* m_writePatch = nullptr;
    std::vector<QAction*> m_showBytes;
};

}  // namespace zevran::app
