// The separator forms a solution or catalogue can be written in. The builder writes tabs;
// the other forms are the same fields, so every form reads to the same numbers.
#pragma once

#include <cstdint>
#include <string>

namespace synth {

enum class Separators {
  tab,     // one tab between fields
  blank,   // one blank between fields
  blanks,  // every field right-aligned after a run of 1 to 8 blanks, as "%*s" pads it
  mixed,   // runs of blanks and tabs in which no tab is directly followed by a blank
};

// "tab", "blank", "blanks" or "mixed"; false for anything else.
bool separators_from_text(const std::string& text, Separators& form);

// The tab-separated `text` rewritten in `form` (the tab form returns it unchanged). In
// the other forms the zero thrust of a burning-arc line (six fields) is written short,
// "0.0" or "0", as printf-style writers do. The layout is a function of `seed`.
std::string reseparate(const std::string& text, Separators form, std::uint64_t seed);

}  // namespace synth
