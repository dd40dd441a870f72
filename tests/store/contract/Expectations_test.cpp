#include "StoreContract.h"
#include "domain/PointLocation.h"
#include "store/UtcDay.h"
#include "support/Chance.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <optional>
#include <utility>

namespace monitorservice::test {
namespace {

constexpr Instant oneDay = 24LL * 3600 * 1000;
constexpr std::int64_t mostDays = 6;

using Place = std::pair<std::string, std::string>; // name and depth

// A monitoring in a store of its own.
class Monitoring
{
public:
    Monitoring(std::unique_ptr<StoreData> data, const StoreOptions& options)
        : m_data(std::move(data)), m_store(m_data->open(options))
    {
        m_session->projects().insert({"p", "Pit", "UTC", 1});
        m_session->categories().add("Settlement");
        m_session->documents(DocumentKind::Cell)
            .insert("p", "c",
                    R"({"_id":"c","projectId":"p","name":"North","category":"Settlement",)"
                    R"("createdAt":"2026-01-01T00:00:00.000Z","createdBy":"a",)"
                    R"("updatedAt":"2026-01-01T00:00:00.000Z","updatedBy":"a"})");
        m_session->documents(DocumentKind::SubCategory)
            .insert("p", "s",
                    R"({"_id":"s","projectId":"p","name":"Level","category":"Settlement","alias":"L"})");
    }

    Measurements& measurements() { return m_session->measurements(); }

    void commit()
    {
        m_session->commit();
        m_session.reset();
        m_session = m_store->write();
    }

    void abandon()
    {
        m_session.reset();
        m_session = m_store->write();
    }

    /// The point, which is made with this identifier when it is not there.
    StoredPoint pointAt(const Place& place, const std::string& id)
    {
        if (auto found = measurements().findPoint("c", "s", place.first, place.second)) {
            return std::move(*found);
        }
        PointLocation location;
        location.id = id;
        location.project = "p";
        location.cell = "c";
        location.subCategory = "s";
        location.name = place.first;
        location.depth = place.second;
        location.stamp = Stamp::of({"a", "2026-01-01T00:00:00.000Z"});
        const std::string document = toDocument(location);
        return {measurements().insertPoint("p", id, document, 1), id, document};
    }
    std::int64_t keyAt(const Place& place, const std::string& id) { return pointAt(place, id).key; }

private:
    std::unique_ptr<StoreData> m_data;
    std::unique_ptr<Store> m_store;
    std::unique_ptr<Session> m_session = m_store->write();
};

std::string textOf(const std::optional<StoredPoint>& point)
{
    return point ? point->id + ' ' + point->document : "none";
}

std::string textOf(const std::optional<DaySummary>& day)
{
    return day ? std::to_string(day->day) + ' ' + std::to_string(day->time) + ' ' +
                     std::to_string(day->count) + ' ' + std::to_string(day->value) + ' ' +
                     std::to_string(day->samples)
               : "none";
}

// Of two stores with the same data one is told at random what is about to be asked for.
class Expectations : public StoreContract
{
protected:
    using Action = std::function<std::string(Monitoring& monitoring)>;

    // The running test fails when the stores differ in what the action gives.
    void doInBoth(const Action& action) { EXPECT_EQ(action(m_told), action(m_untold)); }

    Place anyPlace() { return {m_chance.of(m_names), m_chance.of(m_depths)}; }
    std::int64_t anyDay() { return static_cast<std::int64_t>(m_chance.below(mostDays)); }
    Instant anyTime() { return anyDay() * oneDay + static_cast<Instant>(m_chance.below(5)) * oneDay / 5; }

    void expectSome()
    {
        std::vector<ExpectedPoint> points;
        for (const std::string& name : m_names) {
            for (const std::string& depth : m_depths) {
                if (m_chance.once(2)) {
                    continue;
                }
                points.push_back({name, depth, {}});
                for (std::int64_t day = 0; day < mostDays; ++day) {
                    if (m_chance.once(3)) {
                        points.back().days.push_back(utcDayOf(day * oneDay));
                    }
                }
            }
        }
        m_told.measurements().expect("c", "s", points);
    }

    void doSomething()
    {
        const Place place = anyPlace();
        const std::string id = "w" + std::to_string(++m_number);
        const Instant time = anyTime();
        const std::int64_t day = anyDay();
        const Sample sample{time,
                            static_cast<std::int32_t>(1 + m_chance.below(2)),
                            {},
                            0.5 * static_cast<double>(m_number),
                            "A"};
        switch (m_chance.below(14)) {
        case 0:
        case 1:
            return expectSome();
        case 2:
            return doInBoth([&](Monitoring& m) {
                return textOf(m.measurements().findPoint("c", "s", place.first, place.second));
            });
        case 3:
            return doInBoth([&](Monitoring& m) {
                const StoredPoint point = m.pointAt(place, id);
                auto location = fromDocument<PointLocation>(point.document);
                location.alias = id;
                m.measurements().replacePoint(point.key, toDocument(location), time, 2);
                return std::string();
            });
        case 4:
            return doInBoth([&](Monitoring& m) {
                m.measurements().removePoint(m.keyAt(place, id));
                return std::string();
            });
        case 5:
            return doInBoth([&](Monitoring& m) {
                const bool isChanged = m.measurements().replaceLinks(
                    m.keyAt(place, id), R"([{"type":"t","rId":")" + id + "\"}]", 1'800'000'000'000, "b");
                return std::to_string(isChanged);
            });
        case 6:
        case 7:
        case 8:
            return doInBoth([&](Monitoring& m) {
                return std::to_string(
                    m.measurements().insertSample(m.keyAt(place, id), utcDayOf(time), sample, m_number));
            });
        case 9:
            return doInBoth([&](Monitoring& m) {
                m.measurements().replaceSample(m.keyAt(place, id), utcDayOf(time), sample);
                return std::string();
            });
        case 10:
            return doInBoth([&](Monitoring& m) {
                m.measurements().removeSample(m.keyAt(place, id), utcDayOf(time), time, sample.count);
                return std::string();
            });
        case 11:
            return doInBoth([&](Monitoring& m) {
                const std::int64_t key = m.keyAt(place, id);
                return textOf(m.measurements().latestDayBefore(key, day)) + "; " +
                       textOf(m.measurements().earliestDayAfter(key, day)) + "; " +
                       textOf(m.measurements().latestDayBefore(key, mostDays));
            });
        case 12:
            return doInBoth([&](Monitoring& m) {
                std::string samples;
                m.measurements().visitKept(m.keyAt(place, id), [&samples](const KeptSample& kept) {
                    samples += std::to_string(kept.sample.time) + ' ' + std::to_string(kept.sample.count) +
                               ' ' + std::to_string(kept.sample.value) + ' ' + std::to_string(kept.delivery) +
                               '\n';
                });
                return samples;
            });
        default:
            return doInBoth([isKept = !m_chance.once(4)](Monitoring& m) {
                isKept ? m.commit() : m.abandon();
                return std::string();
            });
        }
    }

    void commit()
    {
        doInBoth([](Monitoring& m) {
            m.commit();
            return std::string();
        });
    }

private:
    const std::vector<std::string> m_names{"W1", "W2"};
    const std::vector<std::string> m_depths{"", "2.5", "2.50", "+02.5", "3", "2.5m"};
    Chance m_chance{20151221};
    std::int64_t m_number = 0;
    Monitoring m_told{GetParam().makeData(), creating()};
    Monitoring m_untold{GetParam().makeData(), creating()};
};

TEST_P(Expectations, ChangeNoAnswer)
{
    commit();
    const int rounds = std::getenv("RK_TEST_LONG") != nullptr ? 100'000 : 3000;
    for (int round = 0; round < rounds && !HasFailure(); ++round) {
        doSomething();
        EXPECT_FALSE(HasFailure()) << "round " << round;
    }
}

RK_EVERY_STORE(Expectations);

} // namespace
} // namespace monitorservice::test
