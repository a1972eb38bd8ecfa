// The catalogue is a stream of numbers after one header line; the table must hold what
// plain stream extraction would put there, whatever the file looks like.
#include "readers/catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "console/checks.h"
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

// Loads `text` as the catalogue and compares every cell, bit for bit, with what stream
// extraction puts there.
void expect_same_as_stream(const std::string& text) {
  kavren::test::TempDir dir;
  dir.write("catalogue.txt", text);
  ReadAsteroidsData((dir.path() + "/catalogue.txt").c_str());
  const Table expected = stream_reference(text);
  for (std::size_t j = 0; j < expected.size(); ++j) {
    const double got = t_eles_asteroids[j / kCatalogueColumns][j % kCatalogueColumns];
    std::uint64_t a = 0, b = 0;
    std::memcpy(&a, &got, 8);
    std::memcpy(&b, &expected[j], 8);
    if (std::isnan(got) && std::isnan(expected[j])) continue;
    ASSERT_EQ(a, b) << "row " << j / 7 << " column " << j % 7 << ": " << got << " vs "
                    << expected[j];
  }
  clear_info();
}

// Well-formed and damaged files: no header, extra and missing columns, a short file, no
// line break at all, all records on one line, surplus records, white space of every kind,
// malformed numbers.
TEST(CatalogueReader, EveryCellIsWhatStreamExtractionReads) {
  std::map<int, kavren::test::CatalogueRow> planted;
  planted[1] = {64328.0, 1.25, 0.05, 3.5, 100.0, 200.0, 300.0};
  planted[60000] = {64000.5, 3.0, 0.5, 10.0, 20.0, 30.0, 40.0};
  const std::string text = kavren::test::catalogue_text(planted);
  const std::size_t second_line = text.find('\n') + 1;
  const std::size_t end_of_record = text.find('\n', second_line);
  std::vector<std::string> variants = {
      text, text.substr(second_line), "header\n1 64328 2.5 0.1 5 10 20 30\n2 64328 2.6\n",
      "1 64328 2.5 0.1 5 10 20 30", text + "60001 64328 9 0.9 9 9 9 9\n"};
  variants.push_back(text);
  std::replace(variants.back().begin() + second_line, variants.back().end(), '\n', ' ');
  variants.push_back(text);
  variants.back().insert(end_of_record, " 99.5");
  variants.push_back(text);
  const std::size_t last_column = text.rfind('\t', end_of_record);
  variants.back().erase(last_column, end_of_record - last_column);
  variants.push_back(text);
  for (std::size_t k = second_line, n = 0; n < 500; ++k) {
    if (variants.back()[k] == '\t') variants.back()[k] = "\t\v\f\r "[n++ % 5];
  }
  std::mt19937 rng(7);
  for (const char* token : {"12abc", "1e400", "-1e400", "nan", "+5", "1e", ".", "-", "5.", ".5",
                            "0x10", "1e-400", "\f3", "1,5", "77777777777"}) {
    std::string damaged = text;
    std::size_t pos = second_line;
    const int skip = static_cast<int>(rng() % 40);
    for (int k = 0; k < skip; ++k) pos = damaged.find_first_of("\t\n", pos) + 1;
    damaged.replace(pos, damaged.find_first_of("\t\n", pos) - pos, token);
    variants.push_back(damaged);
  }
  // A large catalogue is read in two halves at once: damage after the middle, a record
  // one column short and a number the stream reads its own way.
  for (const char* token : {"", "1e400"}) {
    std::string damaged = text;
    const std::size_t pos = damaged.find('\t', damaged.find('\n', 3 * damaged.size() / 4)) + 1;
    damaged.replace(pos, damaged.find_first_of("\t\n", pos) - pos + (*token ? 0 : 1), token);
    variants.push_back(damaged);
  }
  for (std::size_t v = 0; v < variants.size(); ++v) {
    SCOPED_TRACE("variant " + std::to_string(v));
    expect_same_as_stream(variants[v]);
  }
}

}  // namespace
