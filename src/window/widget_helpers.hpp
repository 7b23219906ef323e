// Small builders shared by the window and its tab pages: every control gets its given
// name as its object name, so the language file and tests find it by that name.
#pragma once

#include <QApplication>
#include <QCheckBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>
#include <QStyleOptionFrame>
#include <QTreeView>
#include <algorithm>
#include <initializer_list>
#include <vector>
#include <string>
#include <string_view>

namespace zevran::window {

template <typename Widget>
Widget* named(Widget* widget, const char* name, const QString& text = QString())
{
    widget->setObjectName(name);
    if constexpr (std::is_base_of_v<QAbstractButton, Widget> || std::is_same_v<QLabel, Widget> ||
                  std::is_same_v<QLineEdit, Widget>)
        if (!text.isEmpty()) widget->setText(text);
    if constexpr (std::is_same_v<QGroupBox, Widget>) widget->setTitle(text);
    return widget;
}

// A report list over a model: one row a line, no tree decoration; the model's
// header texts are the captions.
inline QTreeView* reportView(const char* name, QAbstractItemModel* model, QWidget* parent)
{
    auto* view = named(new QTreeView(parent), name);
    view->setModel(model);
    view->setRootIsDecorated(false);
    view->setItemsExpandable(false);
    view->setUniformRowHeights(true);
    view->setAlternatingRowColors(true);
    view->setContextMenuPolicy(Qt::CustomContextMenu);
    view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    view->setSelectionBehavior(QAbstractItemView::SelectRows);
    view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view->header()->setStretchLastSection(true);
    return view;
}

// The rows of a report view the user has selected, in list order.
inline std::vector<int> selectedRows(const QAbstractItemView* view)
{
    std::vector<int> rows;
    for (const QModelIndex& index : view->selectionModel()->selectedRows()) rows.push_back(index.row());
    std::sort(rows.begin(), rows.end());
    return rows;
}

// The width a text box needs to show `sample` whole in its font, frame and margins included.
inline int widthForText(const QLineEdit* box, const QString& sample)
{
    QStyleOptionFrame option;
    option.initFrom(box);
    option.lineWidth = box->hasFrame() ? box->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, box) : 0;
    const QMargins margins = box->textMargins();
    // QLineEdit keeps 2 pixels of its own on each side of the text, and one for the cursor.
    const QSize text(box->fontMetrics().horizontalAdvance(sample) + margins.left() + margins.right() + 5,
                     box->fontMetrics().height());
    return box->style()->sizeFromContents(QStyle::CT_LineEdit, &option, text, box).width();
}

// A text box never narrower than its widest expected content, so no layout cuts it.
inline void fitToText(QLineEdit* box, const QString& widest) { box->setMinimumWidth(widthForText(box, widest)); }

// A command added to a tab's pop-up menu. Its caption comes from the language file
// under `name` (section [Popup Menu]); until then it reads as its name.
inline QAction* menuAction(QMenu* menu, const char* name)
{
    QAction* action = menu->addAction(QString::fromLatin1(name));
    action->setObjectName(name);
    return action;
}

inline void menuSeparator(QMenu* menu, const char* name) { menu->addSeparator()->setObjectName(name); }

// The pointer shows busy while a command works, and returns on every exit.
class BusyPointer {
public:
    BusyPointer() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~BusyPointer() { QApplication::restoreOverrideCursor(); }
    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;
};

// The logic speaks UTF-8 in std::string; the window speaks QString.
inline QString fromUtf8(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

inline QProgressBar* hiddenProgress(const char* name, QWidget* parent)
{
    auto* bar = named(new QProgressBar(parent), name);
    bar->setVisible(false);
    return bar;
}

}  // namespace zevran::window
