#include "PointNames.h"

#include <QLocale>

QString pointLabel(const QString& name, const QString& depth)
{
    return depth.isEmpty() ? name : QStringLiteral("%1, %2").arg(name, depth);
}

QString pointText(const QString& name, const QString& depth)
{
    return depth.isEmpty() ? name : QStringLiteral("%1 at depth %2").arg(name, depth);
}

QString depthText(double depth)
{
    return QString::number(depth + 0.0, 'g', QLocale::FloatingPointShortest); // + 0.0: no "-0"
}

QString plainDepth(const QString& depth)
{
    bool isNumber = false;
    const double number = depth.toDouble(&isNumber);
    return isNumber ? depthText(number) : depth;
}

bool isSameDepth(const QString& left, const QString& right)
{
    return plainDepth(left) == plainDepth(right);
}
