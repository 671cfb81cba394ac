#pragma once

#include <qualityutility/qualityutility_export.h>

#include <QDate>
#include <QObject>
#include <QString>

#include <atomic>
#include <mutex>

/// Version of the gamut-correction (NICC) data and the day on which it was managed. All but releaseInstance() may be
/// called by any thread at any time. Each call sees a whole value; between two of them another thread may change it.
class QUALITYUTILITY_EXPORT NICCData : public QObject
{
    Q_OBJECT

public:
    /// The process's instance, made at the first call.
    static NICCData* getInstance();
    /// Deletes the instance; the next getInstance() starts anew. Nobody may be using it.
    static void releaseInstance();

    /// "2.0" until another is set; written into NICC documents and compared with theirs, text by text. @{
    QString getVersion() const;
    void setVersion(const QString& version);
    /// @}
    /// The day on which this object was made, until another is set; reading a NICC document sets the document's, which
    /// may be an invalid one. @{
    QDate getManageDate() const;
    void setManageDate(QDate date);
    /// @}

private:
    NICCData() = default;

    static std::atomic<NICCData*> m_instance;

    mutable std::mutex m_mutex; ///< of the two below
    QString m_version = QStringLiteral("2.0");
    QDate m_manageDate = QDate::currentDate();
};
