#pragma once

#include "ags/AgsGroups.h"

#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>

#include <optional>

namespace ags {

/// The locations and installations of a file, which its readings refer to.
class Installations
{
public:
    /// What is wrong with them goes to `problems`.
    Installations(const Groups& groups, Problems& problems);

    /// What is wrong with a reference, in words; empty: nothing.
    QString problemOf(const QString& location, const QString& installation, const QString& distance) const;

    /// A location with more than one installation, and these; nothing when there is none.
    struct Several
    {
        QString location;
        QStringList installations;
    };
    std::optional<Several> several() const;

private:
    void readLocations(const Group& group, Problems& problems);
    void readInstallations(const Group& group, Problems& problems);

    QMap<QString, int> m_locations;     // lines
    QMap<QString, int> m_installations; // lines, by what identifies them
    QMap<QString, QStringList> m_byLocation;
};

} // namespace ags
