// Reading and working the window's lists as a user does, through their models: a cell's
// text, its check box, its tooltip, a selection, an edit. The same calls serve every
// list of the window, whatever model it shows.
#pragma once

#include <QAbstractItemView>
#include <QItemSelectionModel>
#include <QStringList>
#include <initializer_list>

inline QModelIndex cellIndex(const QAbstractItemView* view, int row, int column)
{
    return view->model()->index(row, column);
}

inline int rowCount(const QAbstractItemView* view) { return view->model()->rowCount(); }

inline int columnCount(const QAbstractItemView* view) { return view->model()->columnCount(); }

inline QString cellText(const QAbstractItemView* view, int row, int column)
{
    return cellIndex(view, row, column).data(Qt::DisplayRole).toString();
}

inline QString cellToolTip(const QAbstractItemView* view, int row, int column)
{
    return cellIndex(view, row, column).data(Qt::ToolTipRole).toString();
}

inline QStringList rowTexts(const QAbstractItemView* view, int row)
{
    QStringList cells;
    for (int column = 0; column < columnCount(view); ++column) cells << cellText(view, row, column);
    return cells;
}

inline QString headerText(const QAbstractItemView* view, int column)
{
    return view->model()->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
}

inline bool setHeaderText(QAbstractItemView* view, int column, const QString& text)
{
    return view->model()->setHeaderData(column, Qt::Horizontal, text, Qt::EditRole);
}

// The user typing over a cell.
inline bool setCellText(QAbstractItemView* view, int row, int column, const QString& text)
{
    return view->model()->setData(cellIndex(view, row, column), text, Qt::EditRole);
}

inline Qt::CheckState checkState(const QAbstractItemView* view, int row, int column)
{
    return static_cast<Qt::CheckState>(cellIndex(view, row, column).data(Qt::CheckStateRole).toInt());
}

// The user clicking a row's check box.
inline bool setCheckState(QAbstractItemView* view, int row, int column, Qt::CheckState state)
{
    return view->model()->setData(cellIndex(view, row, column), state, Qt::CheckStateRole);
}

inline Qt::ItemFlags cellFlags(const QAbstractItemView* view, int row, int column)
{
    return view->model()->flags(cellIndex(view, row, column));
}

// Adds a row to the selection, as a Ctrl+click does.
inline void selectRow(QAbstractItemView* view, int row)
{
    view->selectionModel()->select(cellIndex(view, row, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
}

inline void selectRows(QAbstractItemView* view, std::initializer_list<int> rows)
{
    view->clearSelection();
    for (int row : rows) selectRow(view, row);
}

inline bool isRowSelected(const QAbstractItemView* view, int row)
{
    return view->selectionModel()->isRowSelected(row, {});
}

// A plain click on a row: it becomes the current and only selected row.
inline void setCurrentRow(QAbstractItemView* view, int row)
{
    view->selectionModel()->setCurrentIndex(cellIndex(view, row, 0),
                                            QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

inline QRect rowRect(const QAbstractItemView* view, int row) { return view->visualRect(cellIndex(view, row, 0)); }
