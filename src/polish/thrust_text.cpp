#include "polish/thrust_text.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <stdexcept>

#include "readers/tokenizer.h"

namespace kavren {

std::vector<std::size_t> line_starts(std::string_view text) {
  std::vector<std::size_t> starts;
  std::size_t pos = 0;
  while (pos < text.size()) {
    starts.push_back(pos);
    const std::size_t end = text.find('\n', pos);
    if (end == std::string_view::npos) break;
    pos = end + 1;
  }
  return starts;
}

std::string_view line_at(std::string_view text, const std::vector<std::size_t>& starts,
                         std::size_t index) {
  if (index >= starts.size()) return {};
  const std::size_t begin = starts[index];
  const std::size_t end = index + 1 < starts.size() ? starts[index + 1] - 1 : text.size();
  return text.substr(begin, end - begin);
}

bool thrust_tokens(std::string_view line, std::string_view tokens[3]) {
  std::vector<std::string_view> all;
  tokenize_line(trimmed_line(line), all);
  if (all.size() != 6) return false;
  const std::less<const char*> before;
  for (int k = 0; k < 3; ++k) {
    const std::string_view t = all[static_cast<std::size_t>(3 + k)];
    // A placeholder token lies outside the line.
    if (before(t.data(), line.data()) || before(line.data() + line.size(), t.data() + t.size())) {
      return false;
    }
    tokens[k] = t;
  }
  return true;
}

std::string shortest_number(double x) {
  char buffer[64];
  const std::to_chars_result r = std::to_chars(buffer, buffer + sizeof buffer, x);
  return std::string(buffer, r.ptr);
}

std::string apply_thrust_edits(std::string_view text, const std::vector<std::size_t>& starts,
                               std::vector<ThrustEdit> edits) {
  std::sort(edits.begin(), edits.end(),
            [](const ThrustEdit& a, const ThrustEdit& b) { return a.line < b.line; });
  std::string out;
  out.reserve(text.size() + 64 * edits.size());
  std::size_t copied = 0;  // text before this offset is in `out`
  for (const ThrustEdit& edit : edits) {
    const std::string_view line = line_at(text, starts, edit.line);
    std::string_view tokens[3];
    if (!thrust_tokens(line, tokens)) {
      throw std::invalid_argument("line " + std::to_string(edit.line + 1) +
                                  " has no thrust numbers to replace");
    }
    for (int k = 0; k < 3; ++k) {
      const std::size_t at = static_cast<std::size_t>(tokens[k].data() - text.data());
      if (at < copied) throw std::invalid_argument("a line is edited twice");
      out.append(text.substr(copied, at - copied));
      out += shortest_number(edit.u[k]);
      copied = at + tokens[k].size();
    }
  }
  out.append(text.substr(copied));
  return out;
}

}  // namespace kavren
