#pragma once

#include "Text.h"
#include "import/AnyFile.h"

#include <QFile>
#include <RKPub.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

/// The committed file of a site: two standpipes with several kinds of readings, and an inclinometer.
inline QByteArray siteText()
{
    QFile file(QStringLiteral(RK_AGS_FILES "/site.ags"));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

/// The text of the site with one part of it replaced, which must stand there.
inline QByteArray siteWith(const QByteArray& part, const QByteArray& replacement)
{
    QByteArray text = siteText();
    const int at = text.indexOf(part);
    EXPECT_GE(at, 0) << part.toStdString();
    return text.replace(at, part.size(), replacement);
}

/// A clock in Britain.
inline FileMapping britishMapping()
{
    FileMapping mapping;
    mapping.zone = zoneNamed("Europe/London"_q);
    return mapping;
}

inline std::vector<std::string> agsProblemsOf(const QByteArray& content,
                                              const FileMapping& mapping = britishMapping())
{
    std::vector<std::string> lines;
    const QStringList problems = readAnyFile("a.ags"_q, content, mapping).problems.lines("a.ags"_q);
    for (const QString& problem : problems) {
        lines.push_back(problem.toStdString());
    }
    return lines;
}

/// "sub-category|name|depth|time|count|value|flag" of each reading of a file without problems.
inline std::vector<std::string> agsReadingsOf(const QByteArray& content,
                                              const FileMapping& mapping = britishMapping())
{
    const MeasuredFile file = readAnyFile("a.ags"_q, content, mapping);
    const QStringList problems = file.problems.lines("a.ags"_q);
    EXPECT_TRUE(problems.isEmpty()) << problems.join("\n"_q).toStdString();
    std::vector<std::string> readings;
    for (const MeasuredPoint& point : file.points) {
        for (const Reading& reading : point.readings) {
            readings.push_back(QStringList{point.subCategory, point.name, point.depth,
                                           RKPub::getQStringByDateTime(reading.sample.time),
                                           QString::number(reading.sample.count),
                                           QString::number(reading.sample.value), reading.sample.timeFlag}
                                   .join("|"_q)
                                   .toStdString());
        }
    }
    return readings;
}
