#include "points/PointSelection.h"

#include "Lookup.h"

#include <algorithm>

PointSelection::PointSelection(ServiceSession& session, const RKMonitoring& monitoring,
                               const QStringList& names, const QStringList& subCategories)
    : m_baseApi(session.configuration().baseApi),
      m_subCategories(lookup::measuredSubCategories(session, monitoring.category)),
      m_directory(session, monitoring, names)
{
    for (const QString& text : subCategories) {
        m_wanted.insert(lookup::subCategoryOf(monitoring.category, m_subCategories, text).id);
    }
}

bool PointSelection::holds(const QString& pointId, const QString& label) const
{
    if (m_wanted.isEmpty()) {
        return true;
    }
    const QString subCategory = m_directory.subCategoryOf(pointId);
    // Where the service tells of points, one that it does not tell of has been deleted since it was read.
    if (subCategory.isEmpty() && !m_directory.isTold()) {
        refuse(label);
    }
    return m_wanted.contains(subCategory);
}

MeasuredSubCategory PointSelection::subCategoryOf(const QString& pointId) const
{
    return known(m_directory.subCategoryOf(pointId));
}

MeasuredSubCategory PointSelection::known(const QString& subCategoryId) const
{
    const auto found =
        std::find_if(m_subCategories.cbegin(), m_subCategories.cend(),
                     [&](const MeasuredSubCategory& subCategory) { return subCategory.id == subCategoryId; });
    return found == m_subCategories.cend() ? MeasuredSubCategory() : *found;
}

MeasuredSubCategory PointSelection::requiredSubCategoryOf(const QString& pointId, const QString& label) const
{
    const MeasuredSubCategory subCategory = subCategoryOf(pointId);
    if (subCategory.id.isEmpty()) {
        refuse(label);
    }
    return subCategory;
}

void PointSelection::refuse(const QString& label) const
{
    throw Failure(FailureKind::Other,
                  QStringLiteral("the service at %1 does not tell which sub-category the point \"%2\" is of")
                      .arg(m_baseApi, label));
}
