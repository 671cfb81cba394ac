#pragma once

#include <suite/common/result.h>

#include <QJsonObject>
#include <QString>

#include <functional>
#include <optional>

using Common::Fault;

/// The exit code of a command that ends with a fault of this kind.
int exitCodeOf(Fault::Kind kind);

/// The value, or the fault thrown: a command ends with it.
template <typename T>
T take(Common::Result<T> result)
{
    if (!result)
        throw Fault(result.fault());
    return *std::move(result);
}

inline void require(const Common::Result<void>& result)
{
    if (!result)
        throw Fault(result.fault());
}

/// What a command has to say on stdout, in both forms; main() prints the one that was asked for.
struct CommandResult
{
    QString text;
    QJsonObject json;
    std::optional<Fault> error = std::nullopt;
};

/// How the user wants to be spoken to.
struct Output
{
    bool json = false;
    bool quiet = false;

    /// A line of progress or explanation on stderr; nothing with --quiet.
    void note(const QString& line) const;
};

/// A fault as it stands in JSON: code, kind, message and a hint where there is one.
QJsonObject toJson(const Fault& fault);

/// A command with its checked arguments, ready to run.
using Command = std::function<CommandResult(const Output&)>;

/// Prints a result on stdout, and an error on stderr in the text form. Returns the exit code.
int print(const CommandResult& result, const Output& output);
