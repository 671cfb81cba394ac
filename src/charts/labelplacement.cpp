#include "labelplacement.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Charts {

namespace {

constexpr double nearest = 14.0; // pixels between an anchor, whose marker is at most so large, and its label

QPointF unit(const QPointF& direction)
{
    return direction / std::hypot(direction.x(), direction.y());
}

/// The label's rectangle at a distance from its anchor; on a slant its corner is the nearest point.
QRectF placeAt(const LabelRequest& label, const QPointF& direction, double distance)
{
    const double toCorner = std::sqrt(2.0);
    const QPointF side(std::clamp(toCorner * direction.x(), -1.0, 1.0),
                       std::clamp(toCorner * direction.y(), -1.0, 1.0));
    QRectF place(QPointF(), label.size);
    place.moveCenter(label.anchor + distance * direction +
                     QPointF(side.x() * label.size.width(), side.y() * label.size.height()) / 2.0);
    return place;
}

/// A segment that enters a rectangle ends in it or crosses a diagonal.
bool crosses(const QLineF& line, const QRectF& area)
{
    QPointF where;
    const auto meets = [&](const QPointF& from, const QPointF& to) {
        return line.intersects(QLineF(from, to), &where) == QLineF::BoundedIntersection;
    };
    return area.contains(line.p1()) || meets(area.topLeft(), area.bottomRight()) ||
           meets(area.topRight(), area.bottomLeft());
}

QRectF grown(const QRectF& area, double by)
{
    return area.adjusted(-by, -by, by, by);
}

/// What is wrong with a place: each kind of fault outweighs several of the next.
double costOf(const QRectF& place, const LabelRequest& label, const QVector<QRectF>& taken, const Surroundings& around)
{
    constexpr double outside = 1e6, onLabel = 1e4, leaderOnLabel = 2e3, onMark = 200.0, onLine = 40.0;
    constexpr double spacing = 4.0, markRadius = 8.0;
    constexpr double beyondAnchor = 0.2; // of the leader: the anchor itself may be the end of lines
    QLineF lead = leader(label.anchor, place);
    double cost = lead.length() + (around.canvas.contains(place) ? 0.0 : outside);
    lead.setP1(lead.pointAt(beyondAnchor));
    for (const QRectF& other : taken) {
        cost += grown(place, spacing).intersects(other) ? onLabel : 0.0;
        cost += crosses(lead, other) ? leaderOnLabel : 0.0;
    }
    for (const QPointF& mark : around.marks) {
        const QRectF box = grown(QRectF(mark, QSizeF()), markRadius);
        const bool hidden = box.intersects(place) || (!box.contains(label.anchor) && crosses(lead, box));
        cost += hidden ? onMark : 0.0;
    }
    QPointF where;
    for (const QLineF& line : around.lines)
        cost += crosses(line, place) || line.intersects(lead, &where) == QLineF::BoundedIntersection ? onLine : 0.0;
    return cost;
}

QRectF bestPlace(const LabelRequest& label, const QVector<QRectF>& taken, const Surroundings& around)
{
    constexpr int directions = 16;
    constexpr double halfTurn = 3.14159265358979323846, turnCost = 25.0;
    const QPointF wanted = unit(label.towards);
    QRectF best = placeAt(label, wanted, nearest);
    if (!label.mayMove)
        return best;
    double least = std::numeric_limits<double>::infinity();
    for (const double distance : {nearest, 30.0, 55.0, 85.0, 120.0}) {
        for (int i = 0; i < directions; ++i) {
            const double angle = 2.0 * halfTurn * i / directions;
            const QPointF direction(std::cos(angle), std::sin(angle));
            const QRectF place = placeAt(label, direction, distance);
            const double turned = 1.0 - QPointF::dotProduct(direction, wanted);
            const double cost = costOf(place, label, taken, around) + turnCost * turned;
            if (cost < least) {
                least = cost;
                best = place;
            }
        }
    }
    return best;
}

} // namespace

QLineF leader(const QPointF& anchor, const QRectF& label)
{
    return {anchor, QPointF(std::clamp(anchor.x(), label.left(), label.right()),
                            std::clamp(anchor.y(), label.top(), label.bottom()))};
}

QVector<QRectF> placeLabels(const QVector<LabelRequest>& labels, const Surroundings& surroundings)
{
    QVector<QRectF> places;
    for (const LabelRequest& label : labels)
        places << bestPlace(label, places, surroundings);
    return places;
}

} // namespace Charts
