#pragma once

#include <QString>

/// How a point is called among others: "name" or "name, depth".
QString pointLabel(const QString& name, const QString& depth);

/// The same in a sentence: "name" or "name at depth 2.5".
QString pointText(const QString& name, const QString& depth);

/// The shortest decimal text of a depth.
QString depthText(double depth);

/// The same of a depth that is a number, so that 2.5 and 2.50 are one; another text as it is.
QString plainDepth(const QString& depth);

/// Whether two depths are one: those that are numbers are the same however they are spelled.
bool isSameDepth(const QString& left, const QString& right);
