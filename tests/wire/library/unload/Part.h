#pragma once

#include <QList>
#include <QPair>
#include <QString>

/// What a part of an application that is loaded at run time, and the library and its companions with it, does
/// with the library.
struct Part
{
    /// Sets the service's base address and opens the project "p7".
    void (*connectTo)(const QString& baseAddress);
    const void* (*instance)();
    /// A monitoring's name, asked for when it is not cached.
    QString (*monitoringName)(const QString& id);
    bool (*cellIdsAndNames)(QList<QPair<QString, QString>>& cells);
    /// Sends a delivery of no points.
    bool (*deliver)(QString& message);
};

/// Name and type of the function by which the part is reached.
constexpr char partFunction[] = "part";
using PartFunction = const Part* (*)();
