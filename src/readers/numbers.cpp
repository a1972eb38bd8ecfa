#include "readers/numbers.h"

#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <system_error>

namespace kavren {
namespace {

bool is_digit(char c) {
  return c >= '0' && c <= '9';
}

// strtol reduced to int the way the C library's atoi does it.
int long_to_int(long value) {
  return static_cast<int>(static_cast<std::uint32_t>(static_cast<unsigned long>(value)));
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

double parse_double(std::string_view token) {
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
    double value = 0.0;
    const auto result = std::from_chars(token.data() + from, token.data() + token.size(), value);
    if (result.ec == std::errc()) return value;
  }
  // Overflow, underflow, hexadecimal, inf, nan, leading blanks: the C library decides.
  return parse_double(std::string(token).c_str());
}

}  // namespace kavren
