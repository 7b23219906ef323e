// A list of the window as a table model over the typed rows of a logic folder. The rows
// are the truth: a command reads them from the model, never from a view's text. Each
// column says how its cell reads from a row and, where the user may change it, how the
// change goes back into the row (text, or a check box).
#pragma once

#include <QAbstractTableModel>
#include <QString>
#include <QVariant>
#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

namespace zevran::window {

template <typename Row>
struct RowColumn {
    std::function<QString(const Row&)> text;
    std::function<void(Row&, const QString&)> edit = {};  // empty: the cell is read-only
    std::function<bool(const Row&)> checked = {};         // empty: the cell has no check box
    std::function<void(Row&, bool)> setChecked = {};
    bool toolTip = false;  // the cell shows its whole text under the pointer, for cells cut by their column
    std::function<bool(const Row&)> enabled = {};  // empty: always; a disabled cell is greyed and cannot be checked
    Qt::Alignment alignment = {};                  // empty: the view's own
};

template <typename Row>
class RowTableModel : public QAbstractTableModel {
public:
    RowTableModel(std::vector<RowColumn<Row>> columns, QObject* parent)
        : QAbstractTableModel(parent), m_columns(std::move(columns)), m_headers(m_columns.size())
    {
    }

    int rowCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
    }
    int columnCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(m_columns.size());
    }

    QVariant data(const QModelIndex& index, int role) const override
    {
        if (!holds(index)) return {};
        const Row& row = m_rows[static_cast<std::size_t>(index.row())];
        const RowColumn<Row>& column = m_columns[static_cast<std::size_t>(index.column())];
        switch (role) {
        case Qt::DisplayRole:
        case Qt::EditRole: return column.text(row);
        case Qt::ToolTipRole: return column.toolTip ? QVariant(column.text(row)) : QVariant();
        case Qt::TextAlignmentRole: return column.alignment ? QVariant(column.alignment) : QVariant();
        case Qt::CheckStateRole:
            if (!column.checked) return {};
            return column.checked(row) ? Qt::Checked : Qt::Unchecked;
        default: return {};
        }
    }

    bool setData(const QModelIndex& index, const QVariant& value, int role) override
    {
        if (!(flags(index) & Qt::ItemIsEnabled)) return false;
        Row& row = m_rows[static_cast<std::size_t>(index.row())];
        const RowColumn<Row>& column = m_columns[static_cast<std::size_t>(index.column())];
        if (role == Qt::EditRole && column.edit) {
            column.edit(row, value.toString());
        } else if (role == Qt::CheckStateRole && column.setChecked) {
            column.setChecked(row, value.toInt() == Qt::Checked);
        } else {
            return false;
        }
        emit dataChanged(index, index, {role, Qt::DisplayRole});
        return true;
    }

    Qt::ItemFlags flags(const QModelIndex& index) const override
    {
        if (!holds(index)) return Qt::NoItemFlags;
        const RowColumn<Row>& column = m_columns[static_cast<std::size_t>(index.column())];
        if (column.enabled && !column.enabled(m_rows[static_cast<std::size_t>(index.row())])) return Qt::NoItemFlags;
        Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
        if (column.edit) flags |= Qt::ItemIsEditable;
        if (column.setChecked) flags |= Qt::ItemIsUserCheckable;
        return flags;
    }

    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= columnCount())
            return {};
        return m_headers[static_cast<std::size_t>(section)];
    }

    // Captions come from the language file after the list is built, and follow every change of language.
    bool setHeaderData(int section, Qt::Orientation orientation, const QVariant& value, int role) override
    {
        if (orientation != Qt::Horizontal || role != Qt::EditRole || section < 0 || section >= columnCount())
            return false;
        m_headers[static_cast<std::size_t>(section)] = value.toString();
        emit headerDataChanged(orientation, section, section);
        return true;
    }

    void setHeaders(const QStringList& headers)
    {
        for (int section = 0; section < std::min(columnCount(), static_cast<int>(headers.size())); ++section)
            setHeaderData(section, Qt::Horizontal, headers[section], Qt::EditRole);
    }

    // Rows sort by their cells' text, as a report list of the design sorts.
    void sort(int column, Qt::SortOrder order) override
    {
        if (column < 0 || column >= columnCount()) return;
        const auto& text = m_columns[static_cast<std::size_t>(column)].text;
        emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
        std::stable_sort(m_rows.begin(), m_rows.end(), [&](const Row& left, const Row& right) {
            const int order3 = text(left).compare(text(right));
            return order == Qt::AscendingOrder ? order3 < 0 : order3 > 0;
        });
        emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
    }

    const std::vector<Row>& rows() const { return m_rows; }
    const Row& row(int index) const { return m_rows.at(static_cast<std::size_t>(index)); }

    void setRows(std::vector<Row> rows)
    {
        beginResetModel();
        m_rows = std::move(rows);
        endResetModel();
    }

    void append(Row row)
    {
        const int at = rowCount();
        beginInsertRows({}, at, at);
        m_rows.push_back(std::move(row));
        endInsertRows();
    }

    void replaceRow(int index, Row row)
    {
        m_rows.at(static_cast<std::size_t>(index)) = std::move(row);
        emit dataChanged(this->index(index, 0), this->index(index, columnCount() - 1));
    }

    void removeRow(int index)
    {
        if (index < 0 || index >= rowCount()) return;
        beginRemoveRows({}, index, index);
        m_rows.erase(m_rows.begin() + index);
        endRemoveRows();
    }

    void clear() { setRows({}); }

    // Changes every row at once, as "check all" does, telling the views once.
    template <typename Change>
    void changeEveryRow(Change change)
    {
        for (Row& row : m_rows) change(row);
        if (!m_rows.empty()) emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
    }

private:
    bool holds(const QModelIndex& index) const
    {
        return index.isValid() && index.row() < rowCount() && index.column() < columnCount();
    }

    std::vector<RowColumn<Row>> m_columns;
    std::vector<QString> m_headers;
    std::vector<Row> m_rows;
};

}  // namespace zevran::window
