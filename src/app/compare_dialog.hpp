// The regions where a second image differs from the open one, listed with check boxes:
// first and last address, size, and the first bytes of each side in hex. The checked
// regions, holding the second image's bytes, are what the window then writes out.
#pragma once

#include "window/row_table_model.hpp"
#include "image/image_diff.hpp"

#include <QDialog>
#include <QString>
#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

class QLabel;
class QPushButton;
class QSpinBox;
class QTreeView;

namespace zevran::app {

// A region of the list: where the images differ, the bytes of each as shown, whether the
// open image can take it and whether it is checked for writing.
struct CompareRow {
    image::DiffRange range;
    QString olderBytes;
    QString newerBytes;
    bool writable = true;
    bool checked = true;
};

struct CompareTexts {
    QString title;                   // the dialog's title; %1 is the second file's name
    std::array<QString, 5> headers;  // first, last, size, old bytes, new bytes
    QString gap;                     // the caption of the gap box
    QString checkAll;
    QString checkNone;
    QString write;
    QString cancel;
    QString summary;  // %1 regions, %2 bytes
};

class CompareDialog : public QDialog {
    Q_OBJECT
public:
    // `older` is the open image and must outlive the dialog. A region reaching at or
    // past `writableLength` (the length of an image that cannot grow) is shown but
    // cannot be checked. Throws image::ShorterImage when `newer` is the shorter.
    CompareDialog(const CompareTexts& texts, const QString& newerName, std::span<const std::uint8_t> older,
                  std::vector<std::uint8_t> newer, std::optional<std::size_t> writableLength,
                  QWidget* parent = nullptr);

    std::vector<image::DiffRange> ranges() const;
    std::vector<image::DiffRange> checkedRanges() const;
    // The checked regions with the second image's bytes, in address order.
    std::vector<image::Region> checkedRegions() const;

    void setGap(int gap);
    void checkAll(bool checked);

private:
    void compare();
    void fillList(const std::vector<image::DiffRange>& ranges);
    void updateSummary();

    CompareTexts m_texts;
    std::span<const std::uint8_t> m_older;
    std::vector<std::uint8_t> m_newer;
    std::optional<std::size_t> m_writableLength;
    QSpinBox* m_gap = nullptr;
    window::RowTableModel<CompareRow>* m_rows = nullptr;
    QTreeView* m_list = nullptr;
    QLabel* m_summary = nullptr;
    QPushButton* m_write = nullptr;
};

}  // namespace zevran::app
