#pragma once

#include <QDateTime>
#include <QString>

/// The record of the measured data held for one monitoring and sub-category. Only ever read.
struct RKDataManage
{
    QString id;
    /// Identifier of the monitoring.
    QString cellId;
    /// Category of the sub-category.
    QString category;
    QString subCategoryId;
    /// Short name of the sub-category.
    QString alias;
    /// Time of the latest data.
    QDateTime lastDate;
    /// Rows of the latest delivery.
    qint32 lastCount = 0;
    /// File of the latest delivery.
    QString fileId;
    QString updatedBy;
    QDateTime updatedAt;
};

/// One delivery in the history of a data manage. Only ever read.
struct HistoryData
{
    /// Never filled by the library.
    QString id;
    /// Time of the latest data at this delivery.
    QDateTime lastDate;
    /// Rows held after the delivery.
    qint32 lastCount = 0;
    /// Rows inserted by the delivery.
    qint32 insertCount = 0;
    QString fileId;
    QDateTime createdAt;
    QString createdBy;
    QDateTime updatedAt;
    QString updatedBy;
};
