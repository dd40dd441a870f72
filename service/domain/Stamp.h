#pragma once

#include <string>

namespace monitorservice {

/// Who changes what is stored, and when.
struct Author
{
    std::string name;
    std::string time; ///< as isoText() writes it
};

/// Who made a document, who changed it last, and when: members "createdAt", "createdBy", "updatedAt",
/// "updatedBy".
struct Stamp
{
    std::string createdAt; ///< times as isoText() writes them
    std::string createdBy;
    std::string updatedAt;
    std::string updatedBy;

    /// Of a new document.
    static Stamp of(const Author& author);

    /// Notes a change. A clock that was set back does not make a change older than the one before.
    void change(const Author& author);
};

} // namespace monitorservice
