// Makes the built-in gray tables: text files, one decimal number per line. docs/gray-tables.md has the formulas.
//   graytablegen <folder>
//   graytablegen --chart <file.svg>    draws the two curves for the documentation

#include <cmath>
#include <cstdio>
#include <fstream>
#include <functional>
#include <string>

namespace {

constexpr double panelGamma = 2.8;
constexpr double lowBrightnessGamma = 2.2;

bool writeTable(const std::string& path, int lines, const std::function<double(double)>& value)
{
    std::ofstream file(path, std::ios::binary);
    for (int line = 0; line < lines; ++line)
        file << std::lround(value(static_cast<double>(line) / (lines - 1))) << '\n';
    file.close();
    return !file.fail();
}

/// Gray level to linear drive, both of `bits`.
bool writeGray(const std::string& path, int bits, double gamma)
{
    const int levels = 1 << bits;
    return writeTable(path, levels, [=](double level) { return (levels - 1) * std::pow(level, gamma); });
}

bool writeTables(const std::string& folder)
{
    bool isGood = true;
    for (int bits = 10; bits <= 16; ++bits) {
        const std::string name = folder + (bits == 10 ? "/nGrary_" : "/nGray_") + std::to_string(bits);
        isGood = writeGray(name + ".txt", bits, panelGamma) && isGood;
        if (bits < 16)
            isGood = writeGray(name + "_Low.txt", bits, lowBrightnessGamma) && isGood;
    }
    constexpr double fullScale = 65535.0;
    isGood = writeTable(folder + "/LUT_INDEX.txt", 1024, [](double level) { return fullScale * level; }) && isGood;
    return writeTable(folder + "/nGray_White.txt", 256,
                      [](double level) { return fullScale * std::pow(level, panelGamma); }) &&
           isGood;
}

// The chart: 100 to 540 across, 40 to 320 down.

void drawCurve(std::ostream& svg, double gamma, const char* style)
{
    svg << "<polyline fill='none' " << style << " points='";
    for (int i = 0; i <= 100; ++i)
        svg << 100 + 4.4 * i << ',' << 320 - 280 * std::pow(i / 100.0, gamma) << ' ';
    svg << "'/>\n";
}

bool writeChart(const std::string& path)
{
    std::ofstream svg(path);
    svg << "<svg xmlns='http://www.w3.org/2000/svg' width='580' height='380' font-family='sans-serif' font-size='15'>\n"
           "<rect width='580' height='380' fill='white'/>\n";
    for (int i = 0; i <= 4; ++i) {
        const double x = 100 + 110 * i;
        const double y = 320 - 70 * i;
        svg << "<path d='M" << x << ",40V320M100," << y << "H540' stroke='#ddd'/>\n"
            << "<text x='" << x << "' y='342' text-anchor='middle'>" << 25 * i << " %</text>\n"
            << "<text x='92' y='" << y + 5 << "' text-anchor='end'>" << 25 * i << " %</text>\n";
    }
    drawCurve(svg, panelGamma, "stroke='#0072b2' stroke-width='3'");
    drawCurve(svg, lowBrightnessGamma, "stroke='#d55e00' stroke-width='3' stroke-dasharray='9 5'");
    svg << "<path d='M130,70h50' stroke='#d55e00' stroke-width='3' stroke-dasharray='9 5'/>\n"
           "<text x='190' y='75'>low brightness, gamma 2.2</text>\n"
           "<path d='M130,100h50' stroke='#0072b2' stroke-width='3'/>\n<text x='190' y='105'>panel, gamma 2.8</text>\n"
           "<text x='320' y='368' text-anchor='middle'>gray level</text>\n"
           "<text transform='translate(30,180) rotate(-90)' text-anchor='middle'>linear drive</text>\n</svg>\n";
    svg.close();
    return !svg.fail();
}

} // namespace

int main(int argc, char** argv)
{
    const bool isChart = argc == 3 && std::string(argv[1]) == "--chart";
    if (argc != 2 && !isChart) {
        std::fputs("usage: graytablegen <folder> | --chart <file.svg>\n", stderr);
        return 64;
    }
    if (isChart ? writeChart(argv[2]) : writeTables(argv[1]))
        return 0;
    std::fprintf(stderr, "graytablegen: %s cannot be written\n", argv[argc - 1]);
    return 74;
}
