#pragma once

#include <QString>

class QSettings;
struct SettingsKey;

/// Opens a settings file as this library always does: INI with the codec "GB2312", set before the first read.
void useSettingsCodec(QSettings& file);

/// Sets one key of an INI file; every other byte stays. The file is replaced whole, under the lock file that QSettings
/// takes for it, so that no change of another process is lost. Waits up to five seconds for that lock. False when that
/// fails; the file is then as it was.
bool writeBackSetting(const QString& path, const SettingsKey& key, const QString& value);
