#include "output.h"

#include <QJsonDocument>
#include <QStringList>

#include <cstdio>

namespace {

QString kindOf(ExitCode code)
{
    switch (code) {
    case ExitCode::Done:
        return QStringLiteral("done");
    case ExitCode::Difference:
        return QStringLiteral("difference");
    case ExitCode::Usage:
        return QStringLiteral("usage");
    case ExitCode::BadData:
        return QStringLiteral("bad-data");
    case ExitCode::NoInput:
        return QStringLiteral("no-input");
    case ExitCode::Unavailable:
        return QStringLiteral("unavailable");
    case ExitCode::Internal:
        return QStringLiteral("internal");
    case ExitCode::CannotCreate:
        return QStringLiteral("cannot-create");
    case ExitCode::InputOutput:
        return QStringLiteral("input-output");
    case ExitCode::Timeout:
        return QStringLiteral("timeout");
    case ExitCode::Protocol:
        return QStringLiteral("protocol");
    case ExitCode::Interrupted:
        return QStringLiteral("interrupted");
    }
    return {};
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

QJsonObject toJson(const CommandResult& result)
{
    QJsonObject document = result.json;
    document.insert(QStringLiteral("ok"), !result.error);
    if (result.error) {
        QJsonObject error{{QStringLiteral("code"), static_cast<int>(result.error->code)},
                          {QStringLiteral("kind"), kindOf(result.error->code)},
                          {QStringLiteral("message"), result.error->message}};
        if (!result.error->hint.isEmpty())
            error.insert(QStringLiteral("hint"), result.error->hint);
        document.insert(QStringLiteral("error"), error);
    }
    return document;
}

} // namespace

void Output::note(const QString& line) const
{
    if (!quiet)
        write(stderr, printable(line) + QLatin1Char('\n'));
}

int print(const CommandResult& result, const Output& output)
{
    const QString text =
        output.json ? QString::fromUtf8(QJsonDocument(toJson(result)).toJson()) : printable(result.text);
    const bool isPrinted = write(stdout, text);
    if (result.error && !output.json) {
        write(stderr, QStringLiteral("qualityctl: %1\n").arg(printable(result.error->message)));
        if (!result.error->hint.isEmpty())
            write(stderr, QStringLiteral("  %1\n").arg(printable(result.error->hint)));
    }
    if (result.error)
        return static_cast<int>(result.error->code);
    if (isPrinted)
        return static_cast<int>(ExitCode::Done);
    write(stderr, QStringLiteral("qualityctl: the result cannot be written\n"));
    return static_cast<int>(ExitCode::InputOutput);
}

QString textTable(const QList<QStringList>& rows)
{
    QList<int> widths;
    for (const QStringList& row : rows) {
        for (int column = 0; column < row.size(); ++column) {
            if (column == widths.size())
                widths.append(0);
            widths[column] = qMax(widths.at(column), row.at(column).size());
        }
    }
    const auto line = [&](const QStringList& row) {
        QString text;
        for (int column = 0; column < row.size(); ++column)
            text += row.at(column).leftJustified(widths.at(column)) + QStringLiteral("  ");
        while (text.endsWith(QLatin1Char(' ')))
            text.chop(1);
        return text + QLatin1Char('\n');
    };
    QString text;
    for (int i = 0; i < rows.size(); ++i) {
        text += line(rows.at(i));
        if (i == 0) {
            QStringList rules;
            for (const int width : widths)
                rules << QString(width, QLatin1Char('-'));
            text += line(rules);
        }
    }
    return text;
}
