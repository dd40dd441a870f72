#include "delivery/DeliveryUndo.h"

#include "delivery/DeliveryRecord.h"
#include "delivery/DeliveryTrail.h"
#include "delivery/JudgementNews.h"
#include "delivery/PointDeletion.h"
#include "delivery/PointRevision.h"
#include "domain/DocumentReader.h"
#include "domain/SampleText.h"
#include "trail/AuditTrail.h"

#include <algorithm>
#include <charconv>
#include <utility>
#include <vector>

namespace monitorservice {

namespace {

// Gives a member the value of before if it is still what the delivery made it.
template <typename Member>
void putBack(Member& member, const Member& before, const Member& after)
{
    if (member == after) {
        member = before;
    }
}

std::optional<double> initialValueOf(const std::string& json)
{
    double value = 0;
    std::from_chars(json.data(), json.data() + json.size(), value);
    return json == "null" ? std::nullopt : std::optional(value);
}

std::string linksOf(const std::string& json)
{
    return DocumentReader("change", json).json("links");
}

PointLocation descriptionOf(const std::string& json)
{
    const DocumentReader document("change", json);
    PointLocation described;
    described.alias = document.text("alias");
    described.dataType = document.smallInteger("dataType");
    described.offsetDirection = document.text("offsetDirection");
    return described;
}

void putBackDescription(PointLocation& location, const Change& change)
{
    if (change.action == trailaction::initialValueChanged) {
        putBack(location.initialValue, initialValueOf(change.before), initialValueOf(change.after));
    } else if (change.action == trailaction::linksReplaced) {
        putBack(location.links, linksOf(change.before), linksOf(change.after));
    } else if (change.action == trailaction::pointChanged) {
        const PointLocation before = descriptionOf(change.before);
        const PointLocation after = descriptionOf(change.after);
        putBack(location.alias, before.alias, after.alias);
        putBack(location.dataType, before.dataType, after.dataType);
        putBack(location.offsetDirection, before.offsetDirection, after.offsetDirection);
    }
}

void putBackSamples(PointRevision& revision, const Change& change)
{
    const std::vector<Sample> samples = samplesIn(change.before);
    std::for_each(samples.rbegin(), samples.rend(),
                  [&revision](const Sample& sample) { revision.restore(sample); });
}

// Takes one delivery back, point by point.
class Undo
{
public:
    Undo(Session& session, const DataManage& dataManage, const History& history, const Author& author)
        : m_session(session), m_dataManage(dataManage), m_history(history), m_author(author),
          m_target(targetOf(session, dataManage.cell, dataManage.subCategory)),
          m_judgement(session, m_target.quantity, *m_target.days, author)
    {
    }

    Withdrawal run()
    {
        std::vector<DeliveredTo> points;
        m_session.measurements().visitDeliveredTo(
            m_dataManage.cell, m_dataManage.subCategory, m_history.number,
            [&points](const DeliveredTo& point) { points.push_back(point); });
        for (const DeliveredTo& point : points) {
            point.made == m_history.number ? removeMade(point.point) : revise(point.point);
        }
        takeBackRecord(m_session, m_dataManage, m_history.id, m_withdrawal.removed, m_author);
        m_withdrawal.alarms = finishAndTell(m_session, m_judgement).touchedAlarms();
        recordUndo();
        return std::move(m_withdrawal);
    }

private:
    void removeMade(const StoredPoint& point)
    {
        m_withdrawal.removed += fromDocument<PointLocation>(point.document).insertCount;
        ++m_withdrawal.removedPoints;
        removeWholePoint(m_session, m_target, point, m_author, m_judgement);
    }

    void revise(const StoredPoint& point)
    {
        PointRevision revision(m_session, m_target, point, m_author);
        std::vector<Sample> inserted;
        m_session.measurements().visitSamplesOf(
            point.key, m_history.number, [&inserted](const Sample& sample) { inserted.push_back(sample); });
        for (const Sample& sample : inserted) {
            revision.remove(sample);
        }
        // The latest first: what was changed twice ends as it was before both.
        for (const Change& change : changesOf(point.id)) {
            if (change.delivery != m_history.id) {
                continue;
            }
            if (change.action == trailaction::sampleCorrected) {
                putBackSamples(revision, change);
            } else {
                putBackDescription(revision.location(), change);
            }
        }
        if (!m_history.fileId.empty() && revision.location().fileId == m_history.fileId) {
            revision.location().fileId = fileBefore(point);
        }
        m_judgement.judge(revision.finish(m_history.number - 1));
        m_withdrawal.removed += revision.removed();
        m_withdrawal.restored += revision.restored();
    }

    // What deliveries changed of a point, the latest first.
    std::vector<Change> changesOf(const std::string& point) const
    {
        const Where where = Where::equals("subject", point);
        DocumentQuery query;
        query.project = m_dataManage.project;
        query.where = &where;
        query.order = {{"_id", true}};
        std::vector<Change> changes;
        m_session.documents(DocumentKind::Change).visit(query, [&changes](std::string_view document) {
            Change change = fromDocument<Change>(document);
            if (!change.delivery.empty()) {
                changes.push_back(std::move(change));
            }
        });
        return changes;
    }

    // That of the latest delivery before this one that changed the point and had a file.
    std::string fileBefore(const StoredPoint& point)
    {
        const std::vector<std::int64_t> numbers = m_session.measurements().deliveriesOf(point.key);
        const std::vector<Change> changes = changesOf(point.id);
        for (const History& history : deliveriesBefore()) {
            const bool hasChanged =
                std::count(numbers.begin(), numbers.end(), history.number) > 0 ||
                std::any_of(changes.begin(), changes.end(),
                            [&history](const Change& change) { return change.delivery == history.id; });
            if (hasChanged && !history.fileId.empty()) {
                return history.fileId;
            }
        }
        return {};
    }

    // The latest first.
    const std::vector<History>& deliveriesBefore()
    {
        if (m_before.empty()) {
            DocumentQuery query;
            query.project = m_dataManage.project;
            query.parent = m_dataManage.id;
            query.order = {{"_id", true}};
            m_session.documents(DocumentKind::History).visit(query, [this](std::string_view document) {
                m_before.push_back(fromDocument<History>(document));
            });
            m_before.erase(m_before.begin());
        }
        return m_before;
    }

    void recordUndo()
    {
        Change change;
        change.project = m_target.quantity.project;
        change.category = m_target.quantity.category;
        change.cell = m_target.quantity.cell;
        change.subCategory = m_target.quantity.subCategory;
        change.action = "delivery.undone";
        change.subject = m_history.id;
        change.name = m_target.quantity.cellName;
        change.before = toDocument(m_history);
        change.author = m_author;
        record(m_session, std::move(change));
    }

    Session& m_session;
    const DataManage& m_dataManage;
    const History& m_history;
    const Author& m_author;
    DeliveryTarget m_target;
    Judgement m_judgement;
    Withdrawal m_withdrawal;
    std::vector<History> m_before;
};

} // namespace

Withdrawal undoDelivery(Session& session, const DataManage& dataManage, const History& history,
                        const std::string& owner)
{
    const Author author{owner, isoText(session.now())};
    return Undo(session, dataManage, history, author).run();
}

} // namespace monitorservice
