#pragma once

#include "RKPublicFunExport.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

/// Conversions between the records of monitoring data and their JSON form. All are pure functions; those that
/// deal with local time read the process's time zone.
namespace RKPub {

/// The timestamp text of `dateTime`: ISO 8601 with milliseconds, `YYYY-MM-DDThh:mm:ss.zzz` followed by `Z`
/// for UTC and by the offset `±hh:mm` for an offset, a time zone or local time. getDateTimeByQString() reads
/// it back as the same instant and the same calendar day.
///
/// Two kinds of offset cannot be written so and give way to the instant, which is always exact: one that is
/// no whole number of minutes (zones before standard time) loses its seconds and the time of day moves by
/// them; one beyond ±14:00 is written in UTC.
///
/// An invalid time, and a year outside 0001 to 9999, give the empty text.
RKPUBLICFUN_EXPORT QString getQStringByDateTime(const QDateTime& dateTime);

/// The time that `text` names. Accepted, after ISO 8601 and RFC 3339 section 5.6, and nothing else:
/// - `YYYY-MM-DDThh:mm:ss`, optionally with `.` and a fraction of any length (digits after the milliseconds
///   are cut off, not rounded), and then `Z`, `±hh:mm`, `±hhmm` or nothing for local time;
/// - `YYYY-MM-DD` alone: the day's first moment in local time, which is later than 00:00 where clocks skip
///   midnight.
///
/// The offset read is kept, so that `date()` is the day written: a zero offset (`Z`, `+00:00`, `-00:00`)
/// gives Qt::UTC, any other Qt::OffsetFromUTC. Of a local time that occurs twice Qt chooses which.
///
/// Anything else gives a null QDateTime: blanks or other text before or after, lower-case `t` or `z`, a comma
/// as the decimal sign, missing seconds, digits other than 0 to 9, year 0000, days or months that do not
/// exist, hour 24, second 60, an offset beyond ±14:00, a local time that the clocks skip.
RKPUBLICFUN_EXPORT QDateTime getDateTimeByQString(const QString& text);

/// One text per value, in order: texts as they are, booleans as "true" or "false", numbers as the shortest
/// decimal text that reads back as the same number (no exponent from 1e-6 to below 1e21), null, invalid
/// values, lists and maps as the empty text. Other types give what QVariant::toString() gives.
RKPUBLICFUN_EXPORT QStringList getStrListFromVarList(const QList<QVariant>& values);

/// The relations in a links array: one object per identifier, `{"type": relation, "rId": identifier}`, and
/// `{"type": relation}` for a relation without identifiers. Identifiers stand in the array's order, repeated
/// ones included; the texts may be empty.
///
/// An element that is no object, or whose "type" is no string, names no relation and is passed over; an "rId"
/// that is no string counts as absent.
RKPUBLICFUN_EXPORT QMap<QString, QStringList> jsonArrayToLinksEntity(const QJsonArray& links);

/// The links array of `links`, in the form that jsonArrayToLinksEntity() describes, relations in the map's
/// order. Every map survives the way there and back.
RKPUBLICFUN_EXPORT QJsonArray linksEntityToJsonArray(const QMap<QString, QStringList>& links);

/// Removes from `after` every member that `before` holds under the same key with an equal JSON value, so that
/// what is left is what changed. Members are compared whole: of an object or array that differs anywhere all
/// is left. A member that only `before` has is not a difference here; null is a value and not the same as an
/// absent member.
RKPUBLICFUN_EXPORT void removeCommonJsonValue(const QJsonObject& before, QJsonObject& after);

} // namespace RKPub
