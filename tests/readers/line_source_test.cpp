// Lines read in chunks must be the lines getline reads, twice over.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "readers/line_source.h"
#include "support/e2e.h"

namespace {

std::vector<std::string> getline_lines(const std::string& bytes) {
  std::vector<std::string> lines;
  std::istringstream in(bytes);
  std::string line;
  while (std::getline(in, line)) lines.push_back(line);
  return lines;
}

std::vector<std::string> source_lines(kavren::LineSource& source) {
  std::vector<std::string> lines;
  std::string_view line;
  while (source.next(line)) lines.emplace_back(line);
  return lines;
}

std::string random_text(std::mt19937& rng, std::size_t size) {
  std::string text;
  while (text.size() < size) {
    // Mostly short lines, now and then one longer than a read chunk.
    const std::size_t length = rng() % 50 == 0 ? 300000 + rng() % 1000 : rng() % 120;
    text.append(length, static_cast<char>('a' + rng() % 26));
    if (rng() % 7 == 0) text += '\r';
    if (rng() % 31 == 0) text += '\0';
    text += '\n';
  }
  return text;
}

TEST(LineSource, ChunkedLinesAreGetlineLines) {
  std::mt19937 rng(5);
  kavren::test::TempDir dir;
  for (int trial = 0; trial < 6; ++trial) {
    std::string text = random_text(rng, 1500000);
    if (trial % 2) text.resize(text.size() - 1 - rng() % 20);  // no final line break
    dir.write("f.txt", text);
    kavren::LineSource source((dir.path() + "/f.txt").c_str());
    ASSERT_TRUE(source.is_open());
    EXPECT_FALSE(source.empty());
    const auto expected = getline_lines(text);
    EXPECT_EQ(source_lines(source), expected);
    source.rewind();
    EXPECT_EQ(source_lines(source), expected);
  }
}

TEST(LineSource, EmptyAndMissingFiles) {
  kavren::test::TempDir dir;
  dir.write("empty.txt", "");
  kavren::LineSource empty((dir.path() + "/empty.txt").c_str());
  EXPECT_TRUE(empty.is_open());
  EXPECT_TRUE(empty.empty());
  std::string_view line;
  EXPECT_FALSE(empty.next(line));

  kavren::LineSource missing((dir.path() + "/missing.txt").c_str());
  EXPECT_FALSE(missing.is_open());

  dir.write("newline.txt", "\n");
  kavren::LineSource newline((dir.path() + "/newline.txt").c_str());
  EXPECT_EQ(source_lines(newline), std::vector<std::string>{""});
}

TEST(LineSource, APipeIsReadWholeAndCanBeReadAgain) {
  kavren::test::TempDir dir;
  const std::string path = dir.path() + "/pipe";
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  const std::string text = "first line\nsecond line\nthird";
  std::thread writer([&] { std::ofstream(path) << text; });
  kavren::LineSource source(path.c_str());
  writer.join();
  const std::vector<std::string> expected{"first line", "second line", "third"};
  EXPECT_EQ(source_lines(source), expected);
  source.rewind();
  EXPECT_EQ(source_lines(source), expected);
}

}  // namespace
