#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

namespace ags {

/// What a row says under one heading or several, with fixed text between: "LOCA_ID", "LOCA_ID/MONG_ID".
class Field
{
public:
    /// `text` names headings; `headings` are those of the group.
    Field(const QString& text, const QStringList& headings);

    /// The headings that the group has not; `text` itself when it names none.
    const QStringList& unknown() const { return m_unknown; }
    const QStringList& headings() const { return m_headings; }

    /// The text of a row with these fields.
    QString of(const QStringList& fields) const;

private:
    struct Piece
    {
        int field = -1; // -1: the text
        QString text;
    };

    QVector<Piece> m_pieces;
    QStringList m_headings;
    QStringList m_unknown;
};

} // namespace ags
