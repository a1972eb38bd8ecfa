// Trimming, splitting and the decoding of event lines.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "readers/tokenizer.h"

namespace {

using Tokens = std::vector<std::string>;

Tokens line_tokens(const std::string& line) {
  std::vector<std::string_view> views;
  kavren::tokenize_line(kavren::trimmed_line(line), views);
  return Tokens(views.begin(), views.end());
}

std::string trimmed(std::string text) {
  std::vector<char> out(text.size() + 1, 'x');
  trim(text.data(), out.data());
  return std::string(out.data());
}

TEST(Trim, RemovesTheCLocaleWhiteSpaceAtBothEnds) {
  EXPECT_EQ(trimmed(" \t\v\f\r\n a b \r\n"), "a b");
  EXPECT_EQ(trimmed("abc"), "abc");
  EXPECT_EQ(trimmed("   "), "");
  EXPECT_EQ(trimmed(""), "");
  // Bytes above 127 are not white space.
  EXPECT_EQ(trimmed("\xa0x\xa0"), "\xa0x\xa0");
}

TEST(Trim, WorksInPlace) {
  char text[] = "  12 34  ";
  trim(text, text);
  EXPECT_STREQ(text, "12 34");
}

TEST(Trim, ALineEndsAtItsFirstNul) {
  EXPECT_EQ(kavren::trimmed_line(std::string("1 2\0 3", 6)), "1 2");
  EXPECT_EQ(kavren::trimmed_line(std::string("\0 1 2", 5)), "");
}

TEST(Split, TokensBetweenRunsOfDelimiters) {
  EXPECT_EQ(split("a  b", " "), (Tokens{"a", "b"}));
  EXPECT_EQ(split("a b ", " "), (Tokens{"a", "b"}));
  EXPECT_EQ(split("a b   ", " "), (Tokens{"a", "b"}));
  EXPECT_EQ(split("a,b;c", ",;"), (Tokens{"a", "b", "c"}));
  EXPECT_EQ(split("abc", " "), (Tokens{"abc"}));
}

TEST(Split, ALeadingDelimiterGivesRoot) {
  EXPECT_EQ(split(" a", " "), (Tokens{"ROOT", "a"}));
  EXPECT_EQ(split("  a b", " "), (Tokens{"ROOT", "a", "b"}));
  EXPECT_EQ(split("   ", " "), (Tokens{"ROOT"}));
}

TEST(Split, EmptyInputsGiveNothingOrTheWhole) {
  EXPECT_EQ(split("", " "), Tokens{});
  EXPECT_EQ(split("a b", ""), Tokens{});
}

TEST(LineTokens, TabsThenBlanks) {
  EXPECT_EQ(line_tokens("1\t0 64330.5"), (Tokens{"1", "0", "64330.5"}));
  EXPECT_EQ(line_tokens("1\t 0"), (Tokens{"1", "ROOT", "0"}));
  EXPECT_EQ(line_tokens("1\t\t0"), (Tokens{"1", "0"}));
  EXPECT_EQ(line_tokens("  1 2\t3  \r\n"), (Tokens{"1", "2", "3"}));
  // Other white space inside a line is part of a token.
  EXPECT_EQ(line_tokens("1\v2 3"), (Tokens{"1\v2", "3"}));
}

TEST(EventLine, DecodesEveryColumn) {
  int event_id = 99;
  double epoch = 0.0;
  StateStruct state;
  string_eventline2data(41, {"3", "-2", "64400.25", "1", "-2", "3.5", "4e1", "-5", "6", "1999.5"},
                        event_id, epoch, state);
  EXPECT_EQ(event_id, -2);
  EXPECT_EQ(epoch, 64400.25);
  EXPECT_EQ(state.line_index, 41);
  EXPECT_EQ(state.epoch, 64400.25);
  EXPECT_EQ(state.r[0], 1.0);
  EXPECT_EQ(state.r[1], -2.0);
  EXPECT_EQ(state.r[2], 3.5);
  EXPECT_EQ(state.v[0], 40.0);
  EXPECT_EQ(state.v[1], -5.0);
  EXPECT_EQ(state.v[2], 6.0);
  EXPECT_EQ(state.mass, 1999.5);
}

TEST(EventLine, MalformedNumbersConvertTheirPrefix) {
  int event_id = 0;
  double epoch = 0.0;
  StateStruct state;
  string_eventline2data(0, {"1", "7x", "12abc", "nan", "+.5", "5.", "-", "", "1e400", "x"},
                        event_id, epoch, state);
  EXPECT_EQ(event_id, 7);
  EXPECT_EQ(epoch, 12.0);
  EXPECT_TRUE(std::isnan(state.r[0]));
  EXPECT_EQ(state.r[1], 0.5);
  EXPECT_EQ(state.r[2], 5.0);
  EXPECT_EQ(state.v[0], 0.0);
  EXPECT_EQ(state.v[1], 0.0);
  EXPECT_TRUE(std::isinf(state.v[2]));
  EXPECT_EQ(state.mass, 0.0);
}

TEST(EventLine, MissingTokensReadAsZero) {
  int event_id = 5;
  double epoch = 5.0;
  StateStruct state;
  state.mass = 9.0;
  string_eventline2data(3, {"1", "2", "64400"}, event_id, epoch, state);
  EXPECT_EQ(event_id, 2);
  EXPECT_EQ(epoch, 64400.0);
  EXPECT_EQ(state.r[0], 0.0);
  EXPECT_EQ(state.mass, 0.0);
}

}  // namespace

namespace {

// The one-pass tokenizer gives what splitting on tabs and then on blanks gives.
TEST(LineTokens, AgreeWithSplittingTwice) {
  std::mt19937 rng(11);
  const char alphabet[] = {'a', '1', ' ', '\t', '.', '\v'};
  for (int trial = 0; trial < 20000; ++trial) {
    std::string line;
    const int length = static_cast<int>(rng() % 16);
    for (int k = 0; k < length; ++k) line += alphabet[rng() % sizeof alphabet];
    Tokens expected;
    for (const std::string& piece : split(line, "\t")) {
      for (const std::string& token : split(piece, " ")) expected.push_back(token);
    }
    std::vector<std::string_view> views;
    kavren::tokenize_line(line, views);
    EXPECT_EQ(Tokens(views.begin(), views.end()), expected) << "[" << line << "]";
  }
}

}  // namespace
