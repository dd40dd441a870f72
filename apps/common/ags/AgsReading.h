#pragma once

#include "reading/MeasuredFile.h"

#include <QByteArray>
#include <QString>

namespace ags {

/// Whether `text` is commonly written where nothing could be read, such as "Dry"; so is nothing at all.
bool saysNoReading(const QString& text);

/// Reads the readings (MOND) of an AGS 4 file into `file`: the point is the location, as long as each has one
/// installation, unless the mapping says its name; the depth is the distance of the installation, and the
/// type of a reading says its sub-category. Where a column is given by a mapping, it is a heading of the
/// readings, or several with text between. Texts that say that there is no reading, such as "Dry", and empty
/// readings are left out. Throws a Failure (BadInput) for a mapping that is for tables only.
void readReadings(const QByteArray& text, const FileMapping& mapping, BadRowKeeping keeping,
                  MeasuredFile& file);

} // namespace ags
