#include "readers/exact_decimal.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace kavren {
namespace {

// Powers of ten covered by the table of powers of five (built while compiling): every
// number a solution or catalogue plausibly holds; others take the fallback.
constexpr int kMinQ = -128;
constexpr int kMaxQ = 128;

// A natural number of up to 32 x 32 bits (the largest is 2^724), least significant limb
// first: just what the table's construction needs.
struct Big {
  std::array<std::uint32_t, 32> limb{};
  int size = 0;  // limbs in use; the top one is non-zero

  constexpr int bit_length() const {
    if (size == 0) return 0;
    int bits = 32 * (size - 1);
    for (std::uint32_t top = limb[size - 1]; top != 0; top >>= 1) ++bits;
    return bits;
  }
  constexpr void trim() {
    while (size > 0 && limb[size - 1] == 0) --size;
  }
  constexpr void multiply(std::uint32_t factor) {
    std::uint64_t carry = 0;
    for (int k = 0; k < size; ++k) {
      const std::uint64_t product = std::uint64_t{limb[k]} * factor + carry;
      limb[k] = static_cast<std::uint32_t>(product);
      carry = product >> 32;
    }
    if (carry != 0) limb[size++] = static_cast<std::uint32_t>(carry);
  }
  // Floor division by a small divisor.
  constexpr void divide(std::uint32_t divisor) {
    std::uint64_t remainder = 0;
    for (int k = size - 1; k >= 0; --k) {
      const std::uint64_t current = (remainder << 32) | limb[k];
      limb[k] = static_cast<std::uint32_t>(current / divisor);
      remainder = current % divisor;
    }
    trim();
  }
  constexpr void add_one() {
    for (int k = 0; k < size; ++k) {
      if (++limb[k] != 0) return;
    }
    limb[size++] = 1;
  }
  // Bit `bit` and the 127 bits below it, as a 128-bit number (high, low); bits below
  // zero read as zero.
  constexpr void top128(int bit, std::uint64_t& high, std::uint64_t& low) const {
    high = 0;
    low = 0;
    for (int b = bit; b > bit - 128; --b) {
      const std::uint64_t set =
          b >= 0 && b / 32 < size ? (limb[static_cast<std::size_t>(b / 32)] >> (b % 32)) & 1u : 0u;
      high = (high << 1) | (low >> 63);
      low = (low << 1) | set;
    }
  }
};

constexpr Big power_of_two(int b) {
  Big p;
  p.limb[static_cast<std::size_t>(b / 32)] = std::uint32_t{1} << (b % 32);
  p.size = b / 32 + 1;
  return p;
}

struct Power128 {
  std::uint64_t high = 0;
  std::uint64_t low = 0;
};

// 5^q normalised to 128 bits with its top bit set, given 5^|q|: truncated for q >= 0;
// for q < 0 a reciprocal 2^b / 5^-q rounded up, then truncated.
constexpr Power128 power_entry(int q, const Big& five_to_the_abs_q) {
  Power128 entry;
  if (q >= 0) {
    five_to_the_abs_q.top128(five_to_the_abs_q.bit_length() - 1, entry.high, entry.low);
    return entry;
  }
  const int k = -q;
  const int z = five_to_the_abs_q.bit_length();  // the smallest z with 2^z >= 5^k
  const int b = k <= 27 ? z + 127 : 2 * z + 128;
  Big c = power_of_two(b);
  // floor(floor(x / a) / b) = floor(x / (a b)): by 5^13 (the largest power in 32 bits)
  // as long as it goes, then by 5.
  int left = k;
  for (; left >= 13; left -= 13) c.divide(1220703125u);
  for (; left > 0; --left) c.divide(5);
  c.add_one();
  c.top128(c.bit_length() - 1, entry.high, entry.low);
  return entry;
}

struct PowerTable {
  std::array<Power128, kMaxQ - kMinQ + 1> entry{};
  constexpr PowerTable() {
    Big five;  // 5^n
    five.limb[0] = 1;
    five.size = 1;
    for (int n = 0; n <= std::max(-kMinQ, kMaxQ); ++n, five.multiply(5)) {
      if (n <= kMaxQ) entry[static_cast<std::size_t>(n - kMinQ)] = power_entry(n, five);
      if (n > 0 && -n >= kMinQ) entry[static_cast<std::size_t>(-n - kMinQ)] = power_entry(-n, five);
    }
  }
};

constexpr PowerTable kPowers;

constexpr double kExactPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                        1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                        1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

struct Product {
  std::uint64_t high;
  std::uint64_t low;
};

__extension__ typedef unsigned __int128 Uint128;

Product multiply(std::uint64_t a, std::uint64_t b) {
  const Uint128 product = static_cast<Uint128>(a) * b;
  return {static_cast<std::uint64_t>(product >> 64), static_cast<std::uint64_t>(product)};
}

int leading_zeros(std::uint64_t x) {
  return __builtin_clzll(x);  // x != 0
}

double from_bits(std::uint64_t bits) {
  double value = 0.0;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

}  // namespace

bool exact_decimal_to_double(std::uint64_t w, int q, bool negative, double& value) {
  if (w == 0) {
    value = negative ? -0.0 : 0.0;
    return true;
  }
  // Both operands exact: the one operation rounds correctly.
  if (w <= (std::uint64_t{1} << 53) && q >= -22 && q <= 22) {
    const double x = static_cast<double>(w);
    const double magnitude = q < 0 ? x / kExactPowersOfTen[-q] : x * kExactPowersOfTen[q];
    value = negative ? -magnitude : magnitude;
    return true;
  }
  if (q < kMinQ || q > kMaxQ) return false;
  // w normalised to its top bit, times 5^q's 128 bits: the top 55 bits of the product
  // carry the 53-bit significand, a rounding bit and one bit of room.
  const int lz = leading_zeros(w);
  w <<= lz;
  const Power128& power = kPowers.entry[static_cast<std::size_t>(q - kMinQ)];
  Product product = multiply(w, power.high);
  constexpr std::uint64_t kPrecisionMask = ~std::uint64_t{0} >> 55;
  if ((product.high & kPrecisionMask) == kPrecisionMask) {
    // The bits below the significand are all ones: the low half of the power decides.
    const Product second = multiply(w, power.low);
    product.low += second.high;
    if (second.high > product.low) ++product.high;
  }
  // Still undecided after the full 128 bits outside the range where they are exact.
  if (product.low == ~std::uint64_t{0} && (q < -27 || q > 55)) return false;
  const int upper_bit = static_cast<int>(product.high >> 63);
  const int shift = upper_bit + 64 - 52 - 3;
  std::uint64_t mantissa = product.high >> shift;
  // floor(log2(10^q)) + 63 as ((152170 + 65536) * q) / 2^16 rounded down, + 63.
  const long long scaled = (152170LL + 65536LL) * q;
  const long long floor_log2 = scaled >= 0 ? scaled / 65536 : -((-scaled + 65535) / 65536);
  long long power2 = floor_log2 + 63 + upper_bit - lz + 1023;
  if (power2 <= 0) return false;  // below the normal range
  // Exactly half way between two doubles (only possible where 5^q is exact in the
  // product): round to even instead of up.
  if (product.low <= 1 && q >= -4 && q <= 23 && (mantissa & 3) == 1 &&
      (mantissa << shift) == product.high) {
    mantissa &= ~std::uint64_t{1};
  }
  mantissa += mantissa & 1;
  mantissa >>= 1;
  if (mantissa >= (std::uint64_t{2} << 52)) {
    mantissa = std::uint64_t{1} << 52;
    ++power2;
  }
  mantissa &= ~(std::uint64_t{1} << 52);
  if (power2 >= 2047) return false;  // beyond the largest double
  value = from_bits((negative ? std::uint64_t{1} << 63 : 0) |
                    (static_cast<std::uint64_t>(power2) << 52) | mantissa);
  return true;
}

}  // namespace kavren
