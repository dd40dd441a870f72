#pragma once

#include <QString>

class RKBaseApi
{
public:
    static RKBaseApi& GetInstance();
    QString getBaseApi() const;
};
