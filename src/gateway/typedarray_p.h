#pragma once

#include <QtGlobal>

namespace Gateway {

/// The CBOR tags of byte strings that hold unsigned numbers, little-endian (RFC 8746).
template <typename T>
constexpr quint64 typedArrayTag = 0;
template <>
inline constexpr quint64 typedArrayTag<unsigned char> = 64;
template <>
inline constexpr quint64 typedArrayTag<unsigned short> = 69;
template <>
inline constexpr quint64 typedArrayTag<unsigned long long> = 71;

} // namespace Gateway
