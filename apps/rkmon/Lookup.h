#pragma once

#include "Session.h"

#include <QList>
#include <QSet>
#include <QString>
#include <RKMonitoring.h>
#include <RKMonitoringSubCategory.h>

#include <optional>

namespace CLI {
class App;
class Option;
} // namespace CLI

/// Finding what the user names.
namespace lookup {

/// Adds --cell.
CLI::Option* addCellOption(CLI::App& app, QString& cell);

/// Whether `text` is an identifier as the service gives it: 24 hexadecimal digits.
bool isIdentifier(const QString& text);

/// The monitoring of exactly this name; nothing when there is none, a Failure when there are several.
std::optional<RKMonitoring> monitoringNamed(Session& session, const QString& name);

/// The monitoring with this identifier or exactly this name. Throws a Failure when there is none or several.
RKMonitoring monitoring(Session& session, const QString& text);

QList<RKMonitoringSubCategory> subCategories(Session& session, const QString& category);

/// Name of a monitoring; a request only for one that the library has not read yet. Empty for an empty
/// identifier.
QString monitoringName(Session& session, const QString& id);

/// Makes the names of several monitorings known by one request, as far as the service gives them in one.
void readMonitoringNames(Session& session, const QSet<QString>& ids);

/// Name of a sub-category, in the same way.
QString subCategoryName(Session& session, const QString& id);

/// The one of `known` with this identifier, name or alias; nothing when there is none, a Failure when
/// several.
std::optional<RKMonitoringSubCategory> subCategoryAmong(const QList<RKMonitoringSubCategory>& known,
                                                        const QString& text);

/// The sub-category of `category` with this identifier, name or alias. Throws a Failure when there is none.
RKMonitoringSubCategory subCategory(Session& session, const QString& category, const QString& text);

} // namespace lookup
