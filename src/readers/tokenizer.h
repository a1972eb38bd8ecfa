// The grammar of one solution line: trimming, splitting into tokens and decoding an
// event line into a StateStruct.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "readers/numbers.h"
#include "records/records.h"

// Copies `in` to `out` without leading and trailing white space; `out` must hold at
// least strlen(in) + 1 bytes.
void trim(char* in, char* out);
// Tokens between runs of delimiter characters; a leading delimiter yields "ROOT".
std::vector<std::string> split(const std::string& s, const std::string& delimiters);
// Decodes a line of at least 10 tokens (ship, event ID, epoch, r, v, mass). Tokens
// missing from a shorter list read as empty text, that is as 0.
void string_eventline2data(int line_index, std::vector<std::string> tokens, int& event_id,
                           double& epoch, StateStruct& state);

namespace kavren {

// White space as the C locale classifies it: blank, tab, newline, vertical tab, form
// feed, carriage return. Bytes above 127 are not white space.
inline bool is_line_space(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

// The text of a line as trimming sees it: up to its first NUL byte, without leading
// and trailing white space.
std::string_view trimmed_line(std::string_view raw);

// The tokens of a trimmed line: split on tabs, each piece split again on blanks, so a
// tab followed by a blank yields the token "ROOT". Views into the line (or into a
// static "ROOT"); `tokens` is cleared first and reused to avoid allocations.
void tokenize_line(std::string_view line, std::vector<std::string_view>& tokens);

// The same splitting rule as `split`, appending views to `tokens`.
void split_views(std::string_view s, std::string_view delimiters,
                 std::vector<std::string_view>& tokens);

// Decodes tokens 2..10 of an event line (fewer tokens read as empty text).
void decode_event_line(int line_index, const std::vector<std::string_view>& tokens, int& event_id,
                       double& epoch, StateStruct& state);

}  // namespace kavren
