#pragma once

#include "RequestFailure.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

/// What the bearer of the token may do in one project, or in the whole service.
struct HeldRights
{
    std::optional<QString> project;  ///< identifier; nothing: it is held in the whole service
    std::optional<QString> category; ///< nothing: in every category
    QStringList rights; ///< of "read", "create", "edit", "delete"; "administer" in the whole service
};

/// Which service it is, what it can beyond the operations that every one has, and who asks.
struct ServiceAbout
{
    QString version;
    QStringList extensions; ///< names; a later service may have some that are not known here
    QString owner;          ///< of the token: the author of what is written with it
    QList<HeldRights> rights;
};

namespace extensions {

/// GET about; nothing when the service has no such document. Throws a Failure when it cannot be asked, or its
/// document is not what it should be.
std::optional<ServiceAbout> readAbout(const RequestContext& context);

} // namespace extensions
