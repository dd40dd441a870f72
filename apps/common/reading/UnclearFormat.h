#pragma once

#include <QStringList>

/// What a file does not say of its format, so that it must be given.
struct UnclearFormat
{
    bool decimalSign = false;
    bool delimiter = false;
    /// The zone, or the offset from UTC, of times that have none.
    bool utcOffset = false;
    /// Which of two hours of equal name.
    bool doubledHour = false;
    /// That there are no depths or counts, which are asked for unless it is said.
    bool absentColumns = false;
    /// Ways in which the columns of a file make the names of its points.
    QStringList names;
    /// Names of the ways in which the times can be read.
    QStringList timeFormats;
    /// Names of the encodings in which the text can be read.
    QStringList encodings;

    /// Adds what is unclear of another file.
    void add(const UnclearFormat& other);
};
