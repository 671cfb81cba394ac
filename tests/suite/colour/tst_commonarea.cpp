#include <suite/colour/commonarea.h>

#include <QTest>

#include <algorithm>
#include <random>

using namespace Colour;

using Groups = std::vector<Primaries>;
using Polygon = std::vector<Chromaticity>;
using Indices = std::vector<std::size_t>;

Q_DECLARE_METATYPE(Groups)
Q_DECLARE_METATYPE(Polygon)
Q_DECLARE_METATYPE(Indices)

namespace {

constexpr double s_radius = 1e-4;

Primaries triangle(const Chromaticity& a, const Chromaticity& b, const Chromaticity& c)
{
    return {a, b, c, {}};
}

double twiceArea(const Chromaticity& a, const Chromaticity& b, const Chromaticity& c)
{
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

/// Counter-clockwise.
std::array<Chromaticity, 3> cornersOf(const Primaries& p)
{
    const bool isTurned = twiceArea(p.red, p.green, p.blue) < 0.0;
    return {p.red, isTurned ? p.blue : p.green, isTurned ? p.green : p.blue};
}

/// The common polygon a second way: a large square, cut by one side after the other.
Polygon cutOut(const Groups& groups, std::size_t without)
{
    Polygon polygon{{-999, -999}, {999, -999}, {999, 999}, {-999, 999}};
    for (std::size_t group = 0; group < groups.size(); ++group) {
        const auto corners = cornersOf(groups[group]);
        for (std::size_t side = 0; side < 3 && group != without; ++side) {
            Polygon left;
            for (std::size_t i = 0; i < polygon.size(); ++i) {
                const Chromaticity& from = polygon[i];
                const Chromaticity& to = polygon[(i + 1) % polygon.size()];
                const double s = twiceArea(corners[side], corners[(side + 1) % 3], from);
                const double t = twiceArea(corners[side], corners[(side + 1) % 3], to);
                if (s >= 0.0)
                    left.push_back(from);
                if (s * t < 0.0)
                    left.push_back({from.x + s / (s - t) * (to.x - from.x), from.y + s / (s - t) * (to.y - from.y)});
            }
            polygon = left;
        }
    }
    return polygon;
}

constexpr std::size_t s_all = 999999;

/// Of all triangles on three of the corners.
double largestArea(const Polygon& polygon)
{
    double largest = 0.0;
    for (std::size_t a = 0; a < polygon.size(); ++a)
        for (std::size_t b = a + 1; b < polygon.size(); ++b)
            for (std::size_t c = b + 1; c < polygon.size(); ++c)
                largest = std::max(largest, 0.5 * twiceArea(polygon[a], polygon[b], polygon[c]));
    return largest;
}

/// The largest distance of a triangle's corners from the inside of a group's triangle.
double outside(const CommonTriangle& found, const Groups& groups, std::size_t without = s_all)
{
    double worst = 0.0;
    for (std::size_t group = 0; group < groups.size(); ++group) {
        const auto corners = cornersOf(groups[group]);
        for (std::size_t side = 0; side < 3 && group != without; ++side) {
            const Chromaticity& from = corners[side];
            const Chromaticity& to = corners[(side + 1) % 3];
            for (const CommonCorner& corner : found.corners)
                worst = std::max(worst, -twiceArea(from, to, corner.place) / std::hypot(to.x - from.x, to.y - from.y));
        }
    }
    return worst;
}

/// What sets of groups look like that are hard in different ways.
class RandomGroups
{
public:
    enum Kind { Walls, Tangents, OneSideEach, OnGrid, KindCount };

    Groups make(Kind kind, std::size_t count)
    {
        const double angle = number(0.0, 6.3);
        const double flatness = number(0.2, 1.0);
        Groups groups;
        for (std::size_t i = 0; i < count; ++i)
            groups.push_back(kind == Walls         ? wall()
                             : kind == Tangents    ? tangents(angle, flatness)
                             : kind == OneSideEach ? oneSide()
                                                   : onGrid());
        return groups;
    }

private:
    double number(double from, double to) { return std::uniform_real_distribution<>(from, to)(m_random); }
    Chromaticity near(double x, double y) { return {x + number(-0.03, 0.03), y + number(-0.03, 0.03)}; }
    Primaries wall() { return triangle(near(0.45, 0.52), near(0.12, 0.56), near(0.17, 0.16)); }
    /// Around an ellipse: each side is one of the common area's.
    Primaries tangents(double angle, double flatness)
    {
        const double start = number(0.0, 6.3);
        const auto corner = [&](double turn) {
            const double x = 2.0 * std::cos(start + turn);
            const double y = 2.0 * std::sin(start + turn) * flatness;
            return Chromaticity{x * std::cos(angle) - y * std::sin(angle), x * std::sin(angle) + y * std::cos(angle)};
        };
        return triangle(corner(0.0), corner(2.1 + number(-0.3, 0.3)), corner(4.2 + number(-0.3, 0.3)));
    }
    /// Near the origin, and the other two far away.
    Primaries oneSide()
    {
        const double angle = number(0.0, 6.3);
        const double distance = std::pow(number(0.2, 1.0), 2);
        const Chromaticity out{std::cos(angle), std::sin(angle)};
        const Chromaticity foot{out.x * distance, out.y * distance};
        return triangle({foot.x - 50 * out.y, foot.y + 50 * out.x}, {foot.x + 30 * out.y, foot.y - 30 * out.x},
                        {foot.x - 50 * out.x, foot.y - 50 * out.y});
    }
    /// Equal lines, equal corners, corners on lines.
    Primaries onGrid()
    {
        const auto eighths = [this](int from, int to) {
            return std::uniform_int_distribution<>(from, to)(m_random) / 8.0;
        };
        return triangle({eighths(5, 8), eighths(0, 2)}, {eighths(-2, 1), eighths(-2, 1)},
                        {eighths(2, 4), eighths(5, 8)});
    }

    std::mt19937 m_random{7};
};

} // namespace

class CommonAreaTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void corners_data()
    {
        QTest::addColumn<Groups>("groups");
        QTest::addColumn<std::size_t>("count");
        QTest::addColumn<double>("area");
        QTest::addColumn<Polygon>("expected"); // in any order
        const Primaries half = triangle({0, 0}, {1, 0}, {0, 1});
        const auto row = [](const char* name, const Groups& groups, std::size_t count, double area,
                            const Polygon& expected) { QTest::newRow(name) << groups << count << area << expected; };
        row("one", {triangle({0.1, 0.7}, {0.3, 0.1}, {0.9, 0.2})}, 3, 0.19, {{0.1, 0.7}, {0.3, 0.1}, {0.9, 0.2}});
        row("an edge in common", {half, triangle({0, 0}, {1, 1}, {1, 0})}, 3, 0.25, {{0, 0}, {1, 0}, {0.5, 0.5}});
        row("one inside the other", {triangle({-1, -1}, {3, -1}, {-1, 3}), half}, 3, 0.5, {{0, 0}, {1, 0}, {0, 1}});
        row("twice the same, once turned", {half, triangle({0, 1}, {1, 0}, {0, 0}), half}, 3, 0.5,
            {{0, 0}, {1, 0}, {0, 1}});
        row("a rectangle without a corner", {half, triangle({0.6, 0.5}, {0.6, -1}, {-0.9, 0.5})}, 5, 0.15, {});
        // A star of six points has the hexagon of its inner corners in common, half of which is a triangle.
        row("six corners", {triangle({0, 0}, {6, 0}, {3, 6}), triangle({0, 4}, {6, 4}, {3, -2})}, 6, 6.0, {});
    }

    void corners()
    {
        QFETCH(Groups, groups);
        QFETCH(Polygon, expected);
        const CommonArea area(groups, s_radius);
        QCOMPARE(area.excluding(), Indices());
        QTEST(area.cornerCount(), "count");
        QTEST(area.largest().area, "area");
        for (const CommonCorner& corner : area.largest().corners)
            QVERIFY(expected.empty() ||
                    std::any_of(expected.begin(), expected.end(), [&corner](const Chromaticity& point) {
                        return std::hypot(point.x - corner.place.x, point.y - corner.place.y) < 1e-15;
                    }));
    }

    void whoHasNothingInCommonIsNamed_data()
    {
        QTest::addColumn<Groups>("groups");
        QTest::addColumn<Indices>("excluding");
        const Primaries large = triangle({-9, -9}, {9, -9}, {0, 9});
        const Primaries left = triangle({0, 0}, {1, 0}, {0, 1});
        const Primaries right = triangle({2, 0}, {3, 0}, {3, 1});
        QTest::newRow("two of four") << Groups{large, right, large, left} << Indices{1, 3};
        QTest::newRow("two that touch") << Groups{left, large, triangle({1, 0}, {2, 0}, {2, 1})} << Indices{0, 2};
        QTest::newRow("two with a sliver")
            << Groups{left, triangle({0, 0.0001}, {1, 0.0001}, {0.5, -1})} << Indices{0, 1};
        QTest::newRow("one that is a sliver") << Groups{large, triangle({0, 0}, {1, 0}, {0, 1e-5})} << Indices{1};
        // Each crosses both others outside of the third.
        QTest::newRow("three only together")
            << Groups{large, triangle({0, 0}, {4, 0}, {2, 0.5}), triangle({0, -1}, {2.5, 4}, {0, 4}), large,
                      triangle({4, -1}, {4, 4}, {1.5, 4})}
            << Indices{1, 2, 4};
    }

    void whoHasNothingInCommonIsNamed()
    {
        QFETCH(Groups, groups);
        QTEST(CommonArea(groups, s_radius).excluding(), "excluding");
    }

    void noTriangleIsLarger_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("sets");
        QTest::newRow("walls") << int(RandomGroups::Walls) << 4000;
        QTest::newRow("tangents") << int(RandomGroups::Tangents) << 2000;
        QTest::newRow("one side each") << int(RandomGroups::OneSideEach) << 2000;
        QTest::newRow("on a grid") << int(RandomGroups::OnGrid) << 2000;
    }

    void noTriangleIsLarger()
    {
        QFETCH(int, kind);
        QFETCH(int, sets);
        RandomGroups random;
        for (int set = 0; set < sets; ++set) {
            const Groups groups = random.make(RandomGroups::Kind(kind), static_cast<std::size_t>(2 + set % 4));
            const CommonArea area(groups, s_radius);
            QVERIFY(area.excluding().empty());
            const double largest = largestArea(cutOut(groups, s_all));
            QVERIFY(std::abs(area.largest().area - largest) < 1e-9 * largest);
            QVERIFY(outside(area.largest(), groups) < 1e-12);
            const auto without = area.largestWithoutEach();
            for (std::size_t i = 0; i < groups.size(); ++i) {
                const double other = largestArea(cutOut(groups, i));
                QVERIFY(std::abs(without[i].area - other) < 1e-9 * other);
                QVERIFY(without[i].area >= area.largest().area);
                QVERIFY(outside(without[i], groups, i) < 1e-12);
            }
        }
    }

    /// Nobody can try all triangles on so many corners, but on a circle they are known.
    void manyCornersOnACircle()
    {
        constexpr std::size_t count = 2000;
        Groups groups;
        for (std::size_t i = 0; i < count; ++i) {
            const auto corner = [i](int third) {
                const double angle = 2.0 * M_PI * (third + static_cast<double>(i) / count) / 3.0;
                return Chromaticity{0.3 + 0.2 * std::cos(angle), 0.4 + 0.2 * std::sin(angle)};
            };
            groups.push_back(triangle(corner(0), corner(1), corner(2)));
        }
        const CommonArea area(groups, s_radius);
        QCOMPARE(area.cornerCount(), 3 * count);
        const double circle = 3.0 * std::sqrt(3.0) / 4.0 * 0.01; // of radius 0.1
        QVERIFY(area.largest().area > circle && area.largest().area < circle * (1.0 + 1e-5));
        for (const CommonTriangle& without : area.largestWithoutEach())
            QVERIFY(without.area > area.largest().area && without.area < circle * (1.0 + 1e-5));
    }
};

QTEST_APPLESS_MAIN(CommonAreaTest)
#include "tst_commonarea.moc"
