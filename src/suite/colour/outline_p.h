#pragma once

#include "halfplane_p.h"

#include <cstddef>

namespace Colour {

/// Where an edge of a convex polygon begins. Its direction is its line's: that from corner to corner is noise where the
/// edge is short.
struct OutlineCorner
{
    Chromaticity place;
    Chromaticity along;     ///< direction of the edge that begins here, of length 1
    std::size_t line = 0;   ///< the line of that edge
    std::size_t before = 0; ///< the line of the edge that ends here
};

/// A convex polygon, counter-clockwise, as up to six pieces of corners that are held elsewhere.
class Outline
{
public:
    /// Of corners that were not taken from another polygon.
    static constexpr std::size_t added = static_cast<std::size_t>(-1);

    /// Appends corners; `whole` is where the first of them stands in the polygon that they were taken from, or `added`.
    void append(const OutlineCorner* corners, std::size_t size, std::size_t whole);

    std::size_t size() const { return m_size; }
    /// Indices go round and round.
    const OutlineCorner& operator[](std::size_t index) const;
    /// Where a corner of that polygon, of `wholeSize` corners, stands here; 0 where it does not.
    std::size_t indexOf(std::size_t corner, std::size_t wholeSize) const;

private:
    struct Piece
    {
        const OutlineCorner* corners = nullptr;
        std::size_t begin = 0;
        std::size_t size = 0;
        std::size_t whole = 0;
    };
    std::array<Piece, 6> m_pieces{};
    std::size_t m_count = 0;
    std::size_t m_size = 0;
};

/// Of the chords parallel to an edge, the one that makes the largest triangle with it: where it ends, and the corner
/// furthest from the edge. Edges are indices of the corners at which they begin, larger than the edge's own.
struct Legs
{
    std::size_t right = 0; ///< the edge that the chord's right end lies on, seen from the edge
    std::size_t top = 0;   ///< the corner furthest away
    std::size_t left = 0;  ///< the edge of the other end
};

/// The legs of the edge that begins at corner `edge`, searched for from `near` on: in constant time where they are.
Legs legsOf(const Outline& outline, std::size_t edge, const Legs& near);

/// Three corners of an outline.
struct OutlineTriangle
{
    std::array<std::size_t, 3> corners{};
    double area = 0.0;
};

/// The largest triangle with the corner `apex` whose other corners lie between the legs of the edge before it and those
/// of the edge behind it: if any triangle of largest area stands on `apex`, this is one.
OutlineTriangle largestAt(const Outline& outline, std::size_t apex, const Legs& before, const Legs& behind);

} // namespace Colour
