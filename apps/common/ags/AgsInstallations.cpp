#include "ags/AgsInstallations.h"

#include "ags/AgsHeadings.h"
#include "reading/MeasuredValues.h"

#include <algorithm>

namespace ags {

namespace {

// "2.50" and "2.5" are one distance.
QString comparable(const QString& distance)
{
    QString depth;
    return values::readDepth(distance, u'.', depth).isEmpty() ? depth : distance;
}

QString keyOf(const QString& location, const QString& installation, const QString& distance)
{
    return QStringList{location, installation, comparable(distance)}.join(QChar(u'\n'));
}

bool requireHeadings(const Group& group, const QStringList& headings, Problems& problems)
{
    for (const QString& heading : headings) {
        if (!group.has(heading)) {
            problems.add(group.headingLine,
                         QStringLiteral("the group %1 has no heading %2").arg(group.name, heading));
            return false;
        }
    }
    return true;
}

QString shownInstallation(const QString& location, const QString& installation, const QString& distance)
{
    return QStringLiteral("%1 \"%2\", %3 \"%4\", %5 \"%6\"")
        .arg(QLatin1String(locationHeading), location, QLatin1String(installationHeading), installation,
             QLatin1String(distanceHeading), distance);
}

} // namespace

Installations::Installations(const Groups& groups, Problems& problems)
{
    for (const char* name : {locationGroup, installationGroup}) {
        if (groups.find(QLatin1String(name)) == nullptr) {
            problems.add(
                1,
                QStringLiteral("the file has no group %1, which readings refer to").arg(QLatin1String(name)));
            return;
        }
    }
    readLocations(*groups.find(QLatin1String(locationGroup)), problems);
    readInstallations(*groups.find(QLatin1String(installationGroup)), problems);
}

void Installations::readLocations(const Group& group, Problems& problems)
{
    const QString heading = QLatin1String(locationHeading);
    if (!requireHeadings(group, {heading}, problems)) {
        return;
    }
    for (const Row& row : group.rows) {
        const QString location = group.text(row, heading);
        const auto other = m_locations.constFind(location);
        if (other != m_locations.constEnd()) {
            problems.add(
                row.line,
                QStringLiteral("%1 \"%2\" stands on line %3 already").arg(heading, location).arg(*other));
        } else {
            m_locations.insert(location, row.line);
        }
    }
}

void Installations::readInstallations(const Group& group, Problems& problems)
{
    const QString locations = QLatin1String(locationHeading);
    const QString installations = QLatin1String(installationHeading);
    const QString distances = QLatin1String(distanceHeading);
    if (!requireHeadings(group, {locations, installations, distances}, problems)) {
        return;
    }
    for (const Row& row : group.rows) {
        const QString location = group.text(row, locations);
        const QString installation = group.text(row, installations);
        const QString distance = group.text(row, distances);
        const QString key = keyOf(location, installation, distance);
        const auto other = m_installations.constFind(key);
        if (other != m_installations.constEnd()) {
            problems.add(row.line, QStringLiteral("%1 stands on line %2 already")
                                       .arg(shownInstallation(location, installation, distance))
                                       .arg(*other));
            continue;
        }
        m_installations.insert(key, row.line);
        QStringList& ofLocation = m_byLocation[location];
        if (!ofLocation.contains(installation)) {
            ofLocation.append(installation);
        }
    }
}

QString Installations::problemOf(const QString& location, const QString& installation,
                                 const QString& distance) const
{
    if (!m_locations.contains(location)) {
        return QStringLiteral("the group %1 has no row of %2 \"%3\"")
            .arg(QLatin1String(locationGroup), QLatin1String(locationHeading), location);
    }
    return m_installations.contains(keyOf(location, installation, distance))
               ? QString()
               : QStringLiteral("the group %1 has no row of %2")
                     .arg(QLatin1String(installationGroup),
                          shownInstallation(location, installation, distance));
}

std::optional<Installations::Several> Installations::several() const
{
    const auto found =
        std::find_if(m_byLocation.cbegin(), m_byLocation.cend(),
                     [](const QStringList& installations) { return installations.size() > 1; });
    return found == m_byLocation.cend() ? std::nullopt : std::make_optional(Several{found.key(), *found});
}

} // namespace ags
