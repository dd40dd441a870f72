#include "PointNames.h"

QString pointLabel(const QString& name, const QString& depth)
{
    return depth.isEmpty() ? name : QStringLiteral("%1, %2").arg(name, depth);
}

QString pointText(const QString& name, const QString& depth)
{
    return depth.isEmpty() ? name : QStringLiteral("%1 at depth %2").arg(name, depth);
}

bool isSameDepth(const QString& left, const QString& right)
{
    bool isLeftNumber = false;
    bool isRightNumber = false;
    const double leftNumber = left.toDouble(&isLeftNumber);
    const double rightNumber = right.toDouble(&isRightNumber);
    return left == right || (isLeftNumber && isRightNumber && leftNumber == rightNumber);
}
