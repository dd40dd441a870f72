#include "alarm/AlarmBook.h"

#include "alarm/AlarmDepths.h"
#include "alarm/DecimalText.h"
#include "json/JsonText.h"
#include "store/StoreError.h"
#include "trail/AuditTrail.h"

#include <algorithm>
#include <utility>

namespace monitorservice {

namespace {

bool isOfSameReading(const AlarmDetail& left, const AlarmDetail& right)
{
    return left.time == right.time && left.count == right.count && left.depth == right.depth &&
           left.group == right.group;
}

std::string detailsJson(const std::vector<AlarmDetail>& details)
{
    JsonArrayWriter array;
    for (const AlarmDetail& detail : details) {
        array.json(toDocument(detail));
    }
    return array.finish();
}

} // namespace

const std::string& AlarmBook::today()
{
    if (!m_today.empty()) {
        return m_today;
    }
    const Instant now = m_session.now();
    const std::string day = isoText(now, m_days.offsetMinutesAt(now)).substr(0, 10);
    if (const std::optional<std::string> found = findToday(day)) {
        return m_today = *found;
    }
    Alarm alarm;
    alarm.id = m_session.newIdentifier();
    alarm.project = m_quantity.project;
    alarm.cell = m_quantity.cell;
    alarm.cellName = m_quantity.cellName;
    alarm.subCategory = m_quantity.subCategory;
    alarm.raisedAt = m_author.time;
    alarm.day = day;
    alarm.stamp = Stamp::of(m_author);
    m_session.documents(DocumentKind::Alarm).insert(alarm.project, alarm.id, toDocument(alarm));
    return m_today = alarm.id;
}

// The newest first: nearly always it is that or none.
std::optional<std::string> AlarmBook::findToday(const std::string& day) const
{
    const Where where = Where::parse(
        JsonObjectWriter().text("subCategoryId", m_quantity.subCategory).text("alarmDay", day).finish());
    DocumentQuery query;
    query.project = m_quantity.project;
    query.parent = m_quantity.cell;
    query.where = &where;
    query.order = {{"_id", true}};
    query.limit = 1;
    std::optional<std::string> found;
    m_session.documents(DocumentKind::Alarm).visit(query, [&found](std::string_view document) {
        found = fromDocument<Alarm>(document).id;
    });
    return found;
}

AlarmBook::Page& AlarmBook::page(const std::string& alarm)
{
    const auto [found, isNew] = m_pages.try_emplace(alarm);
    if (isNew) {
        const std::optional<StoredDocument> stored = m_session.documents(DocumentKind::Alarm).find(alarm);
        if (!stored) {
            throw StoreError(StoreFailure::InputOutput, "the alarm of a reading in excess is missing");
        }
        found->second.alarm = fromDocument<Alarm>(stored->text);
    }
    return found->second;
}

AlarmDetail AlarmBook::detailOf(const Excess& excess) const
{
    const Group& group = excess.group->group;
    AlarmDetail detail;
    detail.point = excess.point->name;
    detail.total = decimalText(excess.variation.total);
    detail.daily = excess.variation.daily ? decimalText(*excess.variation.daily) : std::string();
    detail.totalExcess = excess.variation.totalExcess;
    detail.dailyExcess = excess.variation.dailyExcess;
    detail.isInclinometer = m_quantity.kind == SubCategoryKind::Inclinometer;
    detail.count = excess.reading.count;
    detail.time = isoText(excess.reading.time, excess.reading.offsetMinutes);
    detail.depth = excess.point->depth;
    detail.raisedAt = m_author.time;
    detail.value = excess.reading.value;
    detail.reference = excess.point->reference;
    detail.unit = m_quantity.unit;
    detail.group = group.id;
    detail.groupName = group.name;
    detail.totalLimit = group.totalVariation;
    detail.dayLimit = group.dayVariation;
    detail.totalSide = group.totalSide;
    detail.daySide = group.daySide;
    detail.dayVariationType = group.dayVariationType;
    return detail;
}

std::vector<AlarmDetail> AlarmBook::detailsOf(const std::string& alarm, const std::string& name) const
{
    const Where where = Where::equals("pointName", name);
    DocumentQuery query;
    query.project = m_quantity.project;
    query.parent = alarm;
    query.where = &where;
    std::vector<AlarmDetail> details;
    m_session.documents(DocumentKind::AlarmDetail).visit(query, [&details](std::string_view document) {
        details.push_back(fromDocument<AlarmDetail>(document));
    });
    return details;
}

// Gives those that stay what is theirs already, and those that are new the place of one that goes. What is
// left in `held` goes for good.
std::vector<AlarmDetail> AlarmBook::keepKnown(const std::vector<AlarmDetail>& worst,
                                              std::vector<AlarmDetail>& held) const
{
    std::vector<AlarmDetail> kept = worst;
    for (AlarmDetail& detail : kept) {
        const auto same = std::find_if(held.begin(), held.end(), [&detail](const AlarmDetail& one) {
            return isOfSameReading(one, detail);
        });
        detail.id.clear();
        if (same != held.end()) {
            detail.id = same->id;
            detail.raisedAt = same->raisedAt;
            detail.stamp = same->stamp;
            held.erase(same);
        }
    }
    for (AlarmDetail& detail : kept) {
        if (detail.id.empty() && !held.empty()) {
            detail.id = held.front().id;
            detail.stamp = held.front().stamp;
            held.erase(held.begin());
        }
    }
    return kept;
}

void AlarmBook::update(const std::string& alarm, const std::string& name,
                       const std::vector<AlarmDetail>& worst,
                       const std::vector<std::shared_ptr<const JudgedPoint>>& points, std::size_t withdrawn)
{
    const std::vector<AlarmDetail> before = detailsOf(alarm, name);
    std::vector<AlarmDetail> gone = before;
    std::vector<AlarmDetail> after = keepKnown(worst, gone);
    Page& found = page(alarm);
    for (AlarmDetail& detail : after) {
        detail.alarm = alarm;
        std::vector<AlarmDepth> depths = depthsOf(m_session, m_days, detail, points);
        detail.hasDepths = depths.size() > 1 || (detail.isInclinometer && !detail.depth.empty());
        depths.resize(detail.hasDepths ? depths.size() : 0);
        found.changed = write(detail, depths) || found.changed;
    }
    for (const AlarmDetail& detail : gone) {
        remove(detail);
        found.changed = true;
    }
    found.alarm.pointCount += (after.empty() ? 0 : 1) - (before.empty() ? 0 : 1);
    if (withdrawn > 0) {
        recordWithdrawal(alarm, name, withdrawn, before, after);
    }
}

// Gives whether anything is different from before.
bool AlarmBook::write(AlarmDetail& detail, const std::vector<AlarmDepth>& depths)
{
    Documents& documents = m_session.documents(DocumentKind::AlarmDetail);
    bool changed = detail.id.empty();
    if (changed) {
        detail.id = m_session.newIdentifier();
        detail.stamp = Stamp::of(m_author);
        documents.insert(m_quantity.project, detail.id, toDocument(detail));
    } else if (toDocument(detail) != documents.find(detail.id)->text) {
        detail.stamp.change(m_author);
        documents.replace(m_quantity.project, detail.id, toDocument(detail));
        changed = true;
    }
    return replaceDepths(m_session, m_quantity.project, detail.id, depths) || changed;
}

void AlarmBook::remove(const AlarmDetail& detail)
{
    replaceDepths(m_session, m_quantity.project, detail.id, {});
    m_session.documents(DocumentKind::AlarmDetail).remove(m_quantity.project, detail.id);
}

void AlarmBook::recordWithdrawal(const std::string& alarm, const std::string& name, std::size_t withdrawn,
                                 const std::vector<AlarmDetail>& before,
                                 const std::vector<AlarmDetail>& after)
{
    Change change;
    change.project = m_quantity.project;
    change.category = m_quantity.category;
    change.cell = m_quantity.cell;
    change.subCategory = m_quantity.subCategory;
    change.action = "alarm.withdrawn";
    change.subject = alarm;
    change.name = name;
    change.before = JsonObjectWriter()
                        .integer("readingsWithdrawn", static_cast<std::int64_t>(withdrawn))
                        .json("details", detailsJson(before))
                        .finish();
    change.after = JsonObjectWriter().json("details", detailsJson(after)).finish();
    change.author = m_author;
    record(m_session, std::move(change));
}

AlarmBook::Closed AlarmBook::close()
{
    Documents& documents = m_session.documents(DocumentKind::Alarm);
    Closed closed;
    for (auto& [id, page] : m_pages) {
        if (!page.changed) {
            continue;
        }
        if (page.alarm.pointCount == 0) {
            documents.remove(m_quantity.project, id);
            closed.removed.push_back(id);
            continue;
        }
        page.alarm.stamp.change(m_author);
        documents.replace(m_quantity.project, id, toDocument(page.alarm));
        closed.changed.push_back(id);
    }
    return closed;
}

} // namespace monitorservice
