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
#include <QTreeWidget>
#include <string>
#include <string_view>

namespace zevran::image {

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

// A report list: one row an item, no tree decoration, headers as given.
inline QTreeWidget* reportList(const char* name, const QStringList& headers, QWidget* parent)
{
    auto* list = named(new QTreeWidget(parent), name);
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true);
    list->setAlternatingRowColors(true);
    list->setColumnCount(static_cast<int>(headers.size()));
    list->setHeaderLabels(headers);
    list->setContextMenuPolicy(Qt::CustomContextMenu);
    list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list->header()->setStretchLastSection(true);
    return list;
}

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
inline QString fromUtf8(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }

inline QProgressBar* hiddenProgress(const char* name, QWidget* parent)
{
    auto* bar = named(new QProgressBar(parent), name);
    bar->setVisible(false);
    return bar;
}

}  // namespace zevran::image
