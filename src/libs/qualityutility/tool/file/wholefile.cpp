#include "wholefile_p.h"

#include <QSaveFile>

WholeFileResult replaceWholeFile(const QString& path, const QByteArray& content)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return WholeFileResult::OpenFailed;
    // commit() alone would put a short file in the place of the good one on a full disk, and report success.
    if (file.write(content) != content.size() || !file.flush()) {
        file.cancelWriting();
        return WholeFileResult::WriteFailed;
    }
    return file.commit() ? WholeFileResult::Written : WholeFileResult::WriteFailed;
}
