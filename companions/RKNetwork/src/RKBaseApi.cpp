#include "RKBaseApi.h"

RKBaseApi& RKBaseApi::GetInstance()
{
    static RKBaseApi instance;
    return instance;
}

QString RKBaseApi::getBaseApi() const
{
    return _address;
}

void RKBaseApi::setBaseApi(const QString& address)
{
    _address = address;
    if (!_address.isEmpty() && !_address.endsWith(QLatin1Char('/')))
        _address += QLatin1Char('/');
}
