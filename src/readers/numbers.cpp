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

#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
// The value of eight ASCII digits read as one little-endian word: pairs, then quadruples,
// then the eight combined by multiplications within the word.
std::uint64_t eight_digits(const char* p) {
  std::uint64_t word = 0;
  std::memcpy(&word, p, sizeof word);
  word -= 0x3030303030303030u;
  word = word * 10 + (word >> 8);
  constexpr std::uint64_t kMask = 0x000000FF000000FFu;
  constexpr std::uint64_t kMul1 = 100 + (std::uint64_t{1000000} << 32);
  constexpr std::uint64_t kMul2 = 1 + (std::uint64_t{10000} << 32);
  return static_cast<std::uint32_t>((((word & kMask) * kMul1) + (((word >> 16) & kMask) * kMul2)) >>
                                    32);
}
constexpr bool kEightAtOnce = true;
#else
std::uint64_t eight_digits(const char*) {
  return 0;
}
constexpr bool kEightAtOnce = false;
#endif

// w followed by the digits [p, end) (all digits; w's digits and these at most 19).
std::uint64_t append_digits(std::uint64_t w, const char* p, const char* end) {
  if (kEightAtOnce) {
    for (; end - p >= 8; p += 8) w = w * 100000000 + eight_digits(p);
  }
  for (; p != end; ++p) w = w * 10 + static_cast<std::uint64_t>(*p - '0');
  return w;
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
  const char* const whole = p;
  while (p != end && is_digit(*p)) ++p;
  const char* const whole_end = p;
  const char* fraction = p;
  if (p != end && *p == '.') {
    fraction = ++p;
    while (p != end && is_digit(*p)) ++p;
  }
  const char* const fraction_end = p;
  if (whole == whole_end && fraction == fraction_end) return false;
  // The value is w x 10^q: w the digits without the point, q from the point and exponent.
  int q = -static_cast<int>(fraction_end - fraction);
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
  // At most 19 significant digits (what a 64-bit integer holds), leading zeros aside.
  const char* first = whole;
  while (first != whole_end && *first == '0') ++first;
  std::uint64_t w = 0;
  if (first == whole_end) {
    first = fraction;
    while (first != fraction_end && *first == '0') ++first;
    if (fraction_end - first > 19) return false;
    w = append_digits(0, first, fraction_end);
  } else {
    if ((whole_end - first) + (fraction_end - fraction) > 19) return false;
    w = append_digits(append_digits(0, first, whole_end), fraction, fraction_end);
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
