#pragma once

#include "Failure.h"

#include <QString>

#include <initializer_list>

/// An answer that was read as a success, yet holds records without identifiers, was something else.
/// Throws a Failure (BadAnswer) then; `purpose` completes "cannot ...", `kind` names the records: "points".
template <typename Records>
void requireIdentifiers(const Records& records, const QString& purpose, const QString& kind)
{
    for (const auto& record : records) {
        if (record.id.isEmpty()) {
            throw Failure(FailureKind::BadAnswer,
                          QStringLiteral("cannot %1: the answer is not about %2").arg(purpose, kind));
        }
    }
}

/// The same of one record; `kind` is "a point".
template <typename Record>
void requireIdentifier(const Record& record, const QString& purpose, const QString& kind)
{
    requireIdentifiers(std::initializer_list<Record>{record}, purpose, kind);
}
