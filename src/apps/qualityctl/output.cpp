#include "output.h"

#include <QJsonDocument>

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace {

struct KindRow
{
    Fault::Kind kind;
    int exitCode;
    const char* name; ///< in JSON
};

constexpr KindRow kindRows[] = {
    {Fault::Kind::Difference, 1, "difference"},
    {Fault::Kind::Usage, 64, "usage"},
    {Fault::Kind::BadData, 65, "bad-data"},
    {Fault::Kind::NoInput, 66, "no-input"},
    {Fault::Kind::Unavailable, 69, "unavailable"},
    {Fault::Kind::Internal, 70, "internal"},
    {Fault::Kind::CannotCreate, 73, "cannot-create"},
    {Fault::Kind::InputOutput, 74, "input-output"},
    {Fault::Kind::Timeout, 75, "timeout"},
    {Fault::Kind::Protocol, 76, "protocol"},
    {Fault::Kind::Interrupted, 130, "interrupted"},
};

const KindRow& rowOf(Fault::Kind kind)
{
    return *std::find_if(std::begin(kindRows), std::end(kindRows),
                         [kind](const KindRow& row) { return row.kind == kind; });
}

/// Without what would steer a terminal: control characters and marks that turn the direction of writing.
QString printable(QString text)
{
    for (QChar& c : text) {
        const bool steers = (c.category() == QChar::Other_Control && c != QLatin1Char('\n')) ||
                            (c.category() == QChar::Other_Format && c.direction() != QChar::DirBN);
        if (steers)
            c = QChar::ReplacementCharacter;
    }
    return text;
}

/// False when not everything could be written.
bool write(FILE* stream, const QString& text)
{
    return std::fputs(text.toUtf8().constData(), stream) >= 0 && std::fflush(stream) == 0;
}

QJsonObject documentOf(const CommandResult& result)
{
    QJsonObject document = result.json;
    document.insert(QStringLiteral("ok"), !result.error);
    if (result.error)
        document.insert(QStringLiteral("error"), toJson(*result.error));
    return document;
}

} // namespace

QJsonObject toJson(const Fault& fault)
{
    const KindRow& kind = rowOf(fault.kind);
    QJsonObject error{{QStringLiteral("code"), kind.exitCode},
                      {QStringLiteral("kind"), QLatin1String(kind.name)},
                      {QStringLiteral("message"), fault.message()}};
    if (!fault.hint.isEmpty())
        error.insert(QStringLiteral("hint"), fault.hint);
    return error;
}

int exitCodeOf(Fault::Kind kind)
{
    return rowOf(kind).exitCode;
}

void Output::note(const QString& line) const
{
    if (!quiet)
        write(stderr, printable(line) + QLatin1Char('\n'));
}

int print(const CommandResult& result, const Output& output)
{
    const QString text =
        output.json ? QString::fromUtf8(QJsonDocument(documentOf(result)).toJson()) : printable(result.text);
    const bool isPrinted = write(stdout, text);
    if (result.error && !output.json) {
        write(stderr, QStringLiteral("qualityctl: %1\n").arg(printable(result.error->message())));
        if (!result.error->hint.isEmpty())
            write(stderr, QStringLiteral("  %1\n").arg(printable(result.error->hint)));
    }
    if (result.error)
        return exitCodeOf(result.error->kind);
    if (isPrinted)
        return 0;
    write(stderr, QStringLiteral("qualityctl: the result cannot be written\n"));
    return exitCodeOf(Fault::Kind::InputOutput);
}
