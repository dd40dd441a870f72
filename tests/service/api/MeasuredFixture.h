#pragma once

#include "ApiFixture.h"
#include "domain/PointLocation.h"
#include "json/JsonText.h"
#include "store/StoreContents.h"
#include "time/LocalDays.h"
#include "time/Timestamp.h"

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace monitorservice::test {

/// A sample to be written into the store.
struct Reading
{
    std::string time; ///< with "Z" or an offset
    double value = 0;
    std::string flag = "A";
    std::int32_t count = 1;
};

/// A point to be written into the store.
struct NewPoint
{
    std::string cell;
    std::string subCategory;
    std::string name;
    std::string depth = {};
    std::vector<Reading> readings = {};
    std::string links = "[]";
    std::optional<double> initialValue = {};
};

/// With project "vienna" in its time zone, and in p1 and there a monitoring and a sub-category of each
/// category. Points are written into the store, not delivered. The audit trail is empty.
class MeasuredFixture : public ApiFixture
{
protected:
    MeasuredFixture()
    {
        write([](Session& session) { session.projects().insert({"vienna", "Tunnel", "Europe/Vienna", 1}); });
        grant(editor, "vienna", std::nullopt,
              Rights(Right::Read) | Right::Create | Right::Edit | Right::Delete);
        newSubCategory({"ground", "p1", "Ground level", "Settlement", "GL"});
        newSubCategory({"casing", "p1", "Casing", "Inclinometer", "INC"});
        newSubCategory({"tube", "vienna", "Tube", "Settlement", "T"});
        tower = newCell("Tower 1");
        wall = newCell("Wall", "Inclinometer");
        tunnel = newCellIn("vienna", "Tunnel");
        clearTrail();
    }

    void clearTrail()
    {
        write([](Session& session) {
            for (const std::string& entry : entriesOf(session)) {
                session.documents(DocumentKind::Change)
                    .remove(member(entry, "projectId"), member(entry, "_id"));
            }
        });
    }

    void newSubCategory(const SubCategory& subCategory)
    {
        write([&](Session& session) {
            session.documents(DocumentKind::SubCategory)
                .insert(subCategory.project, subCategory.id, toDocument(subCategory));
        });
    }

    std::string newCellIn(const std::string& project, const std::string& name) const
    {
        const RawAnswer answer =
            call(editor, "POST", "cells",
                 R"({"projectId":")" + project + R"(","name":")" + name + R"(","category":"Settlement"})");
        EXPECT_EQ(answer.status, 201U) << answer.body;
        return member(answer.body, "_id");
    }

    /// Its identifier.
    std::string newPoint(const NewPoint& point)
    {
        std::string id;
        write([&](Session& session) { id = insertPoint(session, point); });
        return id;
    }

    std::string insertPoint(Session& session, const NewPoint& point)
    {
        std::vector<Sample> samples;
        for (const Reading& reading : point.readings) {
            const std::optional<Timestamp> time = parseTimestamp(reading.time);
            EXPECT_TRUE(time) << reading.time;
            samples.push_back(
                {time->milliseconds, reading.count, time->offsetMinutes, reading.value, reading.flag});
        }
        const std::string project = session.documents(DocumentKind::Cell).find(point.cell)->project;
        PointLocation location;
        location.id = session.newIdentifier();
        location.project = project;
        location.cell = point.cell;
        location.subCategory = point.subCategory;
        location.name = point.name;
        location.depth = point.depth;
        location.links = point.links;
        location.initialValue = point.initialValue;
        location.insertCount = static_cast<std::int64_t>(samples.size());
        location.stamp = Stamp::of({"", isoText(session.now())});
        const auto latest =
            std::max_element(samples.begin(), samples.end(),
                             [](const Sample& left, const Sample& right) { return left.time < right.time; });
        if (latest != samples.end()) {
            location.lastDate = isoText(latest->time, latest->offsetMinutes);
            location.lastCount = latest->count;
        }
        const std::int64_t key =
            session.measurements().insertPoint(project, location.id, toDocument(location), 0);
        LocalDays days(session.projects().find(project)->timeZone);
        for (const Sample& sample : samples) {
            session.measurements().insertSample(key, days.periodOf(sample.time), sample, 0);
        }
        return location.id;
    }

    RawAnswer where(const std::string& list, const std::string& json, const std::string& more = {}) const
    {
        return get(list + "?where=" + percentEncoded(json) + more);
    }

    std::string count(const std::string& list, const std::string& json) const
    {
        return member(where(list, json, "&only_count=true").body, "count");
    }

    static std::vector<std::string> members(const RawAnswer& answer, std::string_view name)
    {
        EXPECT_EQ(answer.status, 200U) << answer.body;
        return answer.status == 200 ? membersOf(answer.body, name) : std::vector<std::string>();
    }

    /// A token that may do so much in one category of p1.
    std::string newTokenFor(const std::string& category, Rights rights)
    {
        const std::string token = newToken("For " + category + " " + std::to_string(rights.bits()));
        grant(token, "p1", category, rights);
        return token;
    }

    std::string tower;
    std::string wall;
    std::string tunnel;
};

} // namespace monitorservice::test
