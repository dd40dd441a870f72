#pragma once

#include <QString>

/// A cache object whose accessor is called otherwise, and is not the first of its virtual functions.
class RKSoftCache
{
public:
    virtual ~RKSoftCache() = default;
    virtual QString userName() { return QStringLiteral("somebody"); }
    virtual QString currentProject() { return QStringLiteral("foreign project"); }
};

RKSoftCache* GetSoftCache();
