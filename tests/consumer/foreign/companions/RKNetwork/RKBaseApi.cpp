#include "RKBaseApi.h"

RKBaseApi& RKBaseApi::GetInstance()
{
    static RKBaseApi instance;
    return instance;
}

QString RKBaseApi::getBaseApi() const
{
    return QStringLiteral("foreign://service/");
}
