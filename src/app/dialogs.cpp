#include "dialogs.hpp"

#include "settings/save_name.hpp"

#include <QFileDialog>
#include <QMessageBox>
#include <QStringList>

namespace zevran::app {

QString qtFilterFromClassic(const QString& classic)
{
    const QStringList parts = classic.split('|');
    QStringList filters;
    for (int i = 0; i + 1 < parts.size(); i += 2) {
        QString description = parts[i];
        QStringList patterns = parts[i + 1].split(';', Qt::SkipEmptyParts);
        for (QString& pattern : patterns) {
            pattern = pattern.trimmed();
            if (pattern == "*.*") pattern = "*";
        }
        // The description already shows its patterns in the classic form; Qt reads the
        // patterns from the last parentheses, so they are given there in its own form.
        description.replace("*.*", "*");
        const qsizetype open = description.lastIndexOf('(');
        if (open >= 0) description = description.left(open).trimmed();
        filters << description + " (" + patterns.join(' ') + ")";
    }
    return filters.join(";;");
}

QString nthFilter(const QString& qtFilter, int index)
{
    const QStringList filters = qtFilter.split(";;", Qt::SkipEmptyParts);
    return index >= 1 && index <= filters.size() ? filters[index - 1] : QString();
}

namespace {

// The patterns of one filter in Qt's form: Qt reads them from its last parentheses.
std::string patternsOf(const QString& filter)
{
    const qsizetype open = filter.lastIndexOf('(');
    const qsizetype close = filter.lastIndexOf(')');
    return (open >= 0 && close > open ? filter.mid(open + 1, close - open - 1) : filter).toStdString();
}

}  // namespace

QString withFilterExtension(const QString& name, const QString& chosenFilter)
{
    return QString::fromStdString(withFilterExtension(name.toStdString(), patternsOf(chosenFilter)));
}

QString QtDialogs::openFile(const QString& folder, const QString& filter, int filterIndex)
{
    QString selected = nthFilter(filter, filterIndex);
    return QFileDialog::getOpenFileName(m_parent, QString(), folder, filter, &selected);
}

QString QtDialogs::saveFile(const QString& folder, const QString& filter, int filterIndex)
{
    QFileDialog dialog(m_parent, QString(), folder, filter);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    // The dialog itself adds the chosen filter's extension where it can, so that it
    // asks before replacing the file of the completed name.
    auto useFilter = [&dialog](const QString& chosen) {
        dialog.setDefaultSuffix(QString::fromStdString(filterExtension(patternsOf(chosen))));
    };
    QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, useFilter);
    const QString selected = nthFilter(filter, filterIndex);
    if (!selected.isEmpty()) dialog.selectNameFilter(selected);
    useFilter(dialog.selectedNameFilter());
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return QString();
    return withFilterExtension(dialog.selectedFiles().constFirst(), dialog.selectedNameFilter());
}

QString QtDialogs::chooseFolder(const QString& prompt)
{
    QString folder = QFileDialog::getExistingDirectory(m_parent, prompt);
    if (!folder.isEmpty() && !folder.endsWith('/')) folder += '/';
    return folder;
}

void QtDialogs::message(int, MessageKind kind, const QString& title, const QString& text)
{
    switch (kind) {
    case MessageKind::Warning: QMessageBox::warning(m_parent, title, text); break;
    case MessageKind::Critical: QMessageBox::critical(m_parent, title, text); break;
    case MessageKind::Information: QMessageBox::information(m_parent, title, text); break;
    }
}

Answer QtDialogs::askYesNoCancel(const QString& title, const QString& text)
{
    const auto button =
        QMessageBox::question(m_parent, title, text, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
    return button == QMessageBox::Yes ? Answer::Yes : button == QMessageBox::No ? Answer::No : Answer::Cancel;
}

}  // namespace zevran::app
