#include "Identifier.h"

#include <QRegularExpression>

bool isIdentifier(const QString& text)
{
    static const QRegularExpression form(QStringLiteral("\\A[0-9a-fA-F]{24}\\z"));
    return form.match(text).hasMatch();
}
