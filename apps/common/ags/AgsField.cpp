#include "ags/AgsField.h"

#include <QRegularExpression>

namespace ags {

Field::Field(const QString& text, const QStringList& headings)
{
    static const QRegularExpression heading(QStringLiteral("[A-Z0-9]{4}_[A-Z0-9]{1,4}"));
    int end = 0;
    QRegularExpressionMatchIterator matches = heading.globalMatch(text);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        const int index = headings.indexOf(match.captured());
        m_headings.append(match.captured());
        if (index < 0) {
            m_unknown.append(match.captured());
        }
        m_pieces.append({-1, text.mid(end, match.capturedStart() - end)});
        m_pieces.append({index, QString()});
        end = match.capturedEnd();
    }
    if (m_headings.isEmpty()) {
        m_unknown.append(text);
    }
    m_pieces.append({-1, text.mid(end)});
}

QString Field::of(const QStringList& fields) const
{
    QString text;
    for (const Piece& piece : m_pieces) {
        text += piece.field < 0 ? piece.text : fields.value(piece.field);
    }
    return text;
}

} // namespace ags
