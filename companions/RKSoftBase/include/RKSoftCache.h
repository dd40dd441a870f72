#pragma once

#include "RKSoftBaseExport.h"

#include <QString>

/// What the application knows process-wide: today, the project that is open.
///
/// Belongs to the application's main thread, as the data access that asks it does; there is no lock.
class RKSOFTBASE_EXPORT RKSoftCache
{
public:
    RKSoftCache() = default;
    virtual ~RKSoftCache();
    RKSoftCache(const RKSoftCache&) = delete;
    RKSoftCache& operator=(const RKSoftCache&) = delete;

    /// The identifier of the current project as the service gives it; empty while no project is open.
    virtual QString getProjectId();

    /// Makes `projectId` the current project; an empty text closes it. Every later request asks anew, so the
    /// change holds from the next operation on.
    void setProjectId(const QString& projectId);

private:
    QString m_projectId;
};

/// The process-wide object: never null, the same on every call, made on the first one (safely from any
/// thread) and alive until the process ends. The caller does not own it.
RKSOFTBASE_EXPORT RKSoftCache* GetSoftCache();
