#pragma once

#include "platform/RunTimeError.h"
#include "support/PrintText.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QString>

/// Whole content of a file, empty when there is none.
inline QByteArray BytesOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline void PutBytes(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(bytes);
}

inline QByteArray AllBytes() {
    QByteArray bytes;
    for (int code = 0; code < 256; ++code)
        bytes += char(code);
    return bytes;
}

/// Runs the event loop until a condition holds, at most 30 s.
template <typename Condition> bool Until(Condition&& met) {
    const QDeadlineTimer deadline(30000);
    while (!met() && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    return met();
}

/// Number of the run-time error that `work` throws, 0 for none.
template <typename Work> int ErrorOf(Work&& work) {
    try {
        work();
    } catch (const platform::RunTimeError& error) {
        return error.Number();
    }
    return 0;
}
