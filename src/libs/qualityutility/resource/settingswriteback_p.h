#pragma once

#include <QString>

class QSettings;

/// Opens a settings file as this library always does: INI with the codec "GB2312", set before the first read.
void useSettingsCodec(QSettings& file);

/// Sets one key ("group/key") of an INI file and keeps all other keys. The new file is made elsewhere, read back and
/// compared, and then moved over the old one whole: QSettings itself leaves an empty or short file on a full disk and
/// reports success. False when that fails; the file is then as it was.
bool writeBackSetting(const QString& path, const QString& key, const QString& value);
