// A correction matrix with coverage, beside the same arithmetic written by hand for fixed sizes, without checks. It is
// an error when either allocates memory.

#include <suite/colour/adapterquali.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <new>

namespace {

long s_allocations = 0;

const ColorGamutPARM led{0.69, 0.30, 0.17, 0.73, 0.13, 0.08};
const ColorGamutPARM rec709{0.64, 0.33, 0.30, 0.60, 0.15, 0.06};
const OnePointLxy ledWhite{3120.0, 0.2863, 0.2949};
const OnePointLxy d65{100.0, 0.3127, 0.3290};

struct Figures
{
    short coefficients[9];
    double first;
    double second;
};

using Matrix = double[3][3];

void invert(const Matrix& m, Matrix& out)
{
    const double a = m[1][1] * m[2][2] - m[1][2] * m[2][1];
    const double b = m[1][2] * m[2][0] - m[1][0] * m[2][2];
    const double c = m[1][0] * m[2][1] - m[1][1] * m[2][0];
    const double d = 1.0 / (m[0][0] * a + m[0][1] * b + m[0][2] * c);
    out[0][0] = a * d;
    out[0][1] = (m[0][2] * m[2][1] - m[0][1] * m[2][2]) * d;
    out[0][2] = (m[0][1] * m[1][2] - m[0][2] * m[1][1]) * d;
    out[1][0] = b * d;
    out[1][1] = (m[0][0] * m[2][2] - m[0][2] * m[2][0]) * d;
    out[1][2] = (m[0][2] * m[1][0] - m[0][0] * m[1][2]) * d;
    out[2][0] = c * d;
    out[2][1] = (m[0][1] * m[2][0] - m[0][0] * m[2][1]) * d;
    out[2][2] = (m[0][0] * m[1][1] - m[0][1] * m[1][0]) * d;
}

void toXyz(const ColorGamutPARM& p, const OnePointLxy& white, Matrix& n)
{
    const double x[] = {p.redX, p.greenX, p.blueX};
    const double y[] = {p.redY, p.greenY, p.blueY};
    for (int i = 0; i < 3; ++i) {
        n[0][i] = x[i] / y[i];
        n[1][i] = 1.0;
        n[2][i] = (1.0 - x[i] - y[i]) / y[i];
    }
    Matrix inverse;
    invert(n, inverse);
    const double w[] = {white.x / white.y, 1.0, (1.0 - white.x - white.y) / white.y};
    for (int i = 0; i < 3; ++i) {
        const double share = inverse[i][0] * w[0] + inverse[i][1] * w[1] + inverse[i][2] * w[2];
        for (auto& row : n)
            row[i] *= share;
    }
}

/// Clips the triangle `p` by the triangle `q`, both counter-clockwise, and gives the area.
double clippedArea(const double (&px)[3], const double (&py)[3], const double (&qx)[3], const double (&qy)[3])
{
    double x[9] = {px[0], px[1], px[2]};
    double y[9] = {py[0], py[1], py[2]};
    int size = 3;
    for (int edge = 0; edge < 3; ++edge) {
        const int next = (edge + 1) % 3;
        double newX[9];
        double newY[9];
        int newSize = 0;
        for (int i = 0; i < size; ++i) {
            const int j = (i + 1) % size;
            const double s = (qx[next] - qx[edge]) * (y[i] - qy[edge]) - (x[i] - qx[edge]) * (qy[next] - qy[edge]);
            const double t = (qx[next] - qx[edge]) * (y[j] - qy[edge]) - (x[j] - qx[edge]) * (qy[next] - qy[edge]);
            if (s >= 0.0) {
                newX[newSize] = x[i];
                newY[newSize++] = y[i];
            }
            if (s * t < 0.0) {
                newX[newSize] = x[i] + s / (s - t) * (x[j] - x[i]);
                newY[newSize++] = y[i] + s / (s - t) * (y[j] - y[i]);
            }
        }
        std::copy(newX, newX + newSize, x);
        std::copy(newY, newY + newSize, y);
        size = newSize;
    }
    double twice = 0.0;
    for (int i = 0; i < size; ++i)
        twice += x[i] * y[(i + 1) % size] - x[(i + 1) % size] * y[i];
    return 0.5 * twice;
}

Figures byHand(const ColorGamutPARM& source, const OnePointLxy& sourceWhite, const ColorGamutPARM& target,
               const OnePointLxy& targetWhite)
{
    Matrix s;
    Matrix t;
    Matrix inverse;
    toXyz(source, sourceWhite, s);
    toXyz(target, targetWhite, t);
    invert(s, inverse);
    Matrix a;
    double largest = 0.0;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            a[i][j] = inverse[i][0] * t[0][j] + inverse[i][1] * t[1][j] + inverse[i][2] * t[2][j];
        largest = std::max(largest, a[i][0] + a[i][1] + a[i][2]);
    }
    Figures figures;
    for (int i = 0; i < 9; ++i)
        figures.coefficients[i] = static_cast<short>(std::lround(a[i / 3][i % 3] * 16384.0 / largest));
    const double sx[] = {source.redX, source.greenX, source.blueX};
    const double sy[] = {source.redY, source.greenY, source.blueY};
    const double tx[] = {target.redX, target.greenX, target.blueX};
    const double ty[] = {target.redY, target.greenY, target.blueY};
    const auto area = [](const double(&x)[3], const double(&y)[3]) {
        return 0.5 * ((x[1] - x[0]) * (y[2] - y[0]) - (x[2] - x[0]) * (y[1] - y[0]));
    };
    figures.first = area(sx, sy) / area(tx, ty);
    figures.second = clippedArea(sx, sy, tx, ty) / area(tx, ty);
    return figures;
}

Figures byAdapter(const ColorGamutPARM& source, const OnePointLxy& sourceWhite, const ColorGamutPARM& target,
                  const OnePointLxy& targetWhite)
{
    const AdapterQuali adapter;
    Figures figures;
    double ratio = 0.0;
    adapter.MICCMatrixCoef(figures.coefficients, &ratio, target, source, targetWhite, sourceWhite);
    adapter.MICCGamutCoverge(&figures.first, &figures.second, source, target);
    return figures;
}

template <auto Compute>
void compute(benchmark::State& state)
{
    ColorGamutPARM source = led;
    const long before = s_allocations;
    for (auto _ : state) {
        benchmark::DoNotOptimize(source);
        Figures figures = Compute(source, ledWhite, rec709, d65);
        benchmark::DoNotOptimize(figures);
    }
    if (s_allocations != before)
        state.SkipWithError("memory was allocated");
}

} // namespace

// Out of line: inlined into one of the other, they look mismatched to the compiler.
[[gnu::noinline]] void* operator new(std::size_t size)
{
    ++s_allocations;
    if (void* memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}

[[gnu::noinline]] void operator delete(void* memory) noexcept
{
    std::free(memory);
}

[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

int main(int argc, char** argv)
{
    benchmark::RegisterBenchmark("matrix and coverage/baseline: by hand", compute<byHand>);
    benchmark::RegisterBenchmark("matrix and coverage/ours: AdapterQuali", compute<byAdapter>);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
