#pragma once

#include "store/Store.h"

#include <array>
#include <cstdint>
#include <limits>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace monitorservice::test {

/// Everything of one kind in one project, in the order of identifiers.
inline std::vector<std::string> documentsOf(const Session& session, const std::string& project,
                                            DocumentKind kind)
{
    std::vector<std::string> documents;
    DocumentQuery query;
    query.project = project;
    session.documents(kind).visit(
        query, [&documents](std::string_view document) { documents.emplace_back(document); });
    return documents;
}

/// Everything of one kind, project by project.
inline std::vector<std::string> documentsOf(Store& store, DocumentKind kind)
{
    const auto session = store.read();
    std::vector<std::string> documents;
    for (const Project& project : session->projects().list()) {
        for (std::string& document : documentsOf(*session, project.id, kind)) {
            documents.push_back(std::move(document));
        }
    }
    return documents;
}

/// The audit trail: of all projects, of those that are gone and of none.
inline std::vector<std::string> entriesOf(const Session& session)
{
    std::vector<std::string> entries;
    DocumentQuery query;
    query.everyProject = true;
    session.documents(DocumentKind::Change).visit(query, [&entries](std::string_view document) {
        entries.emplace_back(document);
    });
    return entries;
}

/// A point with all that is kept of it.
struct HeldPoint
{
    std::int64_t key = 0;
    std::string id;
    std::string name;
    std::string depth;
    std::string document;
    std::vector<Sample> samples;
    std::vector<DaySummary> days;
    std::vector<ReadingInExcess> excesses;
};

inline std::vector<HeldPoint> pointsOf(const Session& session, const std::string& project)
{
    std::vector<HeldPoint> points;
    DocumentQuery query;
    query.project = project;
    session.measurements().select(query)->visit([&points](const FoundPoint& point) {
        points.push_back({point.key,
                          std::string(point.id),
                          std::string(point.name),
                          std::string(point.depth),
                          std::string(point.document),
                          {},
                          {},
                          {}});
    });
    using Number = std::numeric_limits<std::int64_t>;
    for (HeldPoint& point : points) {
        session.measurements().visitSamples(
            point.key, Number::min(), Number::max(),
            [&point](const Sample& sample) { point.samples.push_back(sample); });
        session.measurements().visitDays(point.key, Number::min(), Number::max(),
                                         [&point](const DaySummary& day) { point.days.push_back(day); });
        session.excesses().visit(
            point.key, Number::min(), Number::max(),
            [&point](const ReadingInExcess& reading) { point.excesses.push_back(reading); });
    }
    return points;
}

/// Every point, project by project, in the order of identifiers.
inline std::vector<HeldPoint> pointsOf(Store& store)
{
    const auto session = store.read();
    std::vector<HeldPoint> points;
    for (const Project& project : session->projects().list()) {
        for (HeldPoint& point : pointsOf(*session, project.id)) {
            points.push_back(std::move(point));
        }
    }
    return points;
}

inline std::size_t samplesIn(const std::vector<HeldPoint>& points)
{
    std::size_t samples = 0;
    for (const HeldPoint& point : points) {
        samples += point.samples.size();
    }
    return samples;
}

/// Different for different numbers.
inline std::string exactText(double number)
{
    std::ostringstream text;
    text.precision(std::numeric_limits<double>::max_digits10);
    text << number + 0.0; // -0 is 0
    return text.str();
}

inline std::string offsetText(const std::optional<int>& offsetMinutes)
{
    return offsetMinutes ? std::to_string(*offsetMinutes) : "Z";
}

/// Everything that a store holds but tokens, a line each: two stores with the same lines answer alike.
inline std::vector<std::string> contentsOf(Store& store)
{
    constexpr std::array kinds{DocumentKind::Cell,        DocumentKind::SubCategory, DocumentKind::Group,
                               DocumentKind::DataManage,  DocumentKind::History,     DocumentKind::Alarm,
                               DocumentKind::AlarmDetail, DocumentKind::AlarmDepth};
    const auto session = store.read();
    std::vector<std::string> lines;
    for (const std::string& category : session->categories().list()) {
        lines.push_back("category " + category);
    }
    for (const Project& project : session->projects().list()) {
        lines.push_back("project " + project.id + ' ' + project.name + ' ' + project.timeZone + ' ' +
                        std::to_string(project.createdAt));
        for (const DocumentKind kind : kinds) {
            for (const std::string& document : documentsOf(*session, project.id, kind)) {
                lines.push_back(project.id + ' ' + std::to_string(static_cast<int>(kind)) + ' ' + document);
            }
        }
        for (const HeldPoint& point : pointsOf(*session, project.id)) {
            lines.push_back(project.id + " point " + point.document);
            for (const Sample& sample : point.samples) {
                lines.push_back("sample of " + point.id + ' ' + std::to_string(sample.time) + ' ' +
                                std::to_string(sample.count) + ' ' + offsetText(sample.offsetMinutes) + ' ' +
                                exactText(sample.value) + ' ' + sample.timeFlag);
            }
            for (const DaySummary& day : point.days) {
                lines.push_back("day of " + point.id + ' ' + std::to_string(day.day) + ' ' +
                                std::to_string(day.time) + ' ' + std::to_string(day.count) + ' ' +
                                offsetText(day.offsetMinutes) + ' ' + exactText(day.value) + ' ' +
                                std::to_string(day.samples));
            }
            for (const ReadingInExcess& reading : point.excesses) {
                lines.push_back("excess of " + point.id + ' ' + std::to_string(reading.time) + ' ' +
                                std::to_string(reading.count) + " in " + reading.alarm);
            }
        }
    }
    for (const std::string& entry : entriesOf(*session)) {
        lines.push_back("entry " + entry);
    }
    for (const Grant& grant : session->grants().list()) {
        lines.push_back("grant " + grant.id + ' ' + grant.token + ' ' + grant.project.value_or("*") + ' ' +
                        grant.category.value_or("*") + ' ' + grant.rights.names());
    }
    return lines;
}

} // namespace monitorservice::test
