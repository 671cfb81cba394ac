#pragma once

#include <suite/common/result.h>

#include <QByteArray>
#include <QJsonObject>
#include <QString>

namespace Calibration {

using Common::Fault;
using Common::Result;

/// Which file something was read from.
struct InputDigest
{
    QString role;   ///< in messages: "gray table"
    QString name;   ///< as the user gave it; "-" is standard input
    QString sha256; ///< of the bytes, hexadecimal
};

/// A file that the user named, read once: what is made of it and the digest in a journal come from these bytes.
struct Input
{
    QString role; ///< in messages: "gray table"
    QString name; ///< as the user gave it; "-" is standard input
    QByteArray bytes;
    QString sha256; ///< of the bytes, hexadecimal

    /// How messages about it begin: "gray table x.csv".
    QString subject() const;
    InputDigest digest() const { return {role, name, sha256}; }
};

/// The most that an input may hold unless its kind says otherwise; docs/calibration.md lists them.
inline constexpr qint64 maxInputBytes = qint64{64} * 1024 * 1024;

/// Reads a file, a pipe, or standard input ("-") to its end; blocks meanwhile. A named pipe that nobody writes into
/// within two seconds is refused. Faults: no input; bad data above `maxBytes`; input/output.
Result<Input> readInput(const QString& name, const QString& role, qint64 maxBytes = maxInputBytes);

/// The bytes as a JSON object.
Result<QJsonObject> jsonObject(const Input& input);

} // namespace Calibration
