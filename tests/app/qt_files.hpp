// Whole-file helpers for the window tests.
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QTest>

namespace zevran::test {

inline void writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(bytes);
}

inline QByteArray readBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace zevran::test
