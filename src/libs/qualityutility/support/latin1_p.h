#pragma once

#include <QLatin1String>

namespace Support {

/// A text as a compile-time constant: QLatin1String's own constructor from a literal is one with some compilers only.
template <int Size>
constexpr QLatin1String latin1(const char (&text)[Size])
{
    return QLatin1String(text, Size - 1);
}

} // namespace Support
