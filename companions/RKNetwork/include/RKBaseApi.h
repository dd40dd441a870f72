#pragma once

#include "RKNetworkExport.h"

#include <QString>

/// The address of the monitoring service, one per process.
class RKNETWORK_EXPORT RKBaseApi
{
public:
    /// The process-wide object, made on first use.
    static RKBaseApi& GetInstance();

    /// The service's base address, such as "https://monitoring.example:8443/". It ends with "/" and is never
    /// changed by encoding; empty until it has been set.
    QString getBaseApi() const;
    /// Sets the base address. A missing "/" at the end is added; empty text stays empty, and every request
    /// then fails.
    void setBaseApi(const QString& address);

    RKBaseApi(const RKBaseApi&) = delete;
    RKBaseApi& operator=(const RKBaseApi&) = delete;

private:
    RKBaseApi() = default;
    ~RKBaseApi() = default;

    QString m_address;
};
