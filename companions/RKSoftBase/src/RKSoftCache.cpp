#include "RKSoftCache.h"

// Defined here, not in the header, so that the table of virtual functions stands in this library alone.
RKSoftCache::~RKSoftCache() = default;

QString RKSoftCache::getProjectId()
{
    return m_projectId;
}

void RKSoftCache::setProjectId(const QString& projectId)
{
    m_projectId = projectId;
}

RKSoftCache* GetSoftCache()
{
    static RKSoftCache cache;
    return &cache;
}
