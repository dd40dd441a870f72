#include "copy/ContentDigest.h"

namespace monitorservice {

namespace {

// Each piece begins with what it is.
enum class Piece : std::int64_t
{
    Category,
    Project,
    Token,
    Grant,
    Document,
    Notice,
    Point,
    Sample,
    Excess
};

std::int64_t codeOf(Piece piece)
{
    return static_cast<std::int64_t>(piece);
}

} // namespace

void ContentDigest::category(const std::string& name)
{
    m_checksum.add(codeOf(Piece::Category));
    m_checksum.add(name);
}

void ContentDigest::project(const Project& project)
{
    ++m_count.projects;
    m_checksum.add(codeOf(Piece::Project));
    m_checksum.add(project.id);
    m_checksum.add(project.name);
    m_checksum.add(project.timeZone);
    m_checksum.add(project.createdAt);
}

void ContentDigest::token(const Token& token, const std::string& sha256)
{
    ++m_count.tokens;
    m_checksum.add(codeOf(Piece::Token));
    m_checksum.add(token.id);
    m_checksum.add(token.owner);
    m_checksum.add(token.name);
    m_checksum.add(token.createdAt);
    add(token.expiresAt);
    add(token.revokedAt);
    m_checksum.add(sha256);
}

void ContentDigest::grant(const Grant& grant)
{
    m_checksum.add(codeOf(Piece::Grant));
    m_checksum.add(grant.id);
    m_checksum.add(grant.token);
    add(grant.project);
    add(grant.category);
    m_checksum.add(std::int64_t{grant.rights.bits()});
    m_checksum.add(grant.createdAt);
}

void ContentDigest::document(DocumentKind kind, const std::string& project, std::string_view text)
{
    m_count.add(kind);
    m_checksum.add(codeOf(Piece::Document));
    m_checksum.add(static_cast<std::int64_t>(kind));
    m_checksum.add(project);
    m_checksum.add(text);
}

void ContentDigest::notice(const Notice& notice)
{
    m_checksum.add(codeOf(Piece::Notice));
    m_checksum.add(notice.alarm);
    m_checksum.add(static_cast<std::int64_t>(notice.channel));
    m_checksum.add(notice.recipient);
    add(notice.due);
    m_checksum.add(notice.attempts);
    m_checksum.add(notice.told);
}

void ContentDigest::point(const std::string& project, const DeliveredTo& point)
{
    ++m_count.points;
    m_checksum.add(codeOf(Piece::Point));
    m_checksum.add(project);
    m_checksum.add(point.point.id);
    m_checksum.add(point.point.document);
    m_checksum.add(point.made);
    m_checksum.add(point.changed);
}

void ContentDigest::sample(const KeptSample& kept)
{
    ++m_count.samples;
    m_checksum.add(codeOf(Piece::Sample));
    m_checksum.add(kept.sample.time);
    m_checksum.add(std::int64_t{kept.sample.count});
    add(kept.sample.offsetMinutes);
    m_checksum.add(kept.sample.value);
    m_checksum.add(kept.sample.timeFlag);
    m_checksum.add(kept.delivery);
}

void ContentDigest::excess(const ReadingInExcess& reading)
{
    m_checksum.add(codeOf(Piece::Excess));
    m_checksum.add(reading.time);
    m_checksum.add(std::int64_t{reading.count});
    m_checksum.add(reading.alarm);
}

void ContentDigest::add(const std::optional<std::int64_t>& number)
{
    m_checksum.add(std::int64_t{number.has_value()});
    m_checksum.add(number.value_or(0));
}

void ContentDigest::add(const std::optional<std::string>& text)
{
    m_checksum.add(std::int64_t{text.has_value()});
    m_checksum.add(text.value_or(""));
}

} // namespace monitorservice
