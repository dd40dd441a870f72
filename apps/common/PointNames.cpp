#include "PointNames.h"

QString pointLabel(const QString& name, const QString& depth)
{
    return depth.isEmpty() ? name : QStringLiteral("%1, %2").arg(name, depth);
}

QString pointText(const QString& name, const QString& depth)
{
    return depth.isEmpty() ? name : QStringLiteral("%1 at depth %2").arg(name, depth);
}
