#pragma once

#include <QString>
#include <QStringList>

/// Names of points within the condition of a request, of which the service takes 8 KB.
namespace conditionnames {

/// The names of one condition may take so many bytes.
constexpr int largestSize = 4000;

/// Bytes that a name takes at most: as JSON, with escapes, quotes and a comma.
inline int sizeOf(const QString& name)
{
    return name.toUtf8().size() * 2 + 3;
}

inline int sizeOf(const QStringList& names)
{
    int size = 0;
    for (const QString& name : names) {
        size += sizeOf(name);
    }
    return size;
}

} // namespace conditionnames
