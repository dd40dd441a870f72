#pragma once

#include "ags/AgsText.h"

#include <QDate>
#include <QList>
#include <QString>
#include <QStringList>

/// The groups that tell what an AGS file is and what its codes mean.
namespace ags {

/// The unit of distances, and the form of times with their offset.
constexpr const char* distanceUnit = "m";
constexpr const char* timeUnit = "yyyy-mm-ddThh:mm:ss.sssZ(+hh:mm)";

/// A group with its data.
struct Table
{
    Head head;
    QList<QStringList> rows;
};

QByteArray tableText(const Table& table);

/// A code under a heading, and what it means.
struct Abbreviation
{
    QString heading;
    QString code;
    QString description;
};

/// What is sent, and for what.
struct Transmission
{
    QString edition;
    QString producer;
    QString monitoring;
    QString project;
    QDate day;
};

/// TRAN. Codes are joined by a character that none of them has.
Table transmissionTable(const Transmission& transmission, const QList<Abbreviation>& abbreviations);

/// UNIT, TYPE, ABBR and DICT for a file of `tables` and of readings with these units.
QList<Table> definitionTables(const QList<Table>& tables, const Head& readings, const QStringList& units,
                              const QList<Abbreviation>& abbreviations);

} // namespace ags
