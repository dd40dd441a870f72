#pragma once

// The one place that names the companions' headers: an application whose companions are called otherwise
// changes it here.

#include <NetworkEventLoop.h>
#include <NetworkManager.h>
#include <RKBaseApi.h>
#include <RKPub.h>
#include <RKSoftCache.h>
