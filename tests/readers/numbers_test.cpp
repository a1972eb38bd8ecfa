// Token conversion must give exactly what the C library's atoi and atof give.
#include "readers/numbers.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>

namespace {

std::uint64_t bits(double x) {
  std::uint64_t b = 0;
  std::memcpy(&b, &x, sizeof b);
  return b;
}

const char* const kTokens[] = {
    "0",
    "-0",
    "+0",
    "7",
    "+7",
    "-7",
    "12abc",
    "abc",
    "",
    ".5",
    "5.",
    "-.5",
    "+.5",
    ".",
    "-",
    "+",
    "1e5",
    "1E+5",
    "1e-5",
    "1e",
    "1e+",
    "2.5e",
    "1e400",
    "-1e400",
    "1e-400",
    "1e-310",
    "4.9e-324",
    "nan",
    "NAN",
    "-nan",
    "inf",
    "-Infinity",
    "infinity",
    "nan(123)",
    "0x1p3",
    "0X1A",
    "0x",
    "  42",
    "\v42",
    "\r3.5",
    "64328",
    "69807.0000001",
    "123456789",
    "1234567890",
    "2147483647",
    "2147483648",
    "-2147483648",
    "-2147483649",
    "4294967296",
    "4294967297",
    "9223372036854775807",
    "9223372036854775808",
    "-9223372036854775809",
    "99999999999999999999",
    "-99999999999999999999",
    "0000000000000042",
    "3.141592653589793238462643383279",
    "1.7976931348623157e308",
    "1.7976931348623159e308",
    "00.1e0010",
    "1,5",
    "1.5.3",
    "--1",
    "+-1",
    "0.1e-5x",
    "9.999999999999999e22",
    "64330.5\r",
    "1\t2",
    "0e99999999999",
};

// Out-of-range integers: strtol saturates at the range of long, then the value is reduced
// modulo 2^32.
TEST(ParseNumbers, IntegersAndRealsAgreeBitForBitWithTheCLibrary) {
  for (const char* token : kTokens) {
    EXPECT_EQ(kavren::parse_int(std::string_view(token)), std::atoi(token)) << token;
    EXPECT_EQ(kavren::parse_int(token), std::atoi(token)) << token;
    const double expected = std::atof(token);
    const double got = kavren::parse_double(std::string_view(token));
    if (std::isnan(expected)) {
      EXPECT_TRUE(std::isnan(got)) << token;
    } else {
      EXPECT_EQ(bits(got), bits(expected)) << token;
    }
  }
  // A view into a longer text converts only its own characters.
  const std::string text = "123456";
  EXPECT_EQ(kavren::parse_int(std::string_view(text).substr(0, 3)), 123);
  EXPECT_EQ(kavren::parse_double(std::string_view(text).substr(1, 2)), 23.0);
}

TEST(ParseNumbers, RandomDecimalTextsAgreeWithStrtod) {
  // Round-trip texts of random doubles and random digit strings.
  std::mt19937_64 rng(20261122);
  std::uniform_real_distribution<double> unit(-1.0, 1.0);
  std::uniform_int_distribution<int> exponent(-330, 310);
  char text[64];
  for (int trial = 0; trial < 20000; ++trial) {
    const double x = unit(rng) * std::pow(10.0, exponent(rng));
    if (trial % 2) {
      std::snprintf(text, sizeof text, "%.17g", x);
    } else {
      std::snprintf(text, sizeof text, "%.*e", trial % 25, x);
    }
    const double expected = std::strtod(text, nullptr);
    EXPECT_EQ(bits(kavren::parse_double(std::string_view(text))), bits(expected)) << text;
  }
  std::uniform_int_distribution<int> digit(0, 9);
  for (int trial = 0; trial < 5000; ++trial) {
    std::string s = trial % 3 == 0 ? "-" : "";
    const int length = 1 + trial % 40;
    for (int k = 0; k < length; ++k) s += static_cast<char>('0' + digit(rng));
    if (trial % 4 == 1) s.insert(s.size() / 2, ".");
    EXPECT_EQ(bits(kavren::parse_double(std::string_view(s))),
              bits(std::strtod(s.c_str(), nullptr)))
        << s;
    EXPECT_EQ(kavren::parse_int(std::string_view(s)), std::atoi(s.c_str())) << s;
  }
}

}  // namespace
