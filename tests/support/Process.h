#pragma once

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QtGlobal>

/// What the system says of processes: proc(5), which Linux has.

/// Bytes of memory that a process holds now.
inline qint64 residentMemory(qint64 process)
{
    QFile file(QStringLiteral("/proc/%1/statm").arg(process));
    if (!file.open(QIODevice::ReadOnly)) {
        return 0;
    }
    constexpr qint64 page = 4096;
    return file.readAll().split(' ').value(1).toLongLong() * page;
}

/// Bytes of memory that this process holds now.
inline qint64 residentMemory()
{
    return residentMemory(QCoreApplication::applicationPid());
}

/// How many files and sockets this process has open.
inline int openDescriptors()
{
    return QDir(QStringLiteral("/proc/self/fd"))
        .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
        .size();
}
