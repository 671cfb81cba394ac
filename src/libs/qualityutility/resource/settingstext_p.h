#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

class QTextCodec;

/// One key of an INI file: group and name as QSettings has them. The group is none of QSettings' special ones
/// ("General", none at all).
struct SettingsKey
{
    QString group;
    QString name;
};

/// The text of an INI file with one key set to a value. QSettings (with `codec`) then reads what it read before, and
/// this value. Every other byte stays, comments too: the value is replaced where the key stands last, else a line is
/// added below its group's last heading, else the group at the end. Characters that `codec` lacks are escaped by their
/// number; null: all beyond ASCII are.
///
/// Nothing when a line must be added to a text that ends inside a quotation or an escape: it would belong to what
/// stands there.
std::optional<QByteArray> withSetting(const QByteArray& text, const SettingsKey& key, const QString& value,
                                      const QTextCodec* codec);
