// The dialogs double: answers every dialog from a script and records each message.
#pragma once

#include "app/dialogs.hpp"

#include <QStringList>
#include <deque>
#include <vector>

namespace zevran::test {

struct ShownMessage {
    int code;
    app::MessageKind kind;
    QString title;
    QString text;
};

class ScriptedDialogs : public app::Dialogs {
public:
    std::deque<QString> files;        // answers of open and save dialogs, in order; "" cancels;
                                      // a saved name without an extension gets the filter's
    std::deque<QString> folders;      // answers of the folder chooser
    std::deque<app::Answer> answers;  // answers of the Yes/No/Cancel question
    std::vector<ShownMessage> messages;
    int chosenFilter = 0;  // the filter (from 1) picked in save dialogs; 0 keeps the preselected one
    QStringList asked;     // "open FOLDER|FILTER|INDEX", "save ...", "folder PROMPT", "question TEXT"

    QString openFile(const QString& folder, const QString& filter, int index) override
    {
        asked << QStringLiteral("open %1|%2|%3").arg(folder, filter).arg(index);
        return next(files);
    }
    QString saveFile(const QString& folder, const QString& filter, int index) override
    {
        asked << QStringLiteral("save %1|%2|%3").arg(folder, filter).arg(index);
        // The answer is a name typed with the filter `chosenFilter`, or the preselected one.
        return app::withFilterExtension(next(files), app::nthFilter(filter, chosenFilter > 0 ? chosenFilter : index));
    }
    QString chooseFolder(const QString& prompt) override
    {
        asked << "folder " + prompt;
        return next(folders);
    }
    void message(int code, app::MessageKind kind, const QString& title, const QString& text) override
    {
        messages.push_back({code, kind, title, text});
    }
    app::Answer askYesNoCancel(const QString& title, const QString& text) override
    {
        asked << "question " + title + "|" + text;
        if (answers.empty()) return app::Answer::Cancel;
        const app::Answer answer = answers.front();
        answers.pop_front();
        return answer;
    }

    std::vector<int> codes() const
    {
        std::vector<int> shown;
        for (const auto& message : messages) shown.push_back(message.code);
        return shown;
    }

private:
    static QString next(std::deque<QString>& queue)
    {
        if (queue.empty()) return QString();
        QString answer = queue.front();
        queue.pop_front();
        return answer;
    }
};

}  // namespace zevran::test
