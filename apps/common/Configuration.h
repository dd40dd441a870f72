#pragma once

#include "Failure.h"

#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>

/// Where the service is and who asks.
struct Configuration
{
    /// The service's base address, as in http://127.0.0.1:8600/.
    QString baseApi;
    /// Identifier of the project; may be empty, which the commands that need one refuse.
    QString project;
    /// Name of the project where that was given instead; the service knows the identifier.
    QString projectName;
    QString token;
    /// File that the token came from.
    QString tokenFile;
    /// Longest time for one request; unset: the transport's own.
    std::optional<std::chrono::milliseconds> deadline;
    /// Certificates to trust instead of the system's; empty: the system's.
    QString caFile;
    /// The configuration file, which need not be there, and its profile in use; empty: none is.
    QString configFile;
    QString profile;
    /// What the user should know though it stops nothing.
    QStringList warnings;
};

/// What the user said of the configuration when starting the program; empty texts say nothing.
struct ConfigurationOverrides
{
    QString configFile;
    QString profile;
    QString baseApi;
    /// Identifier or name.
    QString project;
    QString tokenFile;
    /// Seconds.
    QString deadline;
    QString caFile;
};

/// Each setting from `overrides`, else from RKMON_BASE_API, RKMON_PROJECT, RKMON_TOKEN_FILE and
/// RKMON_CA_FILE, else from the configuration file: `overrides.configFile`, or rkmon/config.ini in the user's
/// configuration folder (XDG Base Directory Specification). There the profile in use goes before what holds
/// for all: `overrides.profile`, else RKMON_PROFILE, else "default-profile". What a profile of `overrides`
/// sets goes before the environment, too: who names it means its service and project. Throws a Failure
/// (BadInput) when a setting is missing or wrong.
Configuration readConfiguration(const ConfigurationOverrides& overrides);

/// The profiles of the configuration file that would be read.
QStringList configuredProfiles(const ConfigurationOverrides& overrides);

/// A setting that nothing works without.
enum class Setting
{
    Address,
    Project,
    TokenFile
};

/// The failure of a setting that was not given: names the ways to give it that every program has.
Failure missingSetting(Setting setting);

/// Makes `configuration` the one of this process's requests.
void applyConfiguration(const Configuration& configuration);
