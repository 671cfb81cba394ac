// A thousand groups of cabinets matched, with what each holds and all coefficients, beside the common triangle and
// luminance computed anew without each. Once with the few corners that walls leave in common, once with all 3,000 that
// are possible. With --growth also ten thousand and a hundred thousand groups.

#include <calibration/gamut.h>
#include <calibration/match.h>
#include <suite/colour/commonarea.h>

#include <benchmark/benchmark.h>

#include <limits>
#include <random>

namespace {

using namespace Calibration;

enum Shape { FewCorners, AllCorners };

Model::ColorGamutInfo wall(std::mt19937& random)
{
    std::uniform_real_distribution<> error(-0.01, 0.01);
    const auto near = [&](double x, double y) { return Colour::Chromaticity{x + error(random), y + error(random)}; };
    const Colour::Primaries primaries{near(0.68, 0.295), near(0.19, 0.71), near(0.14, 0.07), near(0.29, 0.31)};
    return gamutOf(primaries, std::uniform_real_distribution<>(2000.0, 3000.0)(random));
}

/// A triangle around a circle in u'v': each side of each is a side of what they have in common.
Model::ColorGamutInfo tangents(std::mt19937& random)
{
    const double start = std::uniform_real_distribution<>(-0.15, 0.45)(random);
    const auto corner = [start](int third) {
        const double angle = start + 2.0 * M_PI * third / 3.0;
        return Colour::fromUvPrime({0.23 + 0.16 * std::cos(angle), 0.42 + 0.16 * std::sin(angle)});
    };
    const Colour::Primaries primaries{corner(0), corner(1), corner(2), {0.31, 0.32}};
    return gamutOf(primaries, std::uniform_real_distribution<>(2000.0, 3000.0)(random));
}

std::vector<MatchGroup> groupsOf(Shape shape, std::size_t count)
{
    std::mt19937 random(1);
    std::vector<MatchGroup> groups;
    for (std::size_t i = 0; i < count; ++i)
        groups.push_back({QStringLiteral("group %1").arg(i), shape == FewCorners ? wall(random) : tangents(random)});
    return groups;
}

void match(benchmark::State& state, Shape shape, std::size_t count)
{
    const auto groups = groupsOf(shape, count);
    const auto target = readTarget(QStringLiteral("native"), false);
    for (auto _ : state) {
        const auto result = matchOf(groups, *target, {});
        if (!result || result->without.size() != count)
            state.SkipWithError("no match");
        benchmark::DoNotOptimize(result);
    }
}

double reachableOf(const Colour::Primaries& group, double luminance, const Colour::Primaries& target)
{
    return luminance * *Colour::whiteScale(*Colour::correctionMatrix(group, target), 0.0, 0.0, 0.0);
}

/// The common triangle of all groups but one, and its luminance.
void leaveOneOut(const std::vector<MatchGroup>& groups, std::size_t without)
{
    std::vector<Colour::Primaries> others;
    for (std::size_t i = 0; i < groups.size(); ++i)
        if (i != without)
            others.push_back(uvPrime(primariesOf(groups[i].measured)));
    const Colour::CommonArea area(others, leastCommonRadius);
    const auto& corners = area.largest().corners;
    const auto xy = [&corners](std::size_t i) { return Colour::fromUvPrime(corners[i].place); };
    const Colour::Primaries target{xy(0), xy(1), xy(2), {0.3127, 0.3290}};
    double least = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < groups.size(); ++i)
        if (i != without)
            least = std::min(least, reachableOf(primariesOf(groups[i].measured), groups[i].measured.wLxy.lum, target));
    benchmark::DoNotOptimize(least);
}

void leaveEachOut(benchmark::State& state, Shape shape, std::size_t count)
{
    const auto groups = groupsOf(shape, count);
    for (auto _ : state)
        for (std::size_t i = 0; i < count; ++i)
            leaveOneOut(groups, i);
}

template <typename Function>
void add(const std::string& name, Function function, Shape shape, std::size_t count)
{
    benchmark::RegisterBenchmark((name + (shape == FewCorners ? "/few corners" : "/all corners")).c_str(), function,
                                 shape, count)
        ->Unit(benchmark::kMillisecond);
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_LOGGING_RULES", "default.info=false");
    benchmark::Initialize(&argc, argv);
    const bool isGrowth = argc > 1 && qstrcmp(argv[1], "--growth") == 0;
    for (const Shape shape : {FewCorners, AllCorners}) {
        add("matching 1,000 groups/baseline: each left out anew", leaveEachOut, shape, 1000);
        add("matching 1,000 groups/ours: matchOf", match, shape, 1000);
        if (isGrowth) {
            add("matching/10,000 groups", match, shape, 10000);
            add("matching/100,000 groups", match, shape, 100000);
        }
    }
    benchmark::RunSpecifiedBenchmarks();
}
