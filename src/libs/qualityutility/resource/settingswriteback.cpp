#include "settingswriteback_p.h"

#include <QFile>
#include <QMap>
#include <QSettings>
#include <QTemporaryDir>
#include <qualityutility/tool/file/wholefile_p.h>

namespace {

using Values = QMap<QString, QVariant>;

Values valuesOf(QSettings& file)
{
    Values values;
    const QStringList keys = file.allKeys();
    for (const QString& key : keys)
        values.insert(key, file.value(key));
    return values;
}

Values readValues(const QString& path)
{
    QSettings file(path, QSettings::IniFormat);
    useSettingsCodec(file);
    return valuesOf(file);
}

} // namespace

void useSettingsCodec(QSettings& file)
{
    file.setIniCodec("GB2312");
}

bool writeBackSetting(const QString& path, const QString& key, const QString& value)
{
    const QTemporaryDir folder;
    const QString changed = folder.filePath(QStringLiteral("changed.ini"));
    if (!folder.isValid() || !QFile::copy(path, changed))
        return false;
    Values expected;
    {
        QSettings file(changed, QSettings::IniFormat);
        useSettingsCodec(file);
        file.setValue(key, value);
        expected = valuesOf(file);
        file.sync();
    }
    // Read back under another name: parsed files are cached by their path. Values from a file are texts; so is the new
    // one.
    const QString renamed = folder.filePath(QStringLiteral("renamed.ini"));
    if (!QFile::rename(changed, renamed) || readValues(renamed) != expected)
        return false;
    QFile file(renamed);
    return file.open(QIODevice::ReadOnly) && replaceWholeFile(path, file.readAll()) == WholeFileResult::Written;
}
