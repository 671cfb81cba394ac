#pragma once

#include <tuple>
#include <utility>

// The bundled record, except that it refuses a gain range whose minimum lies above its maximum, as a host's may.
#define setGainRange(first, second)                                                                                    \
    setGainRange(int newMin, int newMax)                                                                               \
    {                                                                                                                  \
        if (newMin <= newMax)                                                                                          \
            keepGainRange(newMin, newMax);                                                                             \
    }                                                                                                                  \
    void keepGainRange(first, second)
#include <src/suite/model/magicgrayparam.h>
#undef setGainRange
