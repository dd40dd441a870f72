#pragma once

#include <QString>

#include <functional>

/// Something that the user should know of an import, though it stops nothing.
struct ImportNote
{
    enum class Kind
    {
        Information,
        Warning
    };

    Kind kind = Kind::Information;
    QString text;
};

/// Takes each note as it comes up.
using ImportNotes = std::function<void(const ImportNote&)>;
