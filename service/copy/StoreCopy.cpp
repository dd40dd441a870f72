#include "copy/StoreCopy.h"

#include "copy/Checksum.h"
#include "copy/ContentDigest.h"
#include "copy/ContentWriter.h"
#include "copy/DocumentMembers.h"
#include "copy/StoreContent.h"

#include <cstddef>
#include <memory>
#include <utility>

namespace monitorservice {

namespace {

// Bytes of the audit trail that are written in one transaction.
constexpr std::size_t largestBatch = 8UL * 1024 * 1024;

bool isEmpty(const Session& session)
{
    return session.categories().list().empty() && session.projects().list().empty() &&
           session.tokens().list().empty() && trailLength(session) == 0;
}

std::string nameOf(const Session& session, const Project& project, const std::string& cell)
{
    const std::optional<StoredDocument> found = session.documents(DocumentKind::Cell).find(cell);
    return "monitoring \"" + (found ? memberOf(found->text, "name") : cell) + "\" of project \"" +
           project.name + '"';
}

class StoreCopy
{
public:
    StoreCopy(Store& from, Store& to, const CopyProgress& progress)
        : m_to(to), m_progress(progress), m_source(from.read()), m_projects(m_source->projects().list())
    {
    }

    CopiedContent run()
    {
        begin();
        for (const Project& project : m_projects) {
            for (const std::string& cell : monitoringsOf(*m_source, project.id)) {
                copyMonitoring(project, cell);
            }
        }
        copyTrail();
        m_progress("all is written, and is read again to be compared");
        CopiedContent content = compare();
        finish();
        return content;
    }

private:
    // What a part of a store comes to.
    struct Sum
    {
        ContentCount count;
        std::string checksum;
    };

    // Gives a visitor that part of what a session holds.
    using Part = std::function<void(const Session& session, ContentVisitor& visitor)>;

    void begin()
    {
        const auto session = m_to.write();
        if (session->isUnfinished()) {
            return;
        }
        if (!isEmpty(*session)) {
            throw CopyError("there are data already where the copy is to be made");
        }
        ContentWriter writer(*session);
        visitBase(*m_source, writer);
        session->setUnfinished(true);
        session->commit();
    }

    void copyMonitoring(const Project& project, const std::string& cell)
    {
        const auto session = m_to.write();
        if (session->documents(DocumentKind::Cell).find(cell)) {
            return;
        }
        ContentWriter writer(*session);
        visitMonitoring(*m_source, project.id, cell, writer);
        session->commit();
        ContentCount count = writer.count();
        count.monitorings = 0; // it is named
        m_progress(nameOf(*m_source, project, cell) + ": " + toText(count));
    }

    // Entries come in the order in which they were made, so that those there are the first ones.
    void copyTrail()
    {
        auto session = m_to.write();
        const std::uint64_t held = trailLength(*session);
        std::size_t batch = 0;
        visitTrail(*m_source, held, [&](const std::string& project, std::string_view text) {
            ContentWriter(*session).document(DocumentKind::Change, project, text);
            batch += text.size();
            if (batch > largestBatch) {
                session->commit();
                session.reset();
                session = m_to.write();
                batch = 0;
            }
        });
        session->commit();
        session.reset();
        m_progress("the audit trail: " + std::to_string(trailLength(*m_source)) + " entries");
    }

    CopiedContent compare()
    {
        const auto target = m_to.read();
        CopiedContent content;
        Checksum all;
        const auto compared = [&](const std::string& name, const Part& part) {
            const Sum sum = compare(*target, name, part);
            content.count += sum.count;
            all.add(sum.checksum);
        };
        compared("what all projects share", visitBase);
        for (const Project& project : m_projects) {
            const std::vector<std::string> cells = monitoringsOf(*m_source, project.id);
            if (monitoringsOf(*target, project.id) != cells) {
                throw CopyError("the copy has other monitorings in project \"" + project.name + '"' + remedy);
            }
            for (const std::string& cell : cells) {
                compared(nameOf(*m_source, project, cell), [&](const Session& one, ContentVisitor& visitor) {
                    visitMonitoring(one, project.id, cell, visitor);
                });
            }
        }
        compared("the audit trail", [](const Session& session, ContentVisitor& visitor) {
            visitTrail(session, 0, [&visitor](const std::string& project, std::string_view text) {
                visitor.document(DocumentKind::Change, project, text);
            });
        });
        content.checksum = all.finish();
        return content;
    }

    Sum compare(const Session& target, const std::string& name, const Part& part) const
    {
        const Sum held = sumOf(*m_source, part);
        const Sum copied = sumOf(target, part);
        if (held.checksum != copied.checksum) {
            throw CopyError("the copy differs in " + name + ": it has " + toText(copied.count) +
                            " there, of " + toText(held.count) + remedy);
        }
        return held;
    }

    static Sum sumOf(const Session& session, const Part& part)
    {
        ContentDigest digest;
        part(session, digest);
        return {digest.count(), digest.checksum()};
    }

    void finish()
    {
        const auto session = m_to.write();
        session->skipIdentifiers(m_source->lastIdentifier());
        session->setUnfinished(false);
        session->commit();
    }

    static constexpr const char* remedy =
        "; was something written there since the copy was begun? Copy into an empty place";

    Store& m_to;
    const CopyProgress& m_progress;
    std::unique_ptr<const Session> m_source; // one moment, however long it takes
    std::vector<Project> m_projects;
};

} // namespace

CopiedContent copyStore(Store& from, Store& to, const CopyProgress& progress)
{
    return StoreCopy(from, to, progress).run();
}

} // namespace monitorservice
