#include "settingstext_p.h"
#include "settingswriteback_p.h"
#include <qualityutility/support/wholefile_p.h>

#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QSettings>
#include <QTextCodec>
#include <QThread>

namespace {

constexpr char codecName[] = "GB2312";
constexpr int maxLockWait = 5000; // ms

/// QLockFile itself looks again after 100 ms at first, and then ever more rarely; a change takes a tenth of that.
bool takeLock(QLockFile& lock)
{
    const QDeadlineTimer deadline(maxLockWait);
    while (!lock.tryLock(0)) {
        if (lock.error() != QLockFile::LockFailedError || deadline.hasExpired())
            return false;
        QThread::msleep(1);
    }
    return true;
}

} // namespace

void useSettingsCodec(QSettings& file)
{
    file.setIniCodec(codecName);
}

bool writeBackSetting(const QString& path, const SettingsKey& key, const QString& value)
{
    QLockFile lock(QFileInfo(path).absoluteFilePath() + QStringLiteral(".lock"));
    if (!takeLock(lock))
        return false;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray text = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return false;
    file.close();
    const auto changed = withSetting(text, key, value, QTextCodec::codecForName(codecName));
    if (!changed)
        return false;
    return *changed == text || Support::replaceWholeFile(path, *changed) == Support::WholeFileResult::Written;
}
