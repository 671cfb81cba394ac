#pragma once

#include <QPolygonF>
#include <QRegularExpression>
#include <QTransform>
#include <QVector>
#include <QXmlStreamReader>

/// What a chart's SVG document draws, in its own coordinates.
struct SvgDrawing
{
    struct Line
    {
        QString ink;
        double width;
        QPolygonF points;
    };
    struct Text
    {
        QString text;
        int pixels;
        QPointF start; ///< of the base line
    };

    QVector<Line> lines;
    QVector<Text> texts;
    QStringList references;
    QRectF viewBox;

    explicit SvgDrawing(const QByteArray& svg)
    {
        QXmlStreamReader xml(svg);
        while (!xml.atEnd()) {
            const auto token = xml.readNext();
            if (token == QXmlStreamReader::StartElement)
                begin(xml);
            else if (token == QXmlStreamReader::EndElement && xml.name() == QLatin1String("g"))
                m_groups.removeLast();
        }
        error = xml.errorString();
    }

    /// The lines of an ink and a number of points, in the order in which they are drawn.
    QVector<QPolygonF> linesOf(const QString& ink, int points) const
    {
        QVector<QPolygonF> found;
        for (const Line& line : lines)
            if (line.ink == ink && line.points.size() == points)
                found << line.points;
        return found;
    }

    QStringList textsLike(const QString& pattern) const
    {
        QStringList all;
        for (const Text& text : texts)
            all << text.text;
        return all.filter(QRegularExpression(QRegularExpression::anchoredPattern(pattern)));
    }

    QString error;

private:
    struct Group
    {
        QString ink;
        double width;
        QTransform transform;
    };

    void begin(QXmlStreamReader& xml)
    {
        const QXmlStreamAttributes attributes = xml.attributes();
        if (attributes.hasAttribute("xlink:href"))
            references << attributes.value("xlink:href").toString();
        if (xml.name() == QLatin1String("svg")) {
            const QStringList box = attributes.value("viewBox").toString().split(' ');
            viewBox = QRectF(box.at(0).toDouble(), box.at(1).toDouble(), box.at(2).toDouble(), box.at(3).toDouble());
        } else if (xml.name() == QLatin1String("g")) {
            m_groups << Group{attributes.value("stroke").toString(), attributes.value("stroke-width").toDouble(),
                              matrix(attributes.value("transform").toString())};
        } else if (xml.name() == QLatin1String("polyline")) {
            lines << Line{m_groups.last().ink, m_groups.last().width, points(attributes.value("points").toString())};
        } else if (xml.name() == QLatin1String("text")) {
            const QPointF start(attributes.value("x").toDouble(), attributes.value("y").toDouble());
            const int pixels = attributes.value("font-size").toInt();
            texts << Text{xml.readElementText(), pixels, m_groups.last().transform.map(start)};
        }
    }

    QPolygonF points(const QString& list) const
    {
        QPolygonF result;
        for (const QString& pair : list.split(' ', Qt::SkipEmptyParts))
            result << QPointF(pair.section(',', 0, 0).toDouble(), pair.section(',', 1, 1).toDouble());
        return m_groups.last().transform.map(result);
    }

    static QTransform matrix(const QString& text)
    {
        const QStringList m = text.mid(7).chopped(text.isEmpty() ? 0 : 1).split(',');
        if (m.size() != 6)
            return {};
        return {m[0].toDouble(), m[1].toDouble(), m[2].toDouble(), m[3].toDouble(), m[4].toDouble(), m[5].toDouble()};
    }

    QVector<Group> m_groups;
};
