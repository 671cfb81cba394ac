// The project archives of PicQualityFileTool.

#include "documentfile_p.h"
#include "filefailurerecorder_p.h"
#include "picqualityfiletool.h"
#include "projectarchive_p.h"
#include <qualityutility/support/latin1_p.h>
#include <qualityutility/support/wholefile_p.h>

#include <QDebug>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <iterator>

bool PicQualityFileTool::packProConfig(const QString& archive, const QString& nicc, const QString& gray,
                                       const QString& cabinetConfig, const QStringList& others)
{
    QStringList files;
    // The earlier archive gives way to the new one: it is no file to pack.
    const auto isThere = [&archive](const QString& path) {
        return QFile::exists(path) && QFileInfo(path) != QFileInfo(archive);
    };
    const auto addRole = [&](const QString& path, const char* missing) {
        if (isThere(path))
            files << path;
        else
            qInfo() << missing << path;
    };
    addRole(nicc, "nicc not find");
    addRole(cabinetConfig, "cab config not find"); // before the gray file, against the order of the arguments
    addRole(gray, "gray not find");
    std::copy_if(others.begin(), others.end(), std::back_inserter(files), isThere);
    if (const auto refusal = ProjectArchive::pack(archive, files)) {
        QDebug line = qCritical() << "file" << archive << "write failed!!!" << qUtf8Printable(refusal->reason);
        if (!refusal->entry.isEmpty())
            line << "entry" << refusal->entry;
        recordFileFailure({FileFailure::Kind::WriteFailed, archive, refusal->reason, refusal->entry});
    }
    return true;
}

bool PicQualityFileTool::unpackProConfig(const QString& archive, QString& nicc, QString& gray, QString& cabinetConfig,
                                         QStringList& others)
{
    if (!DocumentFile::isPresent(archive))
        return false;
    const auto files = ProjectArchive::unpack(archive);
    if (!files)
        return false;
    for (const QString& file : *files) {
        switch (projectRole(file)) {
        case ProjectRole::Nicc:
            nicc = file;
            break;
        case ProjectRole::Gray:
            gray = file;
            break;
        case ProjectRole::CabinetConfig:
            cabinetConfig = file;
            break;
        case ProjectRole::Other:
            others << file;
        }
    }
    return true;
}

PicQualityFileTool::ProjectRole PicQualityFileTool::projectRole(const QString& file)
{
    const QString suffix = QFileInfo(file).suffix();
    if (suffix == Support::latin1("nicc"))
        return ProjectRole::Nicc;
    if (suffix == Support::latin1("gray"))
        return ProjectRole::Gray;
    return suffix == Support::latin1("nrf") ? ProjectRole::CabinetConfig : ProjectRole::Other;
}

bool PicQualityFileTool::extractProject(const QString& archive, const QString& folder, QStringList& files)
{
    if (!DocumentFile::isPresent(archive))
        return false;
    const auto paths = ProjectArchive::extract(archive, folder);
    files = paths.value_or(QStringList());
    return paths.has_value();
}

bool PicQualityFileTool::removeTempProConfig(const QString& archive)
{
    return DocumentFile::isPresent(archive) && ProjectArchive::removeTemporaryFolder(archive);
}

bool PicQualityFileTool::writeRvcardConfig(const QString& path, const QByteArray& content)
{
    QString reason;
    const Support::WholeFileResult result =
        Support::replaceWholeFile(path, content, Support::WholeFileWay::RenewName, &reason);
    if (result != Support::WholeFileResult::Written) // without a log line
        recordFileFailure({result == Support::WholeFileResult::OpenFailed ? FileFailure::Kind::OpenFailed
                                                                          : FileFailure::Kind::WriteFailed,
                           path,
                           reason,
                           {}});
    return result == Support::WholeFileResult::Written;
}
