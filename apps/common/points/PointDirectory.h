#pragma once

#include "ServiceSession.h"

#include <QHash>
#include <QString>
#include <QStringList>
#include <RKMonitoring.h>

#include <optional>

/// What the variations of a point, and so its limits, count from.
struct ReferenceValue
{
    double value = 0.0;
    /// Whether it was worked out here, from the first reading, for want of a better: the service may know an
    /// initial value that the library reads as 0, as it does with a fraction.
    bool isGuessed = false;
};

/// What the library does not read of the points of a monitoring: the sub-category of each, and its reference
/// value.
///
/// The service tells both where it has the extension PointSummaries. Elsewhere a point's sub-category is the
/// only one of the monitoring that has data, or that of the delivery which made the point, when that is
/// clear; and the reference is the initial value, or else the first reading.
///
/// Identifiers of points come from requests made before: a point that is made later is not known here.
class PointDirectory
{
public:
    /// Asks for the points of `monitoring` with these names, or for all of them without names. Throws a
    /// Failure when they cannot be read.
    PointDirectory(ServiceSession& session, const RKMonitoring& monitoring, const QStringList& names);

    /// Whether the service tells of points; otherwise things are worked out.
    bool isTold() const { return m_isTold; }

    /// Identifier of the sub-category that a point is of; empty when that cannot be told.
    QString subCategoryOf(const QString& pointId) const
    {
        return m_subCategories.value(pointId, m_onlySubCategory);
    }

    /// Nothing for a point without readings and initial value. May send a request at the first use.
    std::optional<ReferenceValue> referenceOf(const QString& pointId);

    /// The same as far as the service tells it; sends nothing.
    std::optional<ReferenceValue> toldReferenceOf(const QString& pointId) const;

    /// The initial value of a point as the service tells it; nothing when none was given, or it does not
    /// tell.
    std::optional<double> initialValueOf(const QString& pointId) const;

private:
    void readSummaries();
    void workOutSubCategories();
    void workOutReferences();
    std::optional<ReferenceValue> knownReferenceOf(const QString& pointId) const;

    ServiceSession& m_session;
    RKMonitoring m_monitoring;
    QStringList m_names;
    bool m_isTold = false;
    QHash<QString, QString> m_subCategories; // by point
    QString m_onlySubCategory;               // of points that are not among them
    QHash<QString, ReferenceValue> m_references;
    QHash<QString, double> m_initialValues;
    bool m_hasReferences = false;
};
