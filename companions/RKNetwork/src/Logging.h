#pragma once

#include <QLoggingCategory>

/// "rk.network", off unless the application's filter rules turn it on. Holds neither tokens nor bodies.
Q_DECLARE_LOGGING_CATEGORY(networkLog)
