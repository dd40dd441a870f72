#pragma once

#include "reading/FileMapping.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

/// A mapping for a file, as far as the file tells it.
struct MappingProposal
{
    /// JSON that readFileMapping() takes.
    QByteArray json;
    /// What was recognised, in words.
    QStringList recognised;
    /// What the file leaves open, in words: it is not in the mapping, and a person must add it.
    QStringList open;
};

/// Proposes a mapping for `content`, the file at `path`; what `given` says already is taken for granted.
/// Throws a Failure (BadInput) when the file is no table, or its text can be read in several encodings.
MappingProposal proposeMapping(const QString& path, const QByteArray& content, const FileMapping& given);
