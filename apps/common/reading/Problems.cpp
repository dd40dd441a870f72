#include "reading/Problems.h"

#include <algorithm>

void Problems::add(int line, const QString& reason)
{
    if (m_count++ < bound) {
        m_first.append({line, reason});
    }
}

QStringList Problems::lines(const QString& file) const
{
    QVector<Problem> sorted = m_first;
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const Problem& left, const Problem& right) { return left.line < right.line; });
    QStringList result;
    for (const Problem& problem : qAsConst(sorted)) {
        result.append(QStringLiteral("%1:%2: %3").arg(file).arg(problem.line).arg(problem.reason));
    }
    if (m_count > bound) {
        result.append(QStringLiteral("%1: and %2 more bad rows").arg(file).arg(m_count - bound));
    }
    return result;
}
