#pragma once

#include <QDir>
#include <QFile>
#include <QtGlobal>

/// What the system says of this process: proc(5), which Linux has.

/// Bytes of memory that it holds now.
inline qint64 residentMemory()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    constexpr qint64 page = 4096;
    return file.readAll().split(' ').value(1).toLongLong() * page;
}

/// How many files and sockets it has open.
inline int openDescriptors()
{
    return QDir(QStringLiteral("/proc/self/fd"))
        .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
        .size();
}
