#include "copy/ContentWriter.h"

#include "copy/DocumentMembers.h"
#include "store/StoreError.h"

namespace monitorservice {

void ContentWriter::category(const std::string& name)
{
    m_session.categories().add(name);
}

void ContentWriter::project(const Project& project)
{
    ++m_count.projects;
    m_session.projects().insert(project);
}

void ContentWriter::token(const Token& token, const std::string& sha256)
{
    ++m_count.tokens;
    m_session.tokens().insert(token, sha256);
}

void ContentWriter::grant(const Grant& grant)
{
    m_session.grants().add(grant);
}

void ContentWriter::document(DocumentKind kind, const std::string& project, std::string_view text)
{
    m_count.add(kind);
    m_session.documents(kind).insert(project, memberOf(text, "_id"), std::string(text));
}

void ContentWriter::notice(const Notice& notice)
{
    m_session.outbox().note(notice.alarm, notice.channel, notice.recipient);
    m_session.outbox().update(notice);
}

void ContentWriter::point(const std::string& project, const DeliveredTo& point)
{
    ++m_count.points;
    m_point = {
        point,
        m_session.measurements().insertPoint(project, point.point.id, point.point.document, point.made),
        &daysOf(project), std::nullopt};
}

void ContentWriter::sample(const KeptSample& kept)
{
    ++m_count.samples;
    m_session.measurements().insertSample(m_point.key, m_point.days->periodOf(kept.sample.time), kept.sample,
                                          kept.delivery);
    m_point.lastTime = kept.sample.time;
}

void ContentWriter::excess(const ReadingInExcess& reading)
{
    m_session.excesses().insert(m_point.key, reading);
}

void ContentWriter::pointEnds()
{
    if (m_point.from.changed != m_point.from.made) {
        m_session.measurements().replacePoint(m_point.key, m_point.from.point.document, m_point.lastTime,
                                              m_point.from.changed);
    }
}

LocalDays& ContentWriter::daysOf(const std::string& project)
{
    const auto known = m_days.find(project);
    if (known != m_days.end()) {
        return known->second;
    }
    const std::optional<Project> found = m_session.projects().find(project);
    if (!found) {
        throw StoreError(StoreFailure::Conflict, "there is no project " + project);
    }
    return m_days.emplace(project, LocalDays(found->timeZone)).first->second;
}

} // namespace monitorservice
