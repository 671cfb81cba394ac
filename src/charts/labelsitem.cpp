#include "labelplacement.h"
#include "labelsitem_p.h"
#include "plotstyle_p.h"

#include <qwt_scale_map.h>

#include <QFontMetricsF>
#include <QPainter>

namespace Charts {

namespace {

constexpr int pointLabelPixels = 20;
constexpr double leaderFrom = 20.0; // pixels; a nearer label needs no line to its point

void drawLabel(QPainter& painter, const PointLabel& label, const QPointF& anchor, const QRectF& place)
{
    const QLineF lead = leader(anchor, place);
    if (lead.length() > leaderFrom) {
        painter.setPen(QPen(label.ink, 1.0));
        painter.drawLine(lead);
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 255, 255, 170)); // readable over colours and lines
    painter.drawRect(place);
    painter.setPen(label.ink);
    painter.drawText(place, Qt::AlignCenter, label.text);
}

} // namespace

LabelsItem::LabelsItem(const QVector<PointLabel>& labels, const QVector<QPointF>& marks, const QVector<QLineF>& lines)
    : m_labels(labels), m_marks(marks), m_lines(lines)
{
    constexpr double aboveAll = 100.0;
    setZ(aboveAll);
    setRenderHint(RenderAntialiased);
}

void LabelsItem::draw(QPainter* painter, const QwtScaleMap& xMap, const QwtScaleMap& yMap, const QRectF& canvas) const
{
    const auto drawn = [&](const QPointF& position) { return QwtScaleMap::transform(xMap, yMap, position); };
    painter->setFont(chartFont(pointLabelPixels));
    const QFontMetricsF metrics(painter->font(), painter->device());
    QVector<LabelRequest> requests;
    for (const PointLabel& label : m_labels)
        requests << LabelRequest{drawn(label.position),
                                 {metrics.horizontalAdvance(label.text) + 4.0, metrics.height()},
                                 {label.towards.x(), -label.towards.y()},
                                 label.mayMove};
    Surroundings surroundings{canvas, {}, {}};
    for (const QPointF& mark : m_marks)
        surroundings.marks << drawn(mark);
    for (const QLineF& line : m_lines)
        surroundings.lines << QLineF(drawn(line.p1()), drawn(line.p2()));
    const QVector<QRectF> places = placeLabels(requests, surroundings);
    for (int i = 0; i < places.size(); ++i)
        drawLabel(*painter, m_labels.at(i), requests.at(i).anchor, places.at(i));
}

} // namespace Charts
