#pragma once

#include "reading/MappingProposal.h"

namespace ags {

/// Proposes a mapping for the text of an AGS file; `given` is repeated. Throws a Failure (BadInput) when the
/// file is malformed.
MappingProposal proposeMapping(const QString& path, const QByteArray& text, const FileMapping& given);

} // namespace ags
