// The catalogue is a stream of numbers after one header line; the table must hold what
// plain stream extraction would put there, whatever the file looks like.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "readers/catalogue.h"
#include "support/capture.h"
#include "support/e2e.h"

namespace {

using kavren::kCatalogueColumns;
using kavren::kNumAsteroids;
using Table = std::vector<double>;

// The reading rule written the obvious way: getline, then >> int and >> double.
Table stream_reference(const std::string& text) {
  Table table(static_cast<std::size_t>(kNumAsteroids) * kCatalogueColumns, 0.0);
  std::istringstream in(text);
  std::string header;
  std::getline(in, header);
  for (int n = 0; n < kNumAsteroids; ++n) {
    int id = 0;
    in >> id;
    for (int k = 0; k < kCatalogueColumns; ++k) in >> table[static_cast<std::size_t>(n) * 7 + k];
  }
  return table;
}

class CatalogueReader : public ::testing::Test {
 protected:
  void TearDown() override { clear_info(); }

  Table load(const std::string& text) {
    dir_.write("catalogue.txt", text);
    const std::string path = dir_.path() + "/catalogue.txt";
    ReadAsteroidsData(path.c_str());
    Table table;
    for (int n = 0; n < kNumAsteroids; ++n) {
      for (int k = 0; k < kCatalogueColumns; ++k) table.push_back(t_eles_asteroids[n][k]);
    }
    return table;
  }

  void expect_same_as_stream(const std::string& text) {
    const Table got = load(text);
    const Table expected = stream_reference(text);
    ASSERT_EQ(got.size(), expected.size());
    for (std::size_t j = 0; j < got.size(); ++j) {
      std::uint64_t a = 0, b = 0;
      std::memcpy(&a, &got[j], 8);
      std::memcpy(&b, &expected[j], 8);
      if (std::isnan(got[j]) && std::isnan(expected[j])) continue;
      ASSERT_EQ(a, b) << "row " << j / 7 << " column " << j % 7 << ": " << got[j] << " vs "
                      << expected[j];
    }
  }

  kavren::test::TempDir dir_;
};

TEST_F(CatalogueReader, RowsHoldTheRecordsInFileOrder) {
  std::map<int, kavren::test::CatalogueRow> planted;
  planted[1] = {64328.0, 1.25, 0.05, 3.5, 100.0, 200.0, 300.0};
  planted[60000] = {64000.5, 3.0, 0.5, 10.0, 20.0, 30.0, 40.0};
  const Table table = load(kavren::test::catalogue_text(planted));
  EXPECT_EQ(table[0], 64328.0);
  EXPECT_EQ(table[1], 1.25);
  EXPECT_EQ(table[6], 300.0);
  const std::size_t last = static_cast<std::size_t>(kNumAsteroids - 1) * 7;
  EXPECT_EQ(table[last + 0], 64000.5);
  EXPECT_EQ(table[last + 2], 0.5);
  EXPECT_EQ(table[last + 6], 40.0);
}

TEST_F(CatalogueReader, WellFormedFileMatchesStreamExtraction) {
  expect_same_as_stream(kavren::test::catalogue_text());
}

TEST_F(CatalogueReader, MissingHeaderLosesTheFirstRecord) {
  const std::string full = kavren::test::catalogue_text({{2, {64328.0, 7.0}}});
  const std::string headless = full.substr(full.find('\n') + 1);
  const Table table = load(headless);
  // Asteroid 2's record now lands in row 0.
  EXPECT_EQ(table[1], 7.0);
  expect_same_as_stream(headless);
}

TEST_F(CatalogueReader, ExtraAndMissingColumnsShiftLaterValues) {
  std::string text = kavren::test::catalogue_text();
  const std::size_t second_line = text.find('\n') + 1;
  const std::size_t end_of_record = text.find('\n', second_line);
  std::string extra = text;
  extra.insert(end_of_record, " 99.5");
  expect_same_as_stream(extra);
  std::string missing = text;
  const std::size_t last_column = text.rfind('\t', end_of_record);
  missing.erase(last_column, end_of_record - last_column);
  expect_same_as_stream(missing);
}

TEST_F(CatalogueReader, ShortFileLeavesTheRestZero) {
  const std::string text = "header\n1 64328 2.5 0.1 5 10 20 30\n2 64328 2.6\n";
  const Table table = load(text);
  EXPECT_EQ(table[1], 2.5);
  EXPECT_EQ(table[8], 2.6);
  EXPECT_EQ(table[9], 0.0);
  EXPECT_EQ(table[100], 0.0);
  expect_same_as_stream(text);
}

TEST_F(CatalogueReader, NoLineBreakMeansEverythingIsHeader) {
  const Table table = load("1 64328 2.5 0.1 5 10 20 30");
  for (double value : table) ASSERT_EQ(value, 0.0);
}

TEST_F(CatalogueReader, MalformedTokensStopTheStreamAsExtractionDoes) {
  const char* const damaged[] = {"12abc", "1e400", "-1e400", "nan", "+5", "1e", ".", "-",
                                 "5.", ".5", "0x10", "1e-400", "\f3", "1,5", "77777777777"};
  std::mt19937 rng(7);
  const std::string base = kavren::test::catalogue_text();
  for (const char* token : damaged) {
    std::string text = base;
    // Replace one number somewhere in the first records.
    std::size_t pos = text.find('\n') + 1;
    const int skip = static_cast<int>(rng() % 40);
    for (int k = 0; k < skip; ++k) pos = text.find_first_of("\t\n", pos) + 1;
    const std::size_t end = text.find_first_of("\t\n", pos);
    text.replace(pos, end - pos, token);
    SCOPED_TRACE(token);
    expect_same_as_stream(text);
  }
}

TEST_F(CatalogueReader, SurplusRecordsAreIgnored) {
  std::string text = kavren::test::catalogue_text();
  text += "60001 64328 9 0.9 9 9 9 9\n";
  expect_same_as_stream(text);
}

TEST_F(CatalogueReader, WhiteSpaceOfAnyKindSeparatesNumbers) {
  std::string text = kavren::test::catalogue_text();
  for (std::size_t k = text.find('\n') + 1, n = 0; k < text.size() && n < 500; ++k) {
    if (text[k] == '\t') text[k] = "\t\v\f\r "[n++ % 5];
  }
  expect_same_as_stream(text);
}

TEST(CatalogueFile, MissingFileEndsTheRunWithStatusOne) {
  const auto outcome =
      kavren::test::capture([] { ReadAsteroidsData("/nonexistent/KAVREN_Asteroids_Data.txt"); });
  EXPECT_TRUE(outcome.ended);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "ErrorA00: The file of Asteroid Data cannot be found.\n");
}

TEST(CatalogueFile, ReleasedTableIsNull) {
  kavren::test::TempDir dir;
  dir.write("c.txt", "header\n");
  const std::string path = dir.path() + "/c.txt";
  ReadAsteroidsData(path.c_str());
  ASSERT_NE(t_eles_asteroids, nullptr);
  clear_info();
  EXPECT_EQ(t_eles_asteroids, nullptr);
  clear_info();  // a second release is harmless
}

}  // namespace
