// Number conversion of solution and catalogue tokens with the C library's semantics
// (atoi, atof), fast for the plain decimal numbers that make up nearly every file.
#pragma once

#include <string_view>

namespace kavren {

// atoi: leading white space, optional sign, the longest run of digits; 0 when there is
// none. Out of the range of long it saturates as strtol does and is then reduced to int
// modulo 2^32, as the C library's atoi does, without undefined behaviour.
int parse_int(const char* text);
int parse_int(std::string_view token);

// atof: what strtod accepts as the longest valid prefix (signs, exponents, hexadecimal,
// inf, nan); 0.0 when there is none.
double parse_double(const char* text);
double parse_double(std::string_view token);

// The whole token as a plain decimal ([+-] digits [. digits] [e [+-] digits], with at
// least one digit before the exponent and at most 19 significant digits), converted to
// the nearest double as strtod does; false (value untouched) for any other token and
// for values the exact method leaves undecided.
bool parse_plain_decimal(std::string_view token, double& value);

}  // namespace kavren
