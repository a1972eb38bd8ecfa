#include "readers/tokenizer.h"

#include <cstring>

namespace kavren {

std::string_view trimmed_line(std::string_view raw) {
  // The line is handled as a C string: a NUL byte ends its text.
  const void* nul = std::memchr(raw.data(), '\0', raw.size());
  std::size_t end =
      nul ? static_cast<std::size_t>(static_cast<const char*>(nul) - raw.data()) : raw.size();
  std::size_t begin = 0;
  while (begin < end && is_line_space(raw[begin])) ++begin;
  while (end > begin && is_line_space(raw[end - 1])) --end;
  return raw.substr(begin, end - begin);
}

void split_views(std::string_view s, std::string_view delimiters,
                 std::vector<std::string_view>& tokens) {
  static constexpr std::string_view kRoot = "ROOT";
  if (s.empty() || delimiters.empty()) return;
  std::size_t pos = 0;
  while (true) {
    const std::size_t delimiter = s.find_first_of(delimiters, pos);
    if (delimiter == std::string_view::npos) break;
    if (pos == 0 && delimiter == 0) {
      tokens.push_back(kRoot);
    } else {
      tokens.push_back(s.substr(pos, delimiter - pos));
    }
    pos = s.find_first_not_of(delimiters, delimiter);
    if (pos == std::string_view::npos || pos >= s.size()) return;
  }
  if (pos < s.size()) tokens.push_back(s.substr(pos));
}

void tokenize_line(std::string_view line, std::vector<std::string_view>& tokens) {
  // One pass with the result of splitting on tabs and then each piece on blanks: a
  // piece is a maximal run without tabs; a piece that starts with a blank (or a line
  // that starts with a tab) yields "ROOT"; the tokens are the maximal runs without
  // blanks inside each piece.
  static constexpr std::string_view kRoot = "ROOT";
  tokens.clear();
  const char* p = line.data();
  const char* const end = p + line.size();
  if (p != end && *p == '\t') tokens.push_back(kRoot);
  while (p != end) {
    while (p != end && *p == '\t') ++p;
    if (p == end) break;
    if (*p == ' ') tokens.push_back(kRoot);
    // Inside one piece.
    while (p != end && *p != '\t') {
      while (p != end && *p == ' ') ++p;
      const char* begin = p;
      while (p != end && *p != ' ' && *p != '\t') ++p;
      if (p != begin) tokens.emplace_back(begin, static_cast<std::size_t>(p - begin));
    }
  }
}

void decode_event_line(int line_index, const std::vector<std::string_view>& tokens, int& event_id,
                       double& epoch, StateStruct& state) {
  auto token = [&tokens](std::size_t k) {
    return k < tokens.size() ? tokens[k] : std::string_view();
  };
  event_id = parse_int(token(1));
  epoch = parse_double(token(2));
  state.line_index = line_index;
  state.epoch = epoch;
  for (int k = 0; k < 3; ++k) state.r[k] = parse_double(token(3 + k));
  for (int k = 0; k < 3; ++k) state.v[k] = parse_double(token(6 + k));
  state.mass = parse_double(token(9));
}

}  // namespace kavren

void trim(char* in, char* out) {
  const std::string_view text = kavren::trimmed_line(std::string_view(in, std::strlen(in)));
  std::memmove(out, text.data(), text.size());
  out[text.size()] = '\0';
}

std::vector<std::string> split(const std::string& s, const std::string& delimiters) {
  std::vector<std::string_view> views;
  kavren::split_views(s, delimiters, views);
  return std::vector<std::string>(views.begin(), views.end());
}

void string_eventline2data(int line_index, std::vector<std::string> tokens, int& event_id,
                           double& epoch, StateStruct& state) {
  std::vector<std::string_view> views(tokens.begin(), tokens.end());
  kavren::decode_event_line(line_index, views, event_id, epoch, state);
}
