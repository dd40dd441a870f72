#pragma once

#include "domain/Alarm.h"
#include "domain/AlarmDetail.h"
#include "domain/Cell.h"
#include "domain/SubCategory.h"
#include "notify/NoteNews.h"
#include "store/OpenStore.h"

#include <atomic>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace monitorservice::test {

/// A point that is beyond a total limit of 10 by so much.
inline AlarmDetail excessOf(const std::string& point, double total, double daily = 0)
{
    AlarmDetail detail;
    detail.point = point;
    detail.total = std::to_string(10 + total);
    detail.totalExcess = total;
    detail.totalLimit = 10;
    detail.dailyExcess = daily;
    detail.dayLimit = daily > 0 ? 2 : 0;
    detail.time = "2015-12-21T06:30:00.000Z";
    return detail;
}

/// A store with a monitoring "c1" named "Turm 1" and a sub-category "s1", whose time stands until it is
/// moved.
class AlarmedSite
{
public:
    using Recipients = std::vector<std::string>;

    AlarmedSite(std::string location, const Recipients& alarmTo,
                std::set<Channel> channels = {Channel::Mail, Channel::Webhook})
        : m_location(std::move(location)), m_channels(std::move(channels))
    {
        reopen();
        write([&alarmTo](Session& session) {
            session.projects().insert({"p1", "Hafentunnel", "UTC", 1});
            session.categories().add("Settlement");
            session.documents(DocumentKind::Cell).insert("p1", "c1", cellText(alarmTo));
            const SubCategory subCategory{"s1", "p1", "Bodenhöhe", "Settlement", ""};
            session.documents(DocumentKind::SubCategory).insert("p1", "s1", toDocument(subCategory));
        });
    }

    Store& store() { return *m_store; }

    /// As the next process would.
    void reopen()
    {
        m_store.reset();
        m_store = openedAgain();
    }

    /// As another process would beside this one.
    std::unique_ptr<Store> openedAgain()
    {
        StoreOptions options;
        options.createIfMissing = true;
        options.channels = m_channels;
        options.clock = [this] {
            return m_now.load();
        };
        return openStore(m_location, options);
    }

    Instant now() const { return m_now; }
    void pass(Instant milliseconds) { m_now += milliseconds; }

    template <typename Action>
    void write(const Action& action)
    {
        const auto session = m_store->write();
        action(*session);
        session->commit();
    }

    /// Makes the alarm, or gives it these details in place of those it has, and notes that.
    void alarm(const std::string& id, const std::vector<AlarmDetail>& details)
    {
        write([&](Session& session) {
            if (!session.documents(DocumentKind::Alarm).find(id)) {
                session.documents(DocumentKind::Alarm).insert("p1", id, alarmText(id));
            }
            removeDetails(session, id);
            for (AlarmDetail detail : details) {
                detail.id = session.newIdentifier();
                detail.alarm = id;
                detail.stamp = stamp();
                session.documents(DocumentKind::AlarmDetail).insert("p1", detail.id, toDocument(detail));
            }
            noteNews(session, id);
        });
    }

    void removeAlarm(const std::string& id)
    {
        write([&id](Session& session) {
            removeDetails(session, id);
            session.documents(DocumentKind::Alarm).remove("p1", id);
        });
    }

    void setRecipients(const Recipients& alarmTo)
    {
        write([&alarmTo](Session& session) {
            session.documents(DocumentKind::Cell).replace("p1", "c1", cellText(alarmTo));
        });
    }

private:
    static Stamp stamp() { return Stamp::of({"Ada", "2015-12-21T06:30:00.000Z"}); }

    static std::string cellText(const Recipients& alarmTo)
    {
        Cell cell;
        cell.id = "c1";
        cell.project = "p1";
        cell.name = "Turm 1";
        cell.category = "Settlement";
        cell.alarmTo = alarmTo;
        cell.stamp = stamp();
        return toDocument(cell);
    }

    static std::string alarmText(const std::string& id)
    {
        Alarm alarm;
        alarm.id = id;
        alarm.project = "p1";
        alarm.cell = "c1";
        alarm.cellName = "Turm 1";
        alarm.subCategory = "s1";
        alarm.raisedAt = "2015-12-21T06:30:00.123Z";
        alarm.stamp = stamp();
        return toDocument(alarm);
    }

    static void removeDetails(Session& session, const std::string& alarm)
    {
        std::vector<std::string> details;
        DocumentQuery query;
        query.project = "p1";
        query.parent = alarm;
        session.documents(DocumentKind::AlarmDetail).visit(query, [&details](std::string_view document) {
            details.push_back(fromDocument<AlarmDetail>(document).id);
        });
        for (const std::string& detail : details) {
            session.documents(DocumentKind::AlarmDetail).remove("p1", detail);
        }
    }

    std::string m_location;
    std::set<Channel> m_channels;
    std::atomic<Instant> m_now{1450679400123}; // 2015-12-21T06:30:00.123Z
    std::unique_ptr<Store> m_store;
};

} // namespace monitorservice::test
