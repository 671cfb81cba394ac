#pragma once

#include <suite/colour/primaries.h>

#include <QString>

#include <cmath>

inline const Colour::Primaries led{{0.69, 0.30}, {0.17, 0.73}, {0.13, 0.08}, {0.2863, 0.2949}};

/// "led", or a standard gamut by its key.
inline Colour::Primaries gamut(const QString& key)
{
    if (key == "led")
        return led;
    for (const Colour::StandardGamut& standard : Colour::standardGamuts)
        if (key == standard.key)
            return standard.primaries;
    qFatal("no such gamut: %s", qPrintable(key));
}

inline bool isNear(double actual, double expected, double tolerance)
{
    if (std::abs(actual - expected) <= tolerance)
        return true;
    qWarning("%.12g, expected %.12g", actual, expected);
    return false;
}
