// The renderings of a real report: the page of a 100-ship fleet stays small, text
// from the solution cannot break out of the page, findings quote the lines they name, and
// the terminal text leads with the checker's verdict.
#include "report/render.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "report/report_fixture.h"

namespace kavren::test {
namespace {

std::size_t count(const std::string& text, const std::string& what) {
  std::size_t n = 0;
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++n;
  return n;
}

// The faulty demo's ships repeated and renumbered into a fleet of 100.
report::Checked fleet() {
  report::Checked c = faulty_demo();
  Report& r = c.report;
  const std::size_t demo_ships = r.summary.per_ship.size();
  for (std::size_t s = demo_ships; s < 100; ++s) {
    r.summary.per_ship.push_back(r.summary.per_ship[s % demo_ships]);
    r.summary.per_ship.back().ship = static_cast<int>(s + 1);
    r.trajectories.push_back(r.trajectories[s % demo_ships]);
    r.trajectories.back().ship = static_cast<int>(s + 1);
  }
  r.summary.ships = 100;
  return c;
}

TEST(RenderHtml, HundredShipPageStaysSmall) {
  const std::vector<report::Checked> all = {fleet()};
  const std::string page = report::render_html(all);
  EXPECT_LT(page.size(), 10u * 1000 * 1000);
  EXPECT_EQ(count(page, "<svg class=\"orbits\""), 1u);
  EXPECT_EQ(count(page, "<svg class=\"timeline\""), 1u);
  EXPECT_EQ(count(page, "<svg class=\"ship-plot\""), 100u);
  EXPECT_EQ(count(page, "<g class=\"ship\" data-ship="), 100u);
  // Nothing is fetched: no external resource of any kind.
  EXPECT_EQ(page.find("src="), std::string::npos);
  EXPECT_EQ(page.find("href=\"http"), std::string::npos);
  EXPECT_EQ(page.find("@import"), std::string::npos);

  // A small page is kept for the browser test and for people to look at.
  std::filesystem::create_directories(KAVREN_TEST_ARTEFACTS);
  std::ofstream(std::string(KAVREN_TEST_ARTEFACTS) + "/fixture-report.html")
      << report::render_html({faulty_demo()});
}

TEST(RenderHtml, QuotesNamedLinesAndEscapesEverything) {
  report::Checked c = faulty_demo();
  Finding hostile;
  hostile.code = "ErrorA10";
  hostile.message = "</pre><script>alert(1)</script>\n";
  hostile.quantity = "<img onerror=x>";
  hostile.lines = {1};
  c.report.findings.push_back(hostile);
  c.text = "1\t0\t<b>&amp;</b>\x01\n" + c.text.substr(c.text.find('\n') + 1);
  const std::string page = report::render_html({c});
  EXPECT_EQ(count(page, "<script"), 1u);  // the page's own
  EXPECT_EQ(page.find("<img"), std::string::npos);
  EXPECT_NE(page.find("&lt;/pre&gt;&lt;script&gt;alert(1)&lt;/script&gt;"), std::string::npos);
  EXPECT_NE(page.find("1 0 &lt;b&gt;&amp;amp;&lt;/b&gt;\xEF\xBF\xBD"), std::string::npos);
  EXPECT_EQ(page.find('\x01'), std::string::npos);
  // Every line a finding names is quoted with its number and text.
  for (const Finding& f : c.report.findings) {
    if (f.code == "ErrorA10") continue;
    for (long long line : f.lines) {
      std::size_t start = 0;
      for (long long k = 1; k < line; ++k) start = c.text.find('\n', start) + 1;
      std::string text = c.text.substr(start, c.text.find('\n', start) - start);
      for (char& ch : text)
        if (ch == '\t') ch = ' ';
      char number[16];
      std::snprintf(number, sizeof number, "%7lld", line);
      EXPECT_NE(page.find(std::string(number) + " │ " + text), std::string::npos) << line;
    }
  }
  // Violated events are ringed on the orbit plot and the timeline.
  EXPECT_GE(count(page, "class=\"violated\""), 4u);
}

TEST(RenderText, LeadsWithTheVerdictAndListsEveryRow) {
  const report::Checked& c = faulty_demo();
  const std::string plain = report::render_text(c, {false});
  EXPECT_EQ(plain.rfind(c.report.checker_output, 0), 0u);
  EXPECT_EQ(plain.find('\033'), std::string::npos);
  for (const Finding& f : c.report.findings) EXPECT_NE(plain.find(f.code), std::string::npos);
  for (const Constraint& k : c.report.constraints) EXPECT_NE(plain.find(k.rule), std::string::npos);
  EXPECT_EQ(count(plain, "FAIL"), 3u);
  EXPECT_NE(plain.find("-0.1 N"), std::string::npos);  // 0.6 N - 0.7 N
  EXPECT_NE(plain.find("nan-passes"), std::string::npos);
  const std::string coloured = report::render_text(c, {true});
  EXPECT_NE(coloured.find("\033[31m" + c.report.checker_output), std::string::npos);

  std::vector<report::Checked> two = {c, c};
  two[1].name = "other.txt";
  two[1].report.accepted = true;
  const std::string table = report::render_table(two, {false});
  EXPECT_NE(table.find("Result.txt  rejected Error704"), std::string::npos) << table;
  EXPECT_NE(table.find("other.txt   accepted"), std::string::npos) << table;
}

}  // namespace
}  // namespace kavren::test
