#include "markup_p.h"

namespace Reports {

namespace {

/// Overrides and isolates: a name with one could turn around what stands after it.
bool turnsText(QChar c)
{
    return (c >= QChar(0x202a) && c <= QChar(0x202e)) || (c >= QChar(0x2066) && c <= QChar(0x2069));
}

/// A shape whose holes are where its lines cross once more.
QString shape(const QString& path, const QString& colour)
{
    return QStringLiteral("<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 24 24\">"
                          "<path fill=\"%1\" fill-rule=\"evenodd\" d=\"%2\"/></svg>")
        .arg(colour, path);
}

} // namespace

QString printable(QString text)
{
    for (QChar& c : text) {
        if (c.category() == QChar::Other_Control)
            c = c.isSpace() ? QChar(QLatin1Char(' ')) : QChar(QChar::ReplacementCharacter);
        else if (c.isNonCharacter() || turnsText(c))
            c = QChar::ReplacementCharacter;
    }
    return text;
}

QString escaped(const QString& text)
{
    return printable(text).toHtmlEscaped();
}

QString className(Mark mark)
{
    switch (mark) {
    case Mark::Good:
        return QStringLiteral("good");
    case Mark::Bad:
        return QStringLiteral("bad");
    case Mark::Open:
        break;
    }
    return QStringLiteral("open");
}

QString wordFor(Mark mark)
{
    switch (mark) {
    case Mark::Good:
        return QStringLiteral("Good:");
    case Mark::Bad:
        return QStringLiteral("Not good:");
    case Mark::Open:
        break;
    }
    return QStringLiteral("Not finished:");
}

QString markSvg(Mark mark, const QString& colour)
{
    switch (mark) {
    case Mark::Good:
        return shape(QStringLiteral("M1 12a11 11 0 1 0 22 0a11 11 0 1 0 -22 0zM10.4 17.2l-5-5 2-2 3 3 6.4-6.6 2 2z"),
                     colour);
    case Mark::Bad:
        return shape(QStringLiteral("M7.4 1h9.2l6.4 6.4v9.2l-6.4 6.4h-9.2l-6.4-6.4v-9.2z"
                                    "M7 9l3 3-3 3 2 2 3-3 3 3 2-2-3-3 3-3-2-2-3 3-3-3z"),
                     colour);
    case Mark::Open:
        break;
    }
    return shape(QStringLiteral("M3 1h18v3h-2l-5.5 8 5.5 8h2v3h-18v-3h2l5.5-8-5.5-8h-2zM9 5h6l-3 4.5z"), colour);
}

QString warningSvg(const QString& colour)
{
    return shape(QStringLiteral("M12 1l12 21h-24zM10.8 8v7h2.4v-7zM10.8 16.8v2.4h2.4v-2.4z"), colour);
}

QString fullTitle(const Document& document)
{
    return printable(document.verdict.result + QStringLiteral(": ") + document.title);
}

} // namespace Reports
