"""Recomputes every figure of calibration reports from the files that went in, and compares them with what is printed.

    recompute_report.py QUALITYCTL EXAMPLES

A figure may be half a unit of its last decimal off. One that is not known here fails the test, as does a missing one.
"""
import hashlib
import json
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from collections import namedtuple
from fractions import Fraction
from html.parser import HTMLParser
from pathlib import Path

import exactcolour as colour
from exactcolour import ciede2000, distance_uv, lab, uv_prime, xy_of, xyz_of

POINTS = ("red", "green", "blue", "white")
WHITE = (1, 1, 1)
CONTENTS = {"red": (1, 0, 0), "green": (0, 1, 0), "blue": (0, 0, 1), "yellow": (1, 1, 0), "cyan": (0, 1, 1),
            "magenta": (1, 0, 1), "white": WHITE} | {f"gray {n} %": (Fraction(n, 100),) * 3 for n in (75, 50, 25, 10)}
D65 = (Fraction("0.3127"), Fraction("0.3290"))
PRIMARIES = {name: [(Fraction(x), Fraction(y)) for x, y in zip(*[iter(numbers.split())] * 2)] for name, numbers in {
    "rec709": "0.64 0.33 0.30 0.60 0.15 0.06", "bt2020": "0.708 0.292 0.170 0.797 0.131 0.046",
    "p3-d65": "0.680 0.320 0.265 0.690 0.150 0.060"}.items()}

FIGURE = re.compile(r"[0-9a-f]{64}|(?<![\w.])(?<!CIE )(?<!SHA-)-?\d+(?:\.\d+)?(?!\w|\.\d)")
LEVEL = re.compile(r"-?[\d.]+( nm| K)?$")  # along the axes and lines of a chart
NO_FIGURES = ("Report of | ", "date | ", "instrument | ")
UNCHECKED = None  # the time that a device took
Number = namedtuple("Number", "value decimals slack", defaults=(0, 0))  # the slack is that of a published formula
Line = namedtuple("Line", "section start figures")  # how the line begins, words and numbers, and the figures after that


class ReportLines(HTMLParser):
    """All texts of a report as (section, line); the cells of a row have " | " between them."""

    def __init__(self, html):
        super().__init__()
        self.lines, self.section, self.charts, self.text, self.cells = [], "", 0, "", []
        self.feed(html)

    def handle_data(self, data):
        self.text += data

    def handle_starttag(self, tag, attributes):
        self.charts += tag == "figure"

    def handle_endtag(self, tag):
        if tag in ("strong", "style"):
            self.text = self.text if tag == "strong" else ""
            return
        text, self.text = self.text.strip(), ""
        if tag in ("td", "th"):
            self.cells.append(text)
        elif tag == "tr":
            text, self.cells = " | ".join(self.cells), []
        elif tag == "h2":
            self.section = text
        if text and tag not in ("td", "th"):
            self.lines.append((f"chart {self.charts}" if tag == "text" else self.section, text))


def fits(printed, expected):
    if isinstance(expected, str) or expected is UNCHECKED:
        return expected in (printed, UNCHECKED)
    decimals = len(printed.partition(".")[2])
    half = Fraction(1, 2 * 10**decimals) + Fraction(1, 10**9)
    return decimals == expected.decimals and abs(Fraction(printed) - Fraction(expected.value)) <= half + expected.slack


def complaints(html, expected):
    """What in a report is not as expected, or not known, or missing."""
    wrong, left = [], list(expected)
    for section, text in ReportLines(html).lines:
        line = next((e for e in left if e.section == section and text.startswith(e.start)), Line(section, "", ()))
        printed = FIGURE.findall(text[len(line.start):])
        if line in left:
            left.remove(line)
        elif not printed or text.startswith(NO_FIGURES) or section.startswith("chart") and LEVEL.match(text):
            continue
        if len(printed) != len(line.figures) or not all(map(fits, printed, line.figures)):
            known = [f"{float(f[0]):.{f[1] + 2}f}" if isinstance(f, Number) else f for f in line.figures]
            wrong.append(f"{section}: {text!r}, expected {known or 'no figures'}")
    return wrong + [f"missing: {line}" for line in left]


def read_gamut(path):
    """Mean (x, y, cd/m2) of red, green, blue and white, and the figures of the notes about the readings."""
    if path.suffix == ".json":
        document = json.loads(path.read_text(), parse_float=Fraction)
        points = [document[name] for name in ("RedPoint", "GreenPoint", "BluePoint", "WhitePoint")]
        return [(p["x"], p["y"], p["lum"]) for p in points], []
    text = path.read_text()
    white = Fraction(re.search(r'^LUMINANCE_XYZ_CDM2 "\S+ (\S+)', text, re.M)[1])
    rows = re.search(r"BEGIN_DATA\n(.*?)END_DATA\n", text, re.S)[1].splitlines()
    readings = [[Fraction(field) for field in row.split()[1:]] for row in rows]
    patches = [[r[3:] for r in readings if r[:3] == drive]
               for drive in ([100, 0, 0], [0, 100, 0], [0, 0, 100], [100, 100, 100], [0, 0, 0])]
    means = [[sum(axis) / len(patch) for axis in zip(*patch)] for patch in patches[:4]]
    others = len(readings) - sum(map(len, patches))
    return [(*xy_of(mean), mean[1] * white / 100) for mean in means], [white, others]


class Calibration:
    """All figures of a wall that is corrected to a target, `luminance` in cd/m2 or as bright as it can be."""

    def __init__(self, measured, target, luminance=None):
        self.measured, self.target = measured, target
        wall, wanted = colour.system(*(p[:2] for p in measured)), colour.system(*target)
        rows, fit, scale = colour.correction(wall, wanted, luminance and luminance / measured[3][2])
        self.integers = [colour.integers_of([scale * entry for entry in row]) for row in rows]
        held = [[Fraction(unit, colour.FULL_SCALE) for unit in row] for row in self.integers]
        self.kept = colour.shown(wall, held, WHITE)[1]
        exact = [[min(fit, self.kept) * entry for entry in row] for row in rows]
        self.luminance = luminance or self.kept * measured[3][2]
        self.shares = [column[1] for column in wanted] + [1]
        self.asked = {name: colour.mixed(wanted, content) for name, content in CONTENTS.items()}
        self.drives = {name: [sum(entry * part for entry, part in zip(row, content)) for row in exact]
                       for name, content in CONTENTS.items()}
        self.reached = self.relative(wall, exact)
        self.shown = self.relative(wall, held)
        self.differences = {name: [self.difference(self.shown[name], asked), self.difference(self.reached[name], asked),
                                   self.difference(self.shown[name], self.reached[name])]
                            for name, asked in self.asked.items()}
        self.areas = {}
        for plane, of in (("xy", tuple), ("uv", uv_prime)):
            source, aim = [of(p[:2]) for p in measured[:3]], [of(p) for p in target[:3]]
            self.areas[plane] = [part / colour.area(aim) for part in
                                 (colour.area(source), colour.common_area(source, aim))]

    @staticmethod
    def relative(wall, rows):
        white = colour.shown(wall, rows, WHITE)[1]
        return {name: [c / white for c in colour.shown(wall, rows, content)] for name, content in CONTENTS.items()}

    def difference(self, one, other):
        return ciede2000(lab(one, self.asked["white"]), lab(other, self.asked["white"]))


def point_line(section, name, point):
    """A row of a point: a white has its temperature, within 0.5 % and 0.0002 of Krystek's."""
    figures = [Number(point[0], 4), Number(point[1], 4), Number(point[2], 1)]
    if name not in POINTS[:3]:
        kelvin, duv = colour.temperature(point[:2])
        figures += [Number(kelvin, 0, Fraction(kelvin / 200)), Number(duv, 4, Fraction(2, 10000))]
    return Line(section, f"{name} | ", figures)


def sum_of(points):
    total = [sum(axis) for axis in zip(*(xyz_of(*p) for p in points))]
    return (*xy_of(total), total[1])


def additivity_line(points, takes_sum):
    total, white = sum_of(points[:3]), points[3]
    excess, distance = total[2] / white[2] - 1, distance_uv(total[:2], white[:2])
    figures = [Number(v, d) for p in (total, white) for v, d in zip(p, (4, 4, 1))]
    figures += [Number(100 * excess, 1), Number(distance, 4)]
    sentence = "Red, green and blue add up to white"
    if abs(excess) > 0.02 or distance > 0.003:
        return Line("", f"Warning: {sentence}", figures)
    return Line("What was measured", sentence, figures)


def chart_lines(c):
    """Coverage, and the points of both gamuts; reached points that fall together with others have no text."""
    places = {}
    for chart, plane, of in (("chart 1", "xy", tuple), ("chart 2", "uv", uv_prime)):
        corners = [of(p[:2]) for p in (*c.measured[:3], *c.target[:3])]
        reached = [of(xy_of(c.shown[name])) for name in POINTS[:3]]
        corners += [p for p in reached if all(max(map(abs, (p[0] - q[0], p[1] - q[1]))) > 0.001 for q in corners)]
        for point in dict.fromkeys(tuple(f"{float(v):.4f}" for v in p) for p in corners):
            places[chart, ", ".join(point)] = ()
        places[chart, "measured: NAME, covers"] = [Number(100 * c.areas[plane][1], 2)]
    return [Line(*place, figures) for place, figures in places.items()]


def expected_lines(c, points, notes, takes_sum, devices, steps, files):
    """Every line of a report that has figures."""
    whole = f"{len(devices)} of {len(devices)} devices"
    after = (*xy_of(c.shown["white"]), c.kept * c.measured[3][2])
    wanted = [(*xy, share * c.luminance) for xy, share in zip(c.target, c.shares)]
    reached = [number for name, (_, out, _) in c.differences.items() if out >= 0.005
               for number in (Number(out, 2), *(Number(d, 3) for d in c.drives[name] if not -0.0005 <= d <= 1.0005))]
    white = "White before and after"
    worst = max(held for _, _, held in c.differences.values())
    lines = [Line("", f"PASSED: {whole} hold the correction, CIEDE2000 at most", [Number(worst, 2), Number(1, 1)]),
             additivity_line(points, takes_sum),
             *(Line("What was measured", "note | ", [Number(figure)]) for figure in notes),
             *(point_line("What was measured", *row) for row in zip(POINTS, points)),
             *(point_line("Target", *row) for row in zip(POINTS, wanted)),
             point_line(white, "before", c.measured[3]), point_line(white, "target", wanted[3]),
             point_line(white, "corrected", after),
             point_line(white, f"on {sum(devices.values())} cabinets", after),
             Line("Correction", "light kept | ", [Number(100 * c.kept, 2)]),
             Line("Correction", "coefficients, Q1.14 | ", [Number(unit) for row in c.integers for unit in row]),
             Line("Devices", f"{whole} hold everything", ())]
    for plane, name in (("xy", "xy"), ("uv", "u'v'")):
        percent = [Number(100 * part, 2) for part in c.areas[plane]]
        lines += [Line("Correction", f"area over the target's, {name} | ", percent[:1]),
                  Line("Correction", f"coverage of the target, {name} | ", percent[1:])]
    for name, differences in c.differences.items():
        places = [Number(v, 4) for xyz in (c.asked[name], c.shown[name]) for v in xy_of(xyz)]
        lines.append(Line("Colours and grays", f"{name} | ", [Number(d, 2) for d in differences] + places))
    if reached:
        lines.append(Line("Colours and grays", "Out of the LEDs' reach", reached))
    lines += [Line("Devices", f"{name} | ", [Number(count), Number(steps), Number(steps), UNCHECKED])
              for name, count in devices.items()]
    return lines + chart_lines(c) + [
        Line("Inputs", f"{role} | ", [hashlib.sha256(Path(file).read_bytes()).hexdigest()]) for role, file in files]


def without_fit(actual, expected, place=""):
    """The numbers of a JSON value that differ from those expected, or are not known."""
    if isinstance(actual, (dict, list)):
        members = actual.items() if isinstance(actual, dict) else enumerate(actual)
        known = dict(expected.items() if isinstance(expected, dict) else enumerate(expected or ()))
        return [fault for key, value in members for fault in without_fit(value, known.get(key), f"{place}/{key}")]
    if isinstance(actual, bool) or not isinstance(actual, (int, float)):
        return []
    if expected is not None and abs(actual - expected) <= 1e-6 * max(1, abs(expected)):
        return []
    return [f"{place}: {actual}, expected {expected and float(expected)}"]


def expected_verification(c, after, devices):
    """All numbers of `verify --measured`, each beside its name."""
    integers = [unit for row in c.integers for unit in row]
    areas = {f"{figure}_{plane}": part for plane, parts in c.areas.items()
             for figure, part in zip(("area_ratio", "coverage"), parts)}
    worst = max(held for _, _, held in c.differences.values())
    reached = [dict(zip(("ciede2000", "ciede2000_out_of_reach", "ciede2000_not_held", "x", "y"),
                        (*differences, *xy_of(c.shown[name])))) for name, differences in c.differences.items()]
    points = []
    for name, old, new in zip(POINTS, c.measured, after):
        seen, before = (xyz_of(*p[:2], p[2] / all_[3][2]) for p, all_ in ((new, after), (old, c.measured)))
        asked, shown = c.asked[name], c.shown[name]
        points.append({
            "before_xy": old[:2], "before_cd_m2": old[2], "after_xy": new[:2], "after_cd_m2": new[2],
            "computed_xy": xy_of(shown), "computed_cd_m2": shown[1] * c.kept * c.measured[3][2],
            "target_xy": xy_of(asked), "ciede2000_before_to_target": c.difference(before, asked),
            "ciede2000_after_to_target": c.difference(seen, asked),
            "ciede2000_after_to_computed": c.difference(seen, shown),
            "duv_prime_before_to_target": distance_uv(old[:2], xy_of(asked)),
            "duv_prime_after_to_target": distance_uv(new[:2], xy_of(asked)),
            "duv_prime_after_to_computed": distance_uv(new[:2], xy_of(shown))})
    furthest = max(point["ciede2000_after_to_computed"] for point in points)
    return areas | {
        "after": {"points": points, "max_ciede2000": furthest,
                  "white_luminance_difference": after[3][2] / (c.kept * c.measured[3][2]) - 1}, "error": {"code": 1},
        "shown": [areas | {"coefficients": integers, "light_kept": c.kept, "reached": reached}],
        "devices": [{"cabinets": n, "coefficients": integers, "max_ciede2000": worst} for n in devices.values()],
        "verdict": {"devices": len(devices), "devices_holding_it": len(devices), "max_ciede2000": worst, "max_de": 1}}


NARROW = [("0.40", "0.32", "149.6"), ("0.30", "0.42", "249.7"), ("0.24", "0.22", "100.7"), ("0.3127", "0.3290", "500")]
FILES = {"wall document": "wall.json", "gray table": "gray-table.csv", "binary": "receiving-card.bin"}
OPTIONS = {"wall document": "--wall", "gray table": "--table", "binary": "--binary"}
CASES = [  # measured, target, options, the target's cd/m2, only device
    ("readings.ti3", "rec709", (), None, None),
    ("readings.ti3", "bt2020", (), None, "left"),
    ("readings.ti3", "native:6500K", (), None, "left"),
    ("readings.ti3", "rec709:1500", (), 1500, "left"),
    ("measured-gamut.json", "p3-d65", (), None, "middle"),
    ("contradictory-gamut.json", "rec709", ("--white", "sum"), None, "left"),
    ("contradictory-gamut.json", "bt2020", (), None, "left"),
    ("narrow.json", "bt2020", (), None, "left")]  # asks for more than the coefficients hold


class RecomputedReport(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        temporary = tempfile.TemporaryDirectory()
        cls.addClassCleanup(temporary.cleanup)
        cls.folder = Path(temporary.name)
        for name in {case[0] for case in CASES[:-1]} | set(FILES.values()):
            shutil.copy(EXAMPLES / name, cls.folder)
        points = [dict(zip(("x", "y", "lum"), map(float, point))) for point in NARROW]
        names = ("RedPoint", "GreenPoint", "BluePoint", "WhitePoint")
        (cls.folder / "narrow.json").write_text(json.dumps({"name": "narrow"} | dict(zip(names, points))))

    def qualityctl(self, *arguments):
        return subprocess.run([QUALITYCTL, *arguments], cwd=self.folder, capture_output=True, text=True, timeout=60)

    def calibrated(self, measured, target, options, luminance, device):
        """The report of a calibration, what it should say, and the figures behind that."""
        files = [(role, name) for role, name in FILES.items() if not device]
        arguments = [word for role, name in files for word in (OPTIONS[role], name)]
        arguments += ["--device", device] if device else []
        done = self.qualityctl("calibrate", "--measured", measured, "--target", target, "--out", "out", "--force",
                               *options, *arguments)
        self.assertEqual(done.returncode, 0, done.stderr)
        points, notes = read_gamut(self.folder / measured)
        takes_sum = "sum" in options
        wall = points[:3] + [sum_of(points[:3])] if takes_sum else points
        name = target.partition(":")[0]
        wanted = [p[:2] for p in wall[:3]] + [colour.daylight(6500)] if name == "native" else PRIMARIES[name] + [D65]
        c = Calibration(wall, wanted, luminance and Fraction(luminance))
        devices = {d["id"]: len(d["cabinets"]) for d in json.loads((self.folder / "wall.json").read_text())["devices"]
                   if device in (None, d["id"])}
        inputs = [(role, self.folder / file) for role, file in [("gamut", measured), *files]]
        name = measured if measured.endswith("ti3") else json.loads((self.folder / measured).read_text())["name"]
        html = (self.folder / "out" / "report.html").read_text().replace(name, "NAME")
        return html, expected_lines(c, points, notes, takes_sum, devices, 4 if device else 6, inputs), c, devices

    def test_every_figure_of_a_report_is_right(self):
        for case in CASES:
            with self.subTest(measured=case[0], target=case[1]):
                html, expected = self.calibrated(*case)[:2]
                self.assertEqual(complaints(html, expected), [])

    def test_a_wrong_or_unknown_figure_is_found(self):
        html, expected = self.calibrated(*CASES[1])[:2]
        for right, wrong in (("<td>coefficients, Q1.14</td>", "<td>a new figure</td>"), (">95.40 %<", ">95.41 %<"),
                             ("</h1>", "</h1><p>A gain of 1.2</p>"), (">5.17<", ">5.16<"), ("0.0812<", "0.0813<")):
            self.assertIn(right, html)
            self.assertTrue(complaints(html.replace(right, wrong, 1), expected), wrong)

    def test_verification_compares_with_the_same_figures(self):
        c, devices = self.calibrated(*CASES[0])[2:]
        verified = json.loads(self.qualityctl("verify", "out", "--measured", "measured-gamut.json", "--json").stdout)
        after = read_gamut(self.folder / "measured-gamut.json")[0]
        self.assertEqual(without_fit(verified, expected_verification(c, after, devices)), [])

    def test_the_colour_difference_is_the_published_one(self):
        for one, other, difference in (
                ((50, 2.6772, -79.7751), (50, 0, -82.7485), 2.0425),
                ((50, -1.3802, -84.2814), (50, 0, -82.7485), 1.0), ((50, 0, 0), (50, -1, 2), 2.3669),
                ((50, 2.5, 0), (73, 25, -18), 27.1492), ((50, 2.49, -0.001), (50, -2.49, 0.0009), 7.1792),
                ((60.2574, -34.0099, 36.2677), (60.4626, -34.1751, 39.4387), 1.2644),
                ((63.0109, -31.0961, -5.8663), (62.8187, -29.7946, -4.0864), 1.2630)):
            self.assertAlmostEqual(ciede2000(one, other), difference, 4)


if __name__ == "__main__":
    QUALITYCTL, EXAMPLES = Path(sys.argv.pop(1)).resolve(), Path(sys.argv.pop(1))
    unittest.main()
