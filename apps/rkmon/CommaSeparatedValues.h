#pragma once

#include <QString>
#include <QStringList>

/// Comma-separated values after RFC 4180.
namespace csv {

/// One record with its line end. A field is quoted when it holds a comma, a quote, a line break, or a blank
/// at either end, which some readers would drop.
QString record(const QStringList& fields);

} // namespace csv
