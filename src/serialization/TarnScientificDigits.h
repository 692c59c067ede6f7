// Internal: exact "%.*e" digits of moderate doubles by 128-bit integer arithmetic.
#pragma once

namespace tarn {
namespace numbertext {

/// Writes `value` as printf's "%.*e" with `precision` (1 to 18) digits behind the point, rounded
/// half to even from the exact binary value, when the value's decimal digits can be had from one
/// 128-bit product: finite normal values whose decimal exponent lies between precision - 22 and
/// precision. Returns the end of the text, or null (nothing written that counts) for any other
/// value, which the caller then formats by the general path. `out` holds at least 32 bytes.
char *writeScientificFast(char *out, double value, int precision);

} // namespace numbertext
} // namespace tarn
