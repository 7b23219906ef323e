// Small builders shared by the tab pages: every control gets its given name as its
// object name, so commands and tests find it by that name.
#pragma once

#include <QApplication>
#include <QCheckBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTreeWidget>

namespace zevran::app {

// The pointer shows busy while a command works, and returns on every exit.
class BusyPointer {
public:
    BusyPointer() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~BusyPointer() { QApplication::restoreOverrideCursor(); }
    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;
};

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

inline QProgressBar* hiddenProgress(const char* name, QWidget* parent)
{
    auto* bar = named(new QProgressBar(parent), name);
    bar->setVisible(false);
    return bar;
}

}  // namespace zevran::app
