// Splitting lines into tokens: `split` against its declarative form (a leading delimiter
// gives "ROOT", then the maximal runs of other characters), and the reader's one-pass
// tokenizer against `split` on tabs and then on blanks, over seeded random lines.
#include "readers/tokenizer.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace {

using Tokens = std::vector<std::string>;

Tokens runs(const std::string& s, const std::string& delimiters) {
  Tokens out;
  if (!s.empty() && delimiters.find(s[0]) != std::string::npos) out.push_back("ROOT");
  std::string run;
  for (char c : s + delimiters.substr(0, 1)) {
    if (delimiters.find(c) == std::string::npos) {
      run += c;
    } else if (!run.empty()) {
      out.push_back(run);
      run.clear();
    }
  }
  return out;
}

// The tokenizer against `split` on tabs and then on blanks: one row per separator form,
// lines up to 200 bytes (blocks of 64, chunks of 16 and their tails), trimmed and not.
TEST(Tokenizer, SplitAndTheLineTokenizerAgreeWithTheirDefinitions) {
  EXPECT_EQ(split("1\t 0", "\t"), Tokens({"1", " 0"}));
  EXPECT_EQ(split(" 0", " "), Tokens({"ROOT", "0"}));
  struct Form {
    const char* name;
    std::vector<std::string> separators;
    std::vector<std::string> fields;
    int max_fields;
  };
  const std::vector<std::string> numbers = {
      "0", "0.0", "-1", "64330.300000000003", "-4.9829936774764926e-09", "1959.9999999503054"};
  const Form forms[] = {
      {"short random", {"\t", " ", "  "}, {"a", "b", "1"}, 14},
      {"tab", {"\t"}, numbers, 12},
      {"blank", {" "}, numbers, 12},
      {"runs of blanks",
       {" ", "  ", "     ", "        ", "                                 "},
       numbers,
       12},
      {"tabs and blanks", {"\t", " \t", "  \t\t", "\t ", "\t  \t ", " "}, numbers, 12},
  };
  std::mt19937 rng(5);
  for (const Form& form : forms) {
    for (int n = 0; n < 20000; ++n) {
      std::string s;
      for (int k = static_cast<int>(rng() % form.max_fields); k > 0; --k) {
        s += form.separators[rng() % form.separators.size()];
        s += form.fields[rng() % form.fields.size()];
      }
      if (rng() % 2) s += form.separators[rng() % form.separators.size()];
      ASSERT_EQ(split(s, " \t"), runs(s, " \t")) << '"' << s << '"';
      const std::string trimmed(kavren::trimmed_line(s));
      for (const std::string& line : {s, trimmed}) {
        Tokens expected;
        for (const std::string& piece : split(line, "\t")) {
          for (const std::string& token : split(piece, " ")) expected.push_back(token);
        }
        std::vector<std::string_view> views;
        kavren::tokenize_line(line, views);
        ASSERT_EQ(Tokens(views.begin(), views.end()), expected)
            << form.name << ": \"" << line << '"';
      }
    }
  }
}

}  // namespace
