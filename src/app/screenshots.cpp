#include "screenshots.hpp"

#include "about_tab.hpp"
#include "main_window.hpp"

#include "image/ui/converter_tab.hpp"
#include "pictures/ui/pictures_tab.hpp"
#include "strings/ui/strings_tab.hpp"
#include "tones/ui/tones_tab.hpp"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTreeView>

namespace zevran::app {

namespace {

void selectRows(QAbstractItemView* list, std::initializer_list<int> rows)
{
    list->clearSelection();
    for (int row : rows)
        if (const QModelIndex first = list->model()->index(row, 0); first.isValid())
            list->selectionModel()->select(first, QItemSelectionModel::Select | QItemSelectionModel::Rows);
}

// Tones found, a few notes, the demo's tone files and a plan pairing two of them.
void stageTones(Form1& window, const QString& demoFolder)
{
    auto* tab = window.findChild<tones::TonesTab*>();
    tab->GetTone_Click();
    tab->toneList->model()->setData(tab->toneList->model()->index(0, 4), "ring1", Qt::EditRole);
    tab->setCurrentFolder(demoFolder + "/tones");
    selectRows(tab->toneFileList, {0, 1});
    tab->addmmf_Click();
    selectRows(tab->toneList, {0, 1});
    tab->addaddress_Click();
    tab->planList->model()->setData(tab->planList->model()->index(0, 0), Qt::Checked, Qt::CheckStateRole);
    selectRows(tab->toneList, {0});
}

// A text found and a replacement planned for it.
void stageStrings(Form1& window)
{
    auto* tab = window.findChild<strings::StringsTab*>();
    tab->searchSingleByteCodes->setChecked(true);
    tab->SearchBegin->setChecked(true);
    tab->searchText->setText("Welcome");
    tab->SeachString_Click();
    tab->replacementText->setText("Hello!");
    tab->Add2List_Click();
}

// The demo's picture table with its animation on show.
void stagePictures(Form1& window, StagedDialogs& dialogs, const QString& demoFolder)
{
    auto* tab = window.findChild<pictures::PicturesTab*>();
    dialogs.files = {demoFolder + "/demo-pictures.txt"};
    tab->OpenPicTable_Click();
    const int last = tab->pictureList->model()->rowCount() - 1;
    if (last < 0) return;
    selectRows(tab->pictureList, {last});
    tab->ListView5_ItemClick(last);
    tab->nextpicture_Click();
    tab->nextpicture_Click();
}

// The converter with the demo placed at the handset's flash address.
void stageConverter(Form1& window, const QString& demoFolder)
{
    auto* tab = window.findChild<image::ConverterTab*>();
    tab->binInputPath->setText(demoFolder + "/demo.bin");
    tab->PartAddressOption->setChecked(true);
    tab->binStartAddress->setText("A0020000");
    tab->binEndAddress->setText("A021FFFF");
}

}  // namespace

bool saveScreenshots(Form1& window, StagedDialogs& dialogs, const QString& folder)
{
    QDir().mkpath(folder);
    const QString demoFolder = QString::fromStdString(window.imageState().FirmwarePath).section('/', 0, -2);
    stageTones(window, demoFolder);
    stageStrings(window);
    stagePictures(window, dialogs, demoFolder);
    stageConverter(window, demoFolder);
    auto* tabs = window.findChild<QTabWidget*>("SSTab1");
    const QList<QAction*> languages = window.findChildren<QAction*>("languagNum");
    bool saved = true;
    const QString phone = QString::fromStdString(window.imageState().FirmwarePath);
    for (int language = 1; language <= languages.size(); ++language) {
        window.languagNum_Click(language);
        // A new language puts the status bar back to its first texts; opening the
        // phone file again shows its name and version in them.
        window.openPhoneFile(phone);
        selectRows(window.findChild<tones::TonesTab*>()->toneList, {});
        selectRows(window.findChild<tones::TonesTab*>()->toneList, {0});
        const QString name = languages[language - 1]->text();
        for (int i = 0; i < tabs->count(); ++i) {
            tabs->setCurrentIndex(i);
            // The about page's credits scrolled up into view.
            if (auto* about = qobject_cast<AboutTab*>(tabs->currentWidget()))
                for (int tick = 0; tick < 120; ++tick) about->Timer1_Timer();
            QApplication::processEvents();
            saved = window.grab().save(QStringLiteral("%1/tab-%2-%3.png").arg(folder).arg(i).arg(name)) && saved;
        }
    }
    return saved;
}

}  // namespace zevran::app
