#pragma once

#ifndef __SIZEOF_INT128__
#include "packet/wide_integer.h"
#endif

namespace packet {

#ifdef __SIZEOF_INT128__

__extension__ typedef __int128 Int128;
__extension__ typedef unsigned __int128 UInt128;

/// Writes the sum, or the product, and tells whether it needs more than 128 bits.
constexpr bool addOverflows(Int128 left, Int128 right, Int128 &sum) { return __builtin_add_overflow(left, right, &sum); }
constexpr bool multiplyOverflows(Int128 left, Int128 right, Int128 &product) { return __builtin_mul_overflow(left, right, &product); }

#else

using Int128 = wide::Signed;
using UInt128 = wide::Unsigned;

#endif

} // namespace packet
