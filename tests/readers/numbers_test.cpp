// Token conversion must give exactly what the C library's atoi and atof give.
#include "readers/numbers.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
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
    "0.0",
    "-0.0",
    "+0.0",
    "0.000",
    "00.0e5",
    "-0e-5",
    "9007199254740992",
    "9007199254740993",
    "9007199254740995",
    "90071992547409930e-1",
    "9007199254740993.0",
    "18014398509481986",
    "18014398509481990",
    "1.8014398509481986e16",
    "9999999999999999999",
    "18446744073709551615",
    "1.000000000000000000001",
    "4.9406564584124654e-324",
    "2.2250738585072011e-308",
    "2.2250738585072014e-308",
    "1e-128",
    "1e-129",
    "1e128",
    "1e129",
    "1e23",
    "8.98846567431158e307",
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

// One row per kind of text: the shortest round trip of any bit pattern, the printed forms
// of the separator forms' numbers (epochs, positions, thrust at 17 digits, short zeros),
// decimal points anywhere in digit strings, and exact halves between two doubles written
// with 16 to 19 digits (ties to even).
TEST(ParseNumbers, RandomDecimalTextsAgreeWithStrtod) {
  std::mt19937_64 rng(20261122);
  std::uniform_real_distribution<double> unit(-1.0, 1.0);
  char text[96];
  struct Row {
    const char* kind;
    std::function<std::string(int)> make;
  };
  const Row rows[] = {
      {"bit patterns at %.17g, %.15g or %.1e",
       [&](int n) {
         double x = 0.0;
         const std::uint64_t b = rng();
         std::memcpy(&x, &b, sizeof x);
         std::snprintf(text, sizeof text, n % 3 == 0 ? "%.17g" : n % 3 == 1 ? "%.15g" : "%.1e", x);
         return std::string(text);
       }},
      {"a solution's numbers, %.Ng",
       [&](int n) {
         const double scale[] = {1.0, 60000.0, 2e8, 40.0, 1e-8, 0.6, 2000.0, 1e-40, 1e30};
         std::snprintf(text, sizeof text, "%.*g", 1 + n % 19, unit(rng) * scale[n % 9]);
         return std::string(text);
       }},
      {"zeros as printf-style writers put them",
       [&](int n) {
         const char* zeros[] = {"0", "0.0", "-0.0", "0.00000", "+0", "0e0", "-0.0e-3"};
         return std::string(zeros[n % 7]);
       }},
      {"digit strings with a point",
       [&](int n) {
         std::string s = n % 3 == 0 ? "-" : "";
         for (int k = 1 + n % 40; k > 0; --k) s += static_cast<char>('0' + rng() % 10);
         if (n % 4 == 1) s.insert(s.size() / 2, ".");
         if (n % 5 == 2) s += "e" + std::to_string(static_cast<int>(rng() % 80) - 40);
         return s;
       }},
      {"halves between doubles",
       [&](int n) {
         // In [2^(53 + e), 2^(54 + e)) doubles are the multiples of 2^(e + 1): an odd
         // multiple of 2^e lies half way between two; written with a point moved by up to
         // 4 places.
         const int e = n % 11;
         const std::uint64_t k = (rng() >> 12) | (std::uint64_t{1} << 52);
         const std::uint64_t half = (2 * k + 1) << e;
         const int moved = n % 5;
         std::string s = std::to_string(half);
         if (moved > 0)
           s = s.substr(0, s.size() - moved) + "." + s.substr(s.size() - moved) + "e" +
               std::to_string(moved);
         return s;
       }},
  };
  for (const Row& row : rows) {
    for (int n = 0; n < 20000; ++n) {
      const std::string s = row.make(n);
      EXPECT_EQ(bits(kavren::parse_double(std::string_view(s))),
                bits(std::strtod(s.c_str(), nullptr)))
          << row.kind << ": " << s;
      EXPECT_EQ(kavren::parse_int(std::string_view(s)), std::atoi(s.c_str())) << s;
    }
  }
}

}  // namespace
