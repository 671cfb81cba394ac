#pragma once

#include <calibration/content.h>
#include <calibration/journal.h>

#include <QDir>

class QLockFile;

namespace Calibration {

/// The folder of a calibration, with the names of what lies in it. While one lives, nobody else calibrates there.
class Folder
{
public:
    /// Makes the folder where it is missing, and takes its lock. Faults: usage, cannot create, input/output;
    /// unavailable while another calibration is at work there.
    static Common::Result<std::unique_ptr<Folder>> open(const QString& path);
    ~Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    /// The path of a file in it.
    QString in(const QString& name) const { return m_dir.filePath(name); }
    QString journal() const { return in(QStringLiteral("calibration.jsonl")); }
    QString nicc() const { return in(QStringLiteral("screen.nicc")); }
    QString gray() const { return in(QStringLiteral("screen.gray")); }
    QString cabinet() const { return in(QStringLiteral("screen.nrf")); }
    QString project() const { return in(QStringLiteral("screen.zip")); }
    /// The documents, without the journal.
    QStringList documents() const { return {nicc(), gray(), cabinet(), project()}; }

private:
    explicit Folder(const QString& path);
    Common::Result<void> lock();

    QDir m_dir;
    std::unique_ptr<QLockFile> m_lock;
};

/// The journal's path in a calibration's folder, for who only reads it.
QString journalPath(const QString& folder);

} // namespace Calibration
