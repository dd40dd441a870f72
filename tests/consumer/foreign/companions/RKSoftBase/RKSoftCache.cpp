#include "RKSoftCache.h"

RKSoftCache* GetSoftCache()
{
    static RKSoftCache cache;
    return &cache;
}
