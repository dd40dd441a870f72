#include "notify/Notification.h"

#include "access/Secret.h"
#include "domain/Cell.h"
#include "domain/SubCategory.h"
#include "notify/Signature.h"

#include <algorithm>

namespace monitorservice {

namespace {

template <typename Document>
std::optional<Document> read(const Session& session, DocumentKind kind, const std::string& id)
{
    const std::optional<StoredDocument> stored = session.documents(kind).find(id);
    return stored ? std::optional(fromDocument<Document>(stored->text)) : std::nullopt;
}

bool isToBeTold(const Cell& cell, const Notice& notice)
{
    return notice.channel == Channel::Webhook ||
           std::count(cell.alarmTo.begin(), cell.alarmTo.end(), notice.recipient) > 0;
}

std::vector<AlarmDetail> detailsOf(const Session& session, const Alarm& alarm)
{
    std::vector<AlarmDetail> details;
    DocumentQuery query;
    query.project = alarm.project;
    query.parent = alarm.id;
    session.documents(DocumentKind::AlarmDetail).visit(query, [&details](std::string_view document) {
        details.push_back(fromDocument<AlarmDetail>(document));
    });
    return details;
}

std::string identifierOf(const Notice& notice, const News& news)
{
    constexpr std::size_t digits = 16;
    const std::string content = notice.recipient + '\n' + notice.told + '\n' + toText(news.told);
    return notice.alarm + '.' + hexadecimal(sha256(content)).substr(0, digits);
}

} // namespace

std::optional<Notification> notificationOf(const Session& session, const Notice& notice)
{
    const auto alarm = read<Alarm>(session, DocumentKind::Alarm, notice.alarm);
    if (!alarm) {
        return std::nullopt;
    }
    const auto cell = read<Cell>(session, DocumentKind::Cell, alarm->cell);
    if (!cell || !isToBeTold(*cell, notice)) {
        return std::nullopt;
    }
    const auto subCategory = read<SubCategory>(session, DocumentKind::SubCategory, alarm->subCategory);
    const std::optional<Project> project = session.projects().find(alarm->project);
    News news = newsOf(detailsOf(session, *alarm), toldFrom(notice.told));
    const std::string id = identifierOf(notice, news);
    return Notification{notice.recipient,
                        project ? project->name : std::string(),
                        subCategory ? subCategory->name : std::string(),
                        *alarm,
                        std::move(news),
                        session.now(),
                        id};
}

} // namespace monitorservice
