#pragma once

#include "support/logcapture.h"
#include "support/testfiles.h"
#include "support/zipwriter.h"
#include <qualityutility/tool/file/picqualityfiletool.h>

#include <QDirIterator>
#include <QTemporaryDir>
#include <QTest>

inline ZipEntry entry(const QByteArray& name, const QByteArray& content = "x")
{
    return {name, content};
}

struct Unpacked
{
    bool isDone = false;
    QString nicc = "before";
    QString gray = "before";
    QString config = "before";
    QStringList others{"before"};
};

inline Unpacked unpack(const QString& archive)
{
    Unpacked result;
    result.isDone =
        PicQualityFileTool::unpackProConfig(archive, result.nicc, result.gray, result.config, result.others);
    return result;
}

/// A folder of a test's own, in which the temporary location is too; and what is logged meanwhile.
class ArchiveFolder
{
protected:
    void makeFolder()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(QDir().mkpath(temp()));
        qputenv("TMPDIR", temp().toLocal8Bit());
        m_log = std::make_unique<LogCapture>();
    }

    void removeFolder()
    {
        m_log.reset();
        qunsetenv("TMPDIR");
    }

    QString path(const QString& name) const { return m_folder->filePath(name); }
    /// A path in the temporary location, which is inside the test's folder.
    QString temp(const QString& name = {}) const { return path("tmp/" + name); }

    /// Every file below the test's folder with its content; links with their targets.
    QMap<QString, QByteArray> everything() const
    {
        QMap<QString, QByteArray> result;
        QDirIterator it(m_folder->path(), QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            it.next();
            const QFileInfo info = it.fileInfo();
            result.insert(info.filePath(), info.isSymLink() ? info.symLinkTarget().toUtf8()
                                           : info.isFile()  ? readFile(info.filePath())
                                                            : QByteArray("folder"));
        }
        return result;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<LogCapture> m_log;
};
