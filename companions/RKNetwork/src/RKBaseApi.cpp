#include "RKBaseApi.h"

RKBaseApi& RKBaseApi::GetInstance()
{
    static RKBaseApi instance;
    return instance;
}

QString RKBaseApi::getBaseApi() const
{
    return m_address;
}

void RKBaseApi::setBaseApi(const QString& address)
{
    m_address = address;
    if (!m_address.isEmpty() && !m_address.endsWith(QLatin1Char('/'))) {
        m_address += QLatin1Char('/');
    }
}
