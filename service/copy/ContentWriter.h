#pragma once

#include "copy/ContentCount.h"
#include "copy/StoreContent.h"
#include "time/LocalDays.h"

#include <map>
#include <optional>

namespace monitorservice {

/// Writes what it is given into another store, as it is.
class ContentWriter final : public ContentVisitor
{
public:
    /// The session must outlive the writer.
    explicit ContentWriter(Session& session) : m_session(session) {}

    void category(const std::string& name) override;
    void project(const Project& project) override;
    void token(const Token& token, const std::string& sha256) override;
    void grant(const Grant& grant) override;
    void document(DocumentKind kind, const std::string& project, std::string_view text) override;
    void notice(const Notice& notice) override;
    void point(const std::string& project, const DeliveredTo& point) override;
    void sample(const KeptSample& sample) override;
    void excess(const ReadingInExcess& reading) override;
    void pointEnds() override;

    const ContentCount& count() const { return m_count; }

private:
    // The point that samples are written of.
    struct Point
    {
        DeliveredTo from;
        std::int64_t key = 0;
        LocalDays* days = nullptr;
        std::optional<Instant> lastTime;
    };

    LocalDays& daysOf(const std::string& project);

    Session& m_session;
    ContentCount m_count;
    std::map<std::string, LocalDays> m_days; ///< of the projects
    Point m_point;
};

} // namespace monitorservice
