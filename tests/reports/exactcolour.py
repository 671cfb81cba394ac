"""Colour computed a second way, for comparison: in exact fractions where it is rational, else by published formulas.

A colour is (X, Y, Z), a gamut three or four (x, y), and a system the XYZ of red, green and blue that add up to white.
"""
from fractions import Fraction
from math import atan2, cos, degrees, exp, floor, hypot, radians, sin, sqrt

FULL_SCALE = 16384


def xyz_of(x, y, luminance=1):
    return luminance * x / y, luminance, luminance * (1 - x - y) / y


def xy_of(xyz):
    return xyz[0] / sum(xyz), xyz[1] / sum(xyz)


def uv_prime(xy):
    x, y = xy
    return 4 * x / (-2 * x + 12 * y + 3), 9 * y / (-2 * x + 12 * y + 3)


def distance_uv(one, other):
    return hypot(*(float(a - b) for a, b in zip(uv_prime(one), uv_prime(other))))


def mixed(columns, weights):
    return tuple(sum(weight * column[i] for column, weight in zip(columns, weights)) for i in range(3))


def solve(columns, right):
    """The weights with which the columns add up to the right side, by Cramer's rule."""
    def determinant(a, b, c):
        return sum(a[i] * (b[i - 2] * c[i - 1] - b[i - 1] * c[i - 2]) for i in range(3))
    whole = determinant(*columns)
    return tuple(determinant(*columns[:i], right, *columns[i + 1:]) / whole for i in range(3))


def system(red, green, blue, white):
    columns = [xyz_of(*primary) for primary in (red, green, blue)]
    return [tuple(share * c for c in column) for share, column in zip(solve(columns, xyz_of(*white)), columns)]


def correction(wall, wanted, ratio=None):
    """Rows that drive the wall to the wanted colours, unscaled, and the scale: as bright as fits, or a given ratio."""
    rows = list(zip(*(solve(wall, column) for column in wanted)))
    largest = max(abs(entry) for row in rows for entry in row)
    fit = min(1 / max(map(sum, rows)), Fraction(32766, FULL_SCALE) / largest)
    return rows, fit, fit if ratio is None else min(fit, ratio)


def integers_of(row):
    """Nearest units; the largest entry makes the row add up to its own rounded sum."""
    def nearest(value):
        return floor(abs(value) * FULL_SCALE + Fraction(1, 2)) * (1 if value > 0 else -1)
    units = [nearest(entry) for entry in row]
    largest = max(range(3), key=lambda i: abs(row[i]))
    units[largest] += nearest(sum(row)) - sum(units)
    return units


def shown(wall, rows, content):
    """What the wall shows of a content: each channel stops at nothing and at full scale."""
    drive = [sum(entry * share for entry, share in zip(row, content)) for row in rows]
    return mixed(wall, [min(max(channel, 0), 1) for channel in drive])


def area(corners):
    return abs(sum(a[0] * b[1] - b[0] * a[1] for a, b in zip(corners, corners[1:] + corners[:1]))) / 2


def turn(a, b, c):
    return (b[0] - a[0]) * (c[1] - a[1]) - (b[1] - a[1]) * (c[0] - a[0])


def common_area(one, other):
    """Of two triangles: the corners of each inside the other and where edges cross, around their middle."""
    def edges(triangle):
        return list(zip(triangle, triangle[1:] + triangle[:1]))

    def inside(point, triangle):
        turns = [turn(a, b, point) for a, b in edges(triangle)]
        return min(turns) >= 0 or max(turns) <= 0
    points = {p for p in one if inside(p, other)} | {p for p in other if inside(p, one)}
    for a, b in edges(one):
        for c, d in edges(other):
            from_c, from_d = turn(a, b, c), turn(a, b, d)
            if from_c * from_d < 0 and turn(c, d, a) * turn(c, d, b) < 0:
                share = from_c / (from_c - from_d)
                points.add((c[0] + share * (d[0] - c[0]), c[1] + share * (d[1] - c[1])))
    if len(points) < 3:
        return 0
    middle = [sum(p[i] for p in points) / len(points) for i in range(2)]
    return area(sorted(points, key=lambda p: atan2(p[1] - middle[1], p[0] - middle[0])))


def daylight(kelvin):
    """The daylight locus up to 7,000 K (CIE 15)."""
    t = Fraction(1000, kelvin)
    x = Fraction("0.244063") + t * Fraction("0.09911") + t**2 * Fraction("2.9678") - t**3 * Fraction("4.6070")
    return x, -3 * x * x + Fraction("2.870") * x - Fraction("0.275")


def temperature(xy):
    """CCT in kelvin, up to 15,000, and Duv, by Krystek's rational approximation of the Planckian locus (1985), which is
    within 0.0001 in u and v."""
    def locus(mired):
        t = 1e6 / mired
        return ((0.860117757 + 1.54118254e-4 * t + 1.28641212e-7 * t * t) /
                (1 + 8.42420235e-4 * t + 7.08145163e-7 * t * t),
                (0.317398726 + 4.22806245e-5 * t + 4.20481691e-8 * t * t) /
                (1 - 2.89741816e-5 * t + 1.61456053e-7 * t * t))
    u, v = (float(c) for c in uv_prime(xy))
    v *= 2 / 3

    def distance(mired):
        return hypot(u - locus(mired)[0], v - locus(mired)[1])
    low, high = 1e6 / 15000, 1000.0
    while high - low > 1e-6:
        third = (high - low) / 3
        if distance(low + third) < distance(high - third):
            high -= third
        else:
            low += third
    return 1e6 / low, distance(low) * (1 if v > locus(low)[1] else -1)


def lab(xyz, white):
    def f(t):
        return t ** (1 / 3) if t > 216 / 24389 else (24389 / 27 * t + 16) / 116
    x, y, z = (f(float(a / w)) for a, w in zip(xyz, white))
    return 116 * y - 16, 500 * (x - y), 200 * (y - z)


def ciede2000(one, other):
    """Sharma, Wu, Dalal (2005)."""
    def g(c):
        return sqrt(c**7 / (c**7 + 25**7))
    (l1, a1, b1), (l2, a2, b2) = one, other
    stretch = 1.5 - g((hypot(a1, b1) + hypot(a2, b2)) / 2) / 2
    a1, a2 = a1 * stretch, a2 * stretch
    c1, c2 = hypot(a1, b1), hypot(a2, b2)
    h1, h2 = (degrees(atan2(b, a)) % 360 for a, b in ((a1, b1), (a2, b2)))
    dh = (h2 - h1 + 180) % 360 - 180 if c1 * c2 else 0
    h = h1 + dh / 2 if c1 * c2 else h1 + h2
    c, l50 = (c1 + c2) / 2, ((l1 + l2) / 2 - 50) ** 2
    waves = ((-0.17, 1, -30), (0.24, 2, 0), (0.32, 3, 6), (-0.20, 4, -63))
    t = 1 + sum(size * cos(radians(times * h + shift)) for size, times, shift in waves)
    dl = (l2 - l1) / (1 + 0.015 * l50 / sqrt(20 + l50))
    dc = (c2 - c1) / (1 + 0.045 * c)
    dh = 2 * sqrt(c1 * c2) * sin(radians(dh / 2)) / (1 + 0.015 * c * t)
    rotation = -sin(radians(60 * exp(-((h % 360 - 275) / 25) ** 2))) * 2 * g(c)
    return sqrt(dl**2 + dc**2 + dh**2 + rotation * dc * dh)
