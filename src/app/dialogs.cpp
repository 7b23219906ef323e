#include "dialogs.hpp"

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
        const int open = description.lastIndexOf('(');
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

QString QtDialogs::openFile(const QString& folder, const QString& filter, int filterIndex)
{
    QString selected = nthFilter(filter, filterIndex);
    return QFileDialog::getOpenFileName(m_parent, QString(), folder, filter, &selected);
}

QString QtDialogs::saveFile(const QString& folder, const QString& filter, int filterIndex)
{
    QString selected = nthFilter(filter, filterIndex);
    return QFileDialog::getSaveFileName(m_parent, QString(), folder, filter, &selected);
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
    const auto button = QMessageBox::question(m_parent, title, text,
                                              QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
    return button == QMessageBox::Yes ? Answer::Yes : button == QMessageBox::No ? Answer::No : Answer::Cancel;
}

}  // namespace zevran::app
