// The table model every list of the window shows: cells read from typed rows, edits and
// check boxes written back into them, captions, sorting by text, disabled rows.
#include "window/row_table_model.hpp"

#include <QSignalSpy>
#include <QTest>

using zevran::window::RowColumn;
using zevran::window::RowTableModel;

namespace {

struct Slot {
    QString name;
    QString size;
    bool checked = false;
    bool usable = true;
};

RowTableModel<Slot>* slotModel(QObject* parent)
{
    RowColumn<Slot> name;
    name.text = [](const Slot& row) { return row.name; };
    name.edit = [](Slot& row, const QString& text) { row.name = text; };
    name.checked = [](const Slot& row) { return row.checked; };
    name.setChecked = [](Slot& row, bool checked) { row.checked = checked; };
    name.enabled = [](const Slot& row) { return row.usable; };
    name.toolTip = true;
    RowColumn<Slot> size;
    size.text = [](const Slot& row) { return row.size; };
    size.alignment = Qt::AlignRight;
    return new RowTableModel<Slot>({name, size}, parent);
}

}  // namespace

class RowTableModelTest : public QObject {
    Q_OBJECT

private slots:
    void cellsReadTheRowsAndEditsWriteThem()
    {
        QObject owner;
        RowTableModel<Slot>* model = slotModel(&owner);
        model->setRows({{"ring", "120"}, {"alarm", "99"}});
        QCOMPARE(model->rowCount(), 2);
        QCOMPARE(model->columnCount(), 2);
        QCOMPARE(model->index(1, 0).data().toString(), QString("alarm"));
        QCOMPARE(model->index(0, 0).data(Qt::ToolTipRole).toString(), QString("ring"));
        QVERIFY(!model->index(0, 1).data(Qt::ToolTipRole).isValid());
        QCOMPARE(model->index(0, 1).data(Qt::TextAlignmentRole).toInt(), int(Qt::AlignRight));
        QSignalSpy changed(model, &QAbstractItemModel::dataChanged);
        QVERIFY(model->setData(model->index(0, 0), "bell", Qt::EditRole));
        QVERIFY(model->setData(model->index(0, 0), Qt::Checked, Qt::CheckStateRole));
        QCOMPARE(changed.count(), 2);
        QCOMPARE(model->row(0).name, QString("bell"));
        QVERIFY(model->row(0).checked);
        // The size column has no setter: it stays as the row gave it.
        QVERIFY(!model->setData(model->index(0, 1), "7", Qt::EditRole));
        QCOMPARE(model->row(0).size, QString("120"));
        QVERIFY(model->flags(model->index(0, 0)) & Qt::ItemIsUserCheckable);
        QVERIFY(!(model->flags(model->index(0, 1)) & Qt::ItemIsEditable));
    }

    void disabledRowTakesNoCheckAndNoEdit()
    {
        QObject owner;
        RowTableModel<Slot>* model = slotModel(&owner);
        model->setRows({{"past the end", "4", false, false}});
        QCOMPARE(model->flags(model->index(0, 0)), Qt::NoItemFlags);
        QVERIFY(!model->setData(model->index(0, 0), Qt::Checked, Qt::CheckStateRole));
        QVERIFY(!model->setData(model->index(0, 0), "x", Qt::EditRole));
        QCOMPARE(model->row(0).name, QString("past the end"));
        QVERIFY(!model->row(0).checked);
    }

    void captionsAreSetAndSortingIsByText()
    {
        QObject owner;
        RowTableModel<Slot>* model = slotModel(&owner);
        model->setHeaders({"Name", "Size"});
        QVERIFY(model->setHeaderData(1, Qt::Horizontal, "Taille", Qt::EditRole));
        QCOMPARE(model->headerData(0, Qt::Horizontal, Qt::DisplayRole).toString(), QString("Name"));
        QCOMPARE(model->headerData(1, Qt::Horizontal, Qt::DisplayRole).toString(), QString("Taille"));
        QVERIFY(!model->setHeaderData(2, Qt::Horizontal, "None", Qt::EditRole));
        model->setRows({{"b", "1000"}, {"a", "99"}, {"c", "300"}});
        model->sort(1, Qt::AscendingOrder);
        // As text, "1000" comes before "300" and "99".
        QCOMPARE(model->row(0).size, QString("1000"));
        QCOMPARE(model->row(2).size, QString("99"));
        model->sort(0, Qt::DescendingOrder);
        QCOMPARE(model->row(0).name, QString("c"));
    }

    void rowsAreAddedReplacedRemovedAndChangedTogether()
    {
        QObject owner;
        RowTableModel<Slot>* model = slotModel(&owner);
        model->append({"a", "1"});
        model->append({"b", "2"});
        model->replaceRow(0, {"z", "26"});
        model->removeRow(1);
        model->removeRow(5);
        QCOMPARE(model->rowCount(), 1);
        QCOMPARE(model->index(0, 0).data().toString(), QString("z"));
        model->changeEveryRow([](Slot& row) { row.checked = true; });
        QCOMPARE(model->index(0, 0).data(Qt::CheckStateRole).toInt(), int(Qt::Checked));
        model->clear();
        QCOMPARE(model->rowCount(), 0);
    }
};

QTEST_MAIN(RowTableModelTest)
#include "row_table_model_test.moc"
