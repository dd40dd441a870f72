#pragma once

#include "Text.h"
#include "reading/MeasuredFile.h"

#include <RKPub.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

/// The problems of a file "a.csv", as people see them.
inline std::vector<std::string> problemsOf(const QByteArray& content, const FileMapping& mapping = {})
{
    std::vector<std::string> lines;
    const QStringList problems = readMeasuredFile("a.csv"_q, content, mapping).problems.lines("a.csv"_q);
    for (const QString& problem : problems) {
        lines.push_back(problem.toStdString());
    }
    return lines;
}

/// "name|depth|time|count|value|flag" of each reading of a file without problems.
inline std::vector<std::string> readingsOf(const QByteArray& content, const FileMapping& mapping = {})
{
    const MeasuredFile file = readMeasuredFile("a.csv"_q, content, mapping);
    const QStringList problems = file.problems.lines("a.csv"_q);
    EXPECT_TRUE(problems.isEmpty()) << problems.join("\n"_q).toStdString();
    std::vector<std::string> readings;
    for (const MeasuredPoint& point : file.points) {
        for (const Reading& reading : point.readings) {
            readings.push_back(QStringList{point.name, point.depth,
                                           RKPub::getQStringByDateTime(reading.sample.time),
                                           QString::number(reading.sample.count),
                                           QString::number(reading.sample.value), reading.sample.timeFlag}
                                   .join("|"_q)
                                   .toStdString());
        }
    }
    return readings;
}
