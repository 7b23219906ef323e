#include "failure_texts.hpp"

#include <QStringList>
#include <cstring>

namespace zevran::app {

namespace {

// %1 .. %9 of `pattern` replaced by the values, each once, left to right: a value that
// holds "%2" itself (a file name, a typed text) stays as it is.
QString fill(const QString& pattern, const QStringList& values)
{
    QString out;
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        const QChar next = i + 1 < pattern.size() ? pattern[i + 1] : QChar();
        if (pattern[i] == '%' && next >= '1' && next <= '9') {
            const qsizetype index = next.unicode() - '1';
            if (index < values.size()) out += values[index];
            ++i;
            continue;
        }
        out += pattern[i];
    }
    return out;
}

// The system's word for an error number in the window's language, or its own.
QString systemWord(const WorkshopTexts& texts, int errorNumber)
{
    const std::string_view name = image::errnoName(errorNumber);
    if (!name.empty()) {
        const std::string key = "Errno" + std::string(name);
        QString word = texts.text(key);
        if (!word.isEmpty() && word != QString::fromStdString(key)) return word;
    }
    return QString::fromLocal8Bit(std::strerror(errorNumber));
}

}  // namespace

QString failureText(const WorkshopTexts& texts, const image::Failure& failure)
{
    QStringList values;
    for (const std::string& value : failure.values)
        values << QString::fromUtf8(value.data(), static_cast<qsizetype>(value.size()));
    if (failure.reason == image::Reason::SystemError && values.size() == 2)
        values[1] = systemWord(texts, values[1].toInt());
    if (failure.cause) values << failureText(texts, *failure.cause);
    const std::string_view key = image::failureKey(failure.reason);
    QString pattern = failure.reason == image::Reason::Text ? QString() : texts.text(key);
    if (pattern.isEmpty() || pattern == QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size())))
        pattern = QString::fromUtf8(image::failureEnglish(failure.reason).data());
    return fill(pattern, values);
}

QString failureText(const WorkshopTexts& texts, const std::exception& error)
{
    return failureText(texts, image::failureOf(error));
}

}  // namespace zevran::app
