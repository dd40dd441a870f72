#pragma once

#include "copy/Checksum.h"
#include "copy/ContentCount.h"
#include "copy/StoreContent.h"

namespace monitorservice {

/// Counts what it is given, and sums it up so that what is the same has the same checksum, whatever store it
/// is in.
class ContentDigest final : public ContentVisitor
{
public:
    void category(const std::string& name) override;
    void project(const Project& project) override;
    void token(const Token& token, const std::string& sha256) override;
    void grant(const Grant& grant) override;
    void document(DocumentKind kind, const std::string& project, std::string_view text) override;
    void notice(const Notice& notice) override;
    void point(const std::string& project, const DeliveredTo& point) override;
    void sample(const KeptSample& sample) override;
    void excess(const ReadingInExcess& reading) override;
    void pointEnds() override {}

    const ContentCount& count() const { return m_count; }
    /// As 64 hexadecimal digits; nothing more may be given.
    std::string checksum() { return m_checksum.finish(); }

private:
    void add(const std::optional<std::int64_t>& number);
    void add(const std::optional<std::string>& text);

    ContentCount m_count;
    Checksum m_checksum;
};

} // namespace monitorservice
