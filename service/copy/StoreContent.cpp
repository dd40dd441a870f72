#include "copy/StoreContent.h"

#include "copy/DocumentMembers.h"

#include <limits>

namespace monitorservice {

namespace {

using Number = std::numeric_limits<std::int64_t>;

DocumentQuery everyEntry()
{
    DocumentQuery query;
    query.everyProject = true;
    return query;
}

// The identifiers of the documents of a kind, all of a project or those of one parent.
std::vector<std::string> identifiersOf(const Session& session, const std::string& project, DocumentKind kind,
                                       const std::optional<std::string>& parent = std::nullopt)
{
    DocumentQuery query;
    query.project = project;
    query.parent = parent;
    std::vector<std::string> identifiers;
    session.documents(kind).visit(
        query, [&identifiers](std::string_view text) { identifiers.push_back(memberOf(text, "_id")); });
    return identifiers;
}

// Gives what one monitoring has.
class MonitoringContent
{
public:
    MonitoringContent(const Session& session, const std::string& project, const std::string& cell,
                      ContentVisitor& visitor)
        : m_session(session), m_project(project), m_cell(cell), m_visitor(visitor)
    {
    }

    // What is referred to comes before what refers to it.
    void visit()
    {
        DocumentQuery self;
        self.project = m_project;
        self.identifiers = std::vector{m_cell};
        visitDocuments(DocumentKind::Cell, self);
        visitDocumentsOf(m_cell, DocumentKind::Group);
        visitDocumentsOf(m_cell, DocumentKind::DataManage);
        for (const std::string& dataManage :
             identifiersOf(m_session, m_project, DocumentKind::DataManage, m_cell)) {
            visitDocumentsOf(dataManage, DocumentKind::History);
        }
        visitDocumentsOf(m_cell, DocumentKind::Alarm);
        for (const std::string& alarm : identifiersOf(m_session, m_project, DocumentKind::Alarm, m_cell)) {
            visitAlarm(alarm);
        }
        for (const std::string& subCategory :
             identifiersOf(m_session, m_project, DocumentKind::SubCategory)) {
            visitPoints(subCategory);
        }
    }

private:
    void visitDocuments(DocumentKind kind, const DocumentQuery& query)
    {
        m_session.documents(kind).visit(
            query, [this, kind](std::string_view text) { m_visitor.document(kind, m_project, text); });
    }

    void visitDocumentsOf(const std::string& parent, DocumentKind kind)
    {
        DocumentQuery query;
        query.project = m_project;
        query.parent = parent;
        visitDocuments(kind, query);
    }

    void visitAlarm(const std::string& alarm)
    {
        visitDocumentsOf(alarm, DocumentKind::AlarmDetail);
        for (const std::string& detail :
             identifiersOf(m_session, m_project, DocumentKind::AlarmDetail, alarm)) {
            visitDocumentsOf(detail, DocumentKind::AlarmDepth);
        }
        for (const Notice& notice : m_session.outbox().ofAlarm(alarm)) {
            m_visitor.notice(notice);
        }
    }

    void visitPoints(const std::string& subCategory)
    {
        std::vector<DeliveredTo> points;
        m_session.measurements().visitDeliveredTo(
            m_cell, subCategory, Number::min(),
            [&points](const DeliveredTo& point) { points.push_back(point); });
        for (const DeliveredTo& point : points) {
            m_visitor.point(m_project, point);
            m_session.measurements().visitKept(
                point.point.key, [this](const KeptSample& sample) { m_visitor.sample(sample); });
            m_session.excesses().visit(point.point.key, Number::min(), Number::max(),
                                       [this](const ReadingInExcess& one) { m_visitor.excess(one); });
            m_visitor.pointEnds();
        }
    }

    const Session& m_session;
    const std::string& m_project;
    const std::string& m_cell;
    ContentVisitor& m_visitor;
};

} // namespace

void visitBase(const Session& session, ContentVisitor& visitor)
{
    for (const std::string& category : session.categories().list()) {
        visitor.category(category);
    }
    for (const Project& project : session.projects().list()) {
        visitor.project(project);
        DocumentQuery query;
        query.project = project.id;
        session.documents(DocumentKind::SubCategory).visit(query, [&](std::string_view text) {
            visitor.document(DocumentKind::SubCategory, project.id, text);
        });
    }
    for (const Token& token : session.tokens().list()) {
        visitor.token(token, session.tokens().secretHash(token.id));
    }
    for (const Grant& grant : session.grants().list()) {
        visitor.grant(grant);
    }
}

std::vector<std::string> monitoringsOf(const Session& session, const std::string& project)
{
    return identifiersOf(session, project, DocumentKind::Cell);
}

void visitMonitoring(const Session& session, const std::string& project, const std::string& cell,
                     ContentVisitor& visitor)
{
    MonitoringContent(session, project, cell, visitor).visit();
}

void visitTrail(const Session& session, std::uint64_t skip, const EntryVisitor& visitor)
{
    DocumentQuery query = everyEntry();
    query.skip = skip;
    session.documents(DocumentKind::Change).visit(query, [&visitor](std::string_view text) {
        visitor(memberOf(text, "projectId"), text);
    });
}

std::uint64_t trailLength(const Session& session)
{
    return session.documents(DocumentKind::Change).count(everyEntry());
}

} // namespace monitorservice
