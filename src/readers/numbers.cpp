#include "readers/numbers.h"

#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <system_error>

#include "readers/exact_decimal.h"

namespace kavren {
namespace {

bool is_digit(char c) {
  return c >= '0' && c <= '9';
}

// strtol reduced to int the way the C library's atoi does it.
int long_to_int(long value) {
  return static_cast<int>(static_cast<std::uint32_t>(static_cast<unsigned long>(value)));
}

// Eight bytes at p as one little-endian word.
std::uint64_t word_at(const char* p) {
  std::uint64_t word = 0;
  std::memcpy(&word, p, sizeof word);
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
  word = __builtin_bswap64(word);
#endif
  return word;
}

// The value of eight ASCII digits (the first in the lowest byte): pairs, then
// quadruples, then the eight, each step by multiplications within the word.
std::uint64_t eight_digits_value(std::uint64_t word) {
  word -= 0x3030303030303030u;
  word = word * 10 + (word >> 8);
  constexpr std::uint64_t kMask = 0x000000FF000000FFu;
  constexpr std::uint64_t kMul1 = 100 + (std::uint64_t{1000000} << 32);
  constexpr std::uint64_t kMul2 = 1 + (std::uint64_t{10000} << 32);
  return static_cast<std::uint32_t>((((word & kMask) * kMul1) + (((word >> 16) & kMask) * kMul2)) >>
                                    32);
}

constexpr std::uint64_t kPowersOfTen[] = {1,      10,      100,      1000,     10000,
                                          100000, 1000000, 10000000, 100000000};

// Bit 7 of each byte of `word` that is not an ASCII digit (no carries between bytes).
std::uint64_t non_digit_bytes(std::uint64_t word) {
  const std::uint64_t t = word ^ 0x3030303030303030u;
  return (((t & 0x7F7F7F7F7F7F7F7Fu) + 0x7676767676767676u) | t) & 0x8080808080808080u;
}

// Appends the run of digits at p (inside [begin, end)) to w, modulo 2^64 (a caller with
// more than 19 digits discards w): eight at a time, then the rest of the run from one
// word, which ends at `end` when fewer than eight bytes are left, so that no byte
// outside [begin, end) is read. Returns the end of the run.
inline const char* append_digits(const char* begin, const char* p, const char* end,
                                 std::uint64_t& w) {
  std::uint64_t word = 0;
  for (;;) {
    if (end - p >= 8) {
      word = word_at(p);
    } else if (p == end) {
      return p;
    } else if (end - begin >= 8) {
      // The last eight bytes, shifted so that p's byte comes first; the bytes past
      // `end` read as zero, which is no digit.
      word = word_at(end - 8) >> (8 * (8 - (end - p)));
    } else {
      for (; p != end && is_digit(*p); ++p) w = w * 10 + static_cast<std::uint64_t>(*p - '0');
      return p;
    }
    const std::uint64_t stops = non_digit_bytes(word);
    if (stops == 0) {
      w = w * 100000000 + eight_digits_value(word);
      p += 8;
      continue;
    }
    const int n = __builtin_ctzll(stops) / 8;  // digits before the first other byte
    if (n > 0) {
      // The n digits moved to the top of the word, '0's below them.
      const std::uint64_t shifted = (word << (8 * (8 - n))) | (0x3030303030303030u >> (8 * n));
      w = w * kPowersOfTen[n] + eight_digits_value(shifted);
    }
    return p + n;
  }
}

}  // namespace

int parse_int(const char* text) {
  return long_to_int(std::strtol(text, nullptr, 10));
}

int parse_int(std::string_view token) {
  // Plain form: optional sign and up to nine digits, which no reduction can affect.
  std::size_t pos = 0;
  bool negative = false;
  if (pos < token.size() && (token[pos] == '+' || token[pos] == '-')) {
    negative = token[pos] == '-';
    ++pos;
  }
  const std::size_t digits_start = pos;
  int value = 0;
  while (pos < token.size() && is_digit(token[pos]) && pos - digits_start < 9) {
    value = value * 10 + (token[pos] - '0');
    ++pos;
  }
  const bool more_digits = pos < token.size() && is_digit(token[pos]);
  if (pos > digits_start && !more_digits) return negative ? -value : value;
  // Leading white space, long digit runs, no digits at all: the C library decides.
  return parse_int(std::string(token).c_str());
}

double parse_double(const char* text) {
  return std::strtod(text, nullptr);
}

bool parse_plain_decimal(std::string_view token, double& value) {
  // A plain number of at most 19 significant digits in a longer text is rare enough to
  // leave to the fallback; the bound keeps the exponent's arithmetic small.
  if (token.size() > 400) return false;
  const char* p = token.data();
  const char* const end = p + token.size();
  bool negative = false;
  if (p != end && (*p == '+' || *p == '-')) {
    negative = *p == '-';
    ++p;
  }
  // The digits without the point make w, the point and the exponent q: w x 10^q.
  std::uint64_t w = 0;
  const char* const whole = p;
  p = append_digits(token.data(), p, end, w);
  const char* const whole_end = p;
  const char* fraction = p;
  if (p != end && *p == '.') {
    fraction = ++p;
    p = append_digits(token.data(), p, end, w);
  }
  const auto fraction_digits = static_cast<int>(p - fraction);
  const int digits = static_cast<int>(whole_end - whole) + fraction_digits;
  if (digits == 0) return false;
  int q = -fraction_digits;
  if (p != end && (*p == 'e' || *p == 'E')) {
    ++p;
    bool negative_exponent = false;
    if (p != end && (*p == '+' || *p == '-')) {
      negative_exponent = *p == '-';
      ++p;
    }
    if (p == end || !is_digit(*p)) return false;  // "1e": the number ends before the 'e'
    int exponent = 0;
    for (; p != end && is_digit(*p); ++p) {
      if (exponent < 100000) exponent = exponent * 10 + (*p - '0');
    }
    q += negative_exponent ? -exponent : exponent;
  }
  if (p != end) return false;  // more text: the longest valid prefix is for the fallback
  if (digits > 19) {
    // Leading zeros are not significant; past 19 significant digits w is not exact.
    int zeros = 0;
    for (const char* d = whole; d != p && (*d == '0' || *d == '.'); ++d) zeros += *d == '0';
    if (digits - zeros > 19) return false;
  }
  return exact_decimal_to_double(w, q, negative, value);
}

double parse_double(std::string_view token) {
  double value = 0.0;
  if (parse_plain_decimal(token, value)) return value;
  // Plain decimal form: optional sign, then a digit or a point (not "0x"). from_chars
  // rounds correctly, as strtod does, and takes the same longest prefix for this form.
  std::size_t pos = 0;
  if (pos < token.size() && (token[pos] == '+' || token[pos] == '-')) ++pos;
  const bool plain_start = pos < token.size() && (is_digit(token[pos]) || token[pos] == '.') &&
                           !(token[pos] == '0' && pos + 1 < token.size() &&
                             (token[pos + 1] == 'x' || token[pos + 1] == 'X'));
  if (plain_start) {
    // from_chars takes no '+'; a '-' it reads itself.
    const std::size_t from = token[0] == '+' ? 1 : 0;
    const auto result = std::from_chars(token.data() + from, token.data() + token.size(), value);
    if (result.ec == std::errc()) return value;
  }
  // Overflow, underflow, hexadecimal, inf, nan, leading blanks: the C library decides.
  return parse_double(std::string(token).c_str());
}

}  // namespace kavren
