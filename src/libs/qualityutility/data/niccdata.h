#pragma once

#include <QDate>
#include <QObject>
#include <QString>
#include <qualityutility/qualityutility_export.h>

#include <atomic>

/// Version of the gamut-correction (NICC) data and the day on which it was managed. getInstance() may be called by any
/// thread; the members are used from one.
class QUALITYUTILITY_EXPORT NICCData : public QObject
{
    Q_OBJECT

public:
    /// The process's instance, made at the first call.
    static NICCData* getInstance();
    /// Deletes the instance; the next getInstance() starts anew. Nobody may be using it.
    static void releaseInstance();

    QString getVersion() const { return m_version; }
    void setVersion(const QString& version) { m_version = version; }
    /// The day on which this object was made, until another is set.
    QDate getManageDate() const { return m_manageDate; }
    void setManageDate(QDate date) { m_manageDate = date; }

private:
    NICCData() = default;

    static std::atomic<NICCData*> m_instance;

    QString m_version = QStringLiteral("2.0");
    QDate m_manageDate = QDate::currentDate();
};
