#include "RKPub.h"

#include <QLocale>

#include <cmath>

namespace RKPub {

namespace {

// The bounds between which ECMA-262, Number::toString, writes no exponent: what readers of JSON numbers
// expect.
QString numberText(double number)
{
    const double magnitude = std::fabs(number);
    const bool plain = magnitude == 0 || (magnitude >= 1e-6 && magnitude < 1e21);
    return QString::number(number, plain ? 'f' : 'g', QLocale::FloatingPointShortest);
}

QString textOf(const QVariant& value)
{
    switch (value.userType()) {
    case QMetaType::Double:
    case QMetaType::Float:
        return numberText(value.toDouble());
    case QMetaType::QStringList: // toString() would give the text of a list of one
        return {};
    default:
        return value.toString();
    }
}

} // namespace

QStringList getStrListFromVarList(const QList<QVariant>& values)
{
    QStringList texts;
    texts.reserve(values.size());
    for (const QVariant& value : values) {
        texts.append(textOf(value));
    }
    return texts;
}

} // namespace RKPub
