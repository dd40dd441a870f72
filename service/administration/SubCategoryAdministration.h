#pragma once

#include "administration/Administered.h"
#include "domain/SubCategory.h"
#include "store/Session.h"

#include <cstdint>
#include <optional>
#include <string>

namespace monitorservice {

/// The most decimal places that values are shown with.
constexpr std::int32_t mostDecimals = 15;

/// What is said of a sub-category; what is not said stays as it is.
struct SubCategoryDescription
{
    std::optional<std::string> name;
    std::optional<std::string> alias; ///< empty: none
    std::optional<SubCategoryKind> kind;
    std::optional<std::string> unit;                     ///< empty: none
    std::optional<std::optional<std::int32_t>> decimals; ///< nothing within: values are shown as they are

    bool isEmpty() const { return !name && !alias && !kind && !unit && !decimals; }
};

/// Makes, changes and removes sub-categories, in a session that the caller commits. The audit trail tells of
/// it, as of project and category; a change that changes nothing leaves no entry. Every member throws
/// AdministrationError.
class SubCategoryAdministration
{
public:
    /// The session must outlive the object. `author` is who the trail names.
    SubCategoryAdministration(Session& session, std::string author);

    /// What is not said of it is empty, of kind other, and without decimal places; a name is needed.
    Administered<SubCategory> create(const std::string& project, const std::string& category,
                                     const SubCategoryDescription& description);
    Administered<SubCategory> change(const std::string& id, const SubCategoryDescription& description);
    /// Removes a sub-category that nothing uses; gives what it was.
    SubCategory remove(const std::string& id);

private:
    Session& m_session;
    std::string m_author;
};

} // namespace monitorservice
