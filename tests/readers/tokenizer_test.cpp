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

TEST(Tokenizer, SplitAndTheLineTokenizerAgreeWithTheirDefinitions) {
  EXPECT_EQ(split("1\t 0", "\t"), Tokens({"1", " 0"}));
  EXPECT_EQ(split(" 0", " "), Tokens({"ROOT", "0"}));
  std::mt19937 rng(5);
  for (int n = 0; n < 20000; ++n) {
    std::string s;
    for (int k = static_cast<int>(rng() % 14); k > 0; --k) s += "ab1\t  "[rng() % 6];
    ASSERT_EQ(split(s, " \t"), runs(s, " \t")) << '"' << s << '"';
    const std::string line(kavren::trimmed_line(s));
    Tokens expected;
    for (const std::string& piece : split(line, "\t")) {
      for (const std::string& token : split(piece, " ")) expected.push_back(token);
    }
    std::vector<std::string_view> views;
    kavren::tokenize_line(line, views);
    ASSERT_EQ(Tokens(views.begin(), views.end()), expected) << '"' << line << '"';
  }
}

}  // namespace
