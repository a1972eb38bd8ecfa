#include "synth/separators.h"

#include <string_view>
#include <vector>

#include "synth/rng.h"

namespace synth {
namespace {

// Mixed runs: blanks first, tabs after, so that no piece between tabs starts with a
// blank (which the solution's grammar reads as a token of its own).
constexpr std::string_view kMixedRuns[] = {"\t", " ", "  ", " \t", "\t\t", "   \t", "    "};
constexpr std::string_view kMixedEnds[] = {"", "", "", " ", "\t", "  \t "};

std::vector<std::string_view> fields_of(std::string_view line) {
  std::vector<std::string_view> fields;
  std::size_t begin = 0;
  while (true) {
    const std::size_t tab = line.find('\t', begin);
    fields.push_back(line.substr(begin, tab == std::string_view::npos ? tab : tab - begin));
    if (tab == std::string_view::npos) return fields;
    begin = tab + 1;
  }
}

template <std::size_t N>
std::string_view pick(const std::string_view (&choices)[N], Rng& rng) {
  return choices[rng.next() % N];
}

void append_line(std::string_view line, Separators form, Rng& rng, std::string& out) {
  const std::vector<std::string_view> fields = fields_of(line);
  const bool arc_line = fields.size() == 6;
  for (std::size_t k = 0; k < fields.size(); ++k) {
    std::string_view field = fields[k];
    if (arc_line && k >= 3 && field == "0")
      field = form == Separators::mixed && rng.next() % 2 ? "0" : "0.0";
    switch (form) {
      case Separators::blank:
        if (k > 0) out += ' ';
        break;
      case Separators::blanks:
        out.append(1 + rng.next() % 8, ' ');
        break;
      case Separators::mixed:
        if (k > 0) out += pick(kMixedRuns, rng);
        break;
      case Separators::tab:
        if (k > 0) out += '\t';
        break;
    }
    out += field;
  }
  if (form == Separators::mixed) out += pick(kMixedEnds, rng);
}

}  // namespace

bool separators_from_text(const std::string& text, Separators& form) {
  if (text == "tab") {
    form = Separators::tab;
  } else if (text == "blank") {
    form = Separators::blank;
  } else if (text == "blanks") {
    form = Separators::blanks;
  } else if (text == "mixed") {
    form = Separators::mixed;
  } else {
    return false;
  }
  return true;
}

std::string reseparate(const std::string& text, Separators form, std::uint64_t seed) {
  if (form == Separators::tab) return text;
  Rng rng(seed ^ 0x5E9A7A7E5ull);
  std::string out;
  out.reserve(text.size() + text.size() / 4);
  std::size_t begin = 0;
  while (begin < text.size()) {
    const std::size_t newline = text.find('\n', begin);
    const std::size_t end = newline == std::string::npos ? text.size() : newline;
    append_line(std::string_view(text).substr(begin, end - begin), form, rng, out);
    if (newline == std::string::npos) break;
    out += '\n';
    begin = newline + 1;
  }
  return out;
}

}  // namespace synth
