#pragma once

#include <QJsonObject>
#include <QString>

#include <functional>
#include <optional>

enum class ExitCode {
    Done = 0,
    Difference = 1, ///< a check found a difference
    Usage = 64,
    BadData = 65,
    NoInput = 66,
    Unavailable = 69,
    Internal = 70,
    CannotCreate = 73,
    InputOutput = 74,
    Timeout = 75,
    Protocol = 76,
    Interrupted = 130,
};

/// Why a command failed. Thrown before anything was done, or returned with what was done.
struct CommandError
{
    ExitCode code;
    QString message;
    QString hint = {};
};

/// What a command has to say on stdout, in both forms; main() prints the one that was asked for.
struct CommandResult
{
    QString text;
    QJsonObject json;
    std::optional<CommandError> error = std::nullopt;
};

/// How the user wants to be spoken to.
struct Output
{
    bool json = false;
    bool quiet = false;

    /// A line of progress or explanation on stderr; nothing with --quiet.
    void note(const QString& line) const;
};

/// A command with its checked arguments, ready to run.
using Command = std::function<CommandResult(const Output&)>;

/// Prints a result on stdout, and an error on stderr in the text form. Returns the exit code.
int print(const CommandResult& result, const Output& output);

/// Rows as text columns: each column as wide as its widest cell, two blanks between them, the first row underlined.
QString textTable(const QList<QStringList>& rows);
