// The grammar of one solution line: trimming, splitting into tokens and decoding an
// event line into a StateStruct.
#pragma once

#include <string>
#include <vector>

#include "records/records.h"

// Copies `in` to `out` without leading and trailing white space; `out` must hold at
// least strlen(in) + 1 bytes.
void trim(char* in, char* out);
// Tokens between runs of delimiter characters; a leading delimiter yields "ROOT".
std::vector<std::string> split(const std::string& s, const std::string& delimiters);
// Decodes a line of at least 10 tokens (ship, event ID, epoch, r, v, mass).
void string_eventline2data(int line_index, std::vector<std::string> tokens, int& event_id,
                           double& epoch, StateStruct& state);

namespace kavren {
// The C library's atoi and atof, without undefined behaviour: an integer out of the
// range of long saturates as strtol does and is then converted to int modulo 2^32.
int parse_int(const char* text);
double parse_double(const char* text);
}  // namespace kavren
