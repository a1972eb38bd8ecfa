// A session's report equals kavren::verify's for every text, whatever the session verified
// before: the error cases and pairs of them between verifications of the valid base, ships
// moved, repeated, renumbered and lengthened, a cache too small to hold anything.
#include "kavren/session.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "support/e2e.h"
#include "support/error_case.h"
#include "support/same_report.h"

namespace kavren::test {
namespace {

std::vector<Options> option_sets() {
  Options first, all, traced;
  first.workers = 1;
  all.mode = Mode::all;
  all.workers = 2;
  traced.mode = Mode::all;
  traced.trajectories = true;
  traced.workers = 1;
  return {first, all, traced};
}

void expect_as_verify(Session& session, const Catalogue& catalogue, const std::string& text,
                      const Options& options, const std::string& what) {
  const Report expected = verify(catalogue, text, options);
  const Report got = session.verify(text, options);
  EXPECT_EQ(report_difference(got, expected), "") << what;
}

const Catalogue& demo_catalogue() {
  static const Catalogue catalogue = Catalogue::from_text(demo_scenario().catalogue);
  return catalogue;
}

// The files the case writes, when they are a catalogue and a solution only.
bool text_only(const Scenario& s) {
  return s.args.empty() && !s.prepare && s.write_result && s.write_catalogue;
}

TEST(Session, ErrorCasesAloneAndInPairsBetweenVerificationsOfTheBase) {
#ifdef KAVREN_SANITIZED
  // Under the sanitizers the moves and threads below, and the session fuzz target, keep
  // the memory checked; the sweep of every case is the release build's.
  GTEST_SKIP() << "the release build sweeps every case";
#endif
  const std::vector<ErrorCase> cases = all_error_cases();
  const std::string base = demo_scenario().result_text();
  for (const Options& options : option_sets()) {
    Session session(demo_catalogue());
    for (std::size_t k = 0; k < cases.size(); ++k) {
      // Alone, then with another case's change (a fault in another ship, or in the same).
      for (int together = 0; together < 2; ++together) {
        Scenario s = demo_scenario();
        cases[k].make(s);
        if (together) {
          try {
            cases[(k * 7 + 3) % cases.size()].make(s);
          } catch (const std::exception&) {
            continue;  // the first change took what the second looks for
          }
        }
        if (!text_only(s)) continue;
        const std::string what = cases[k].name + (together ? " with another" : "");
        if (s.catalogue == demo_scenario().catalogue) {
          expect_as_verify(session, demo_catalogue(), s.result_text(), options, what);
          expect_as_verify(session, demo_catalogue(), base, options, what + ", base after");
        } else {
          Session own(Catalogue::from_text(s.catalogue));
          const Catalogue catalogue = Catalogue::from_text(s.catalogue);
          for (const std::string& text : {base, s.result_text(), base}) {
            expect_as_verify(own, catalogue, text, options, what);
          }
        }
      }
    }
  }
}

// The demo's ships as runs of lines.
std::vector<std::vector<std::string>> ships_of(const std::vector<std::string>& lines) {
  std::vector<std::vector<std::string>> ships;
  std::string id;
  for (const std::string& line : lines) {
    const std::string own = tokens_of(line)[0];
    if (ships.empty() || own != id) ships.emplace_back();
    ships.back().push_back(line);
    id = own;
  }
  return ships;
}

std::string joined(const std::vector<std::vector<std::string>>& ships) {
  std::string text;
  for (const auto& ship : ships) {
    for (const std::string& line : ship) text += line + "\n";
  }
  return text;
}

TEST(Session, ShipsMovedRepeatedRenumberedAndLengthened) {
  const std::vector<std::vector<std::string>> base = ships_of(demo_scenario().lines);
  ASSERT_GE(base.size(), 3u);
  using Edit = std::function<void(std::vector<std::vector<std::string>>&)>;
  auto arc_line = [](const std::vector<std::string>& ship) {
    for (std::size_t k = 2; k < ship.size(); ++k) {
      if (tokens_of(ship[k]).size() == 6) return k;
    }
    return std::size_t{0};
  };
  const std::vector<std::pair<std::string, Edit>> edits = {
      {"base", [](auto&) {}},
      {"first and last ship swapped", [](auto& s) { std::swap(s.front(), s.back()); }},
      {"base again", [&](auto& s) { s = base; }},
      {"first ship repeated at the end", [](auto& s) { s.push_back(s.front()); }},
      {"second ship dropped", [](auto& s) { s.erase(s.begin() + 1); }},
      {"first ship's ID written 01",
       [](auto& s) {
         for (std::string& line : s.front()) line = with_token(line, 0, "01");
       }},
      {"an arc line of the first ship doubled",
       [&](auto& s) {
         const std::size_t k = arc_line(s.front());
         if (k > 0) s.front().insert(s.front().begin() + k, s.front()[k]);
       }},
      {"a thrust of the second ship changed",
       [&](auto& s) {
         const std::size_t k = arc_line(s[1]);
         if (k > 0) s[1][k] = with_token(s[1][k], 3, number(token(s[1][k], 3) + 1e-3));
       }},
      {"two ships fused under one ID",
       [](auto& s) {
         for (std::string& line : s[1]) line = with_token(line, 0, tokens_of(s[0][0])[0]);
       }},
      {"the last line without its line break", [](auto&) {}},
      {"base at last", [&](auto& s) { s = base; }},
  };
  for (const Options& options : option_sets()) {
    for (std::size_t bound : {Session::kDefaultCacheBytes, std::size_t{1}}) {
      Session session(demo_catalogue(), bound);
      std::vector<std::vector<std::string>> ships = base;
      for (const auto& [name, edit] : edits) {
        edit(ships);
        std::string text = joined(ships);
        if (name == "the last line without its line break") text.pop_back();
        expect_as_verify(session, demo_catalogue(), text, options, name);
      }
      EXPECT_EQ(session.cached_ships() == 0, bound == 1);
    }
  }
}

// Sessions on several threads at once share the catalogue and nothing else.
TEST(Session, ThreadsEachWithASessionGiveTheReportsOfOne) {
  Scenario failing = demo_scenario();
  failing.lines[4] = with_token(failing.lines[4], 3, "0.7");
  const std::string base = demo_scenario().result_text();
  const std::vector<std::string> texts = {base, failing.result_text(),
                                          base.substr(base.size() / 2)};
  Options options;
  options.mode = Mode::all;
  options.workers = 2;
  std::vector<Report> expected;
  for (const std::string& text : texts) expected.push_back(verify(demo_catalogue(), text, options));
  std::vector<std::string> differences(3);
  std::vector<std::thread> threads;
  for (std::size_t t = 0; t < differences.size(); ++t) {
    threads.emplace_back([&, t] {
      Session session(demo_catalogue());
      for (std::size_t k = 0; k < 2 * texts.size(); ++k) {
        const std::size_t which = (k + t) % texts.size();
        const std::string d =
            report_difference(session.verify(texts[which], options), expected[which]);
        if (!d.empty()) differences[t] = d;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(differences, std::vector<std::string>(3));
}

// The ledger's table is reused between verifications: the asteroids at both ends of the
// catalogue (1 and 60000) met in one candidate leave nothing behind for the next.
TEST(Session, TheLedgerStartsEmptyForEveryCandidate) {
  const Scenario& demo = demo_scenario();
  std::string asteroid;
  for (const std::string& line : demo.lines) {
    const std::vector<std::string> t = tokens_of(line);
    if (asteroid.empty() && t.size() == 10 && std::stoi(t[1]) >= 1) asteroid = t[1];
  }
  ASSERT_FALSE(asteroid.empty());
  // Rows 1 and 60000 of the catalogue take the asteroid's orbit.
  std::vector<std::string> rows;
  for (std::size_t at = 0; at < demo.catalogue.size();) {
    const std::size_t end = demo.catalogue.find('\n', at);
    rows.push_back(demo.catalogue.substr(at, end - at));
    at = end == std::string::npos ? demo.catalogue.size() : end + 1;
  }
  const std::string orbit = rows[std::stoul(asteroid)].substr(asteroid.size());
  rows[1] = "1" + orbit;
  rows[60000] = "60000" + orbit;
  std::string catalogue_text;
  for (const std::string& row : rows) catalogue_text += row + "\n";
  const Catalogue catalogue = Catalogue::from_text(catalogue_text);
  auto renamed = [&](const std::string& id) {
    std::string text;
    for (const std::string& line : demo.lines) {
      const bool visit = tokens_of(line).size() == 10 && tokens_of(line)[1] == asteroid;
      text += (visit ? with_token(line, 1, id) : line) + "\n";
    }
    return text;
  };
  Options options;
  options.mode = Mode::all;
  Session session(catalogue);
  for (const char* id : {"1", "60000", "1", "60000"}) {
    expect_as_verify(session, catalogue, renamed(id), options, std::string("asteroid ") + id);
  }
  EXPECT_TRUE(session.verify(renamed("1"), options).accepted);
}

TEST(Session, CountsTheShipsItTookFromItsCache) {
  Session session(demo_catalogue());
  const std::string text = demo_scenario().result_text();
  Options options;
  std::size_t last_done = 0, last_total = 0;
  options.progress = [&](std::size_t done, std::size_t total) {
    EXPECT_GE(done, last_done);
    last_done = done;
    last_total = total;
  };
  const Report first = session.verify(text, options);
  EXPECT_EQ(last_done, first.statistics.arcs);
  EXPECT_EQ(last_total, first.statistics.arcs);
  const Report second = session.verify(text);
  ASSERT_TRUE(first.accepted);
  EXPECT_EQ(first.statistics.ships_cached, 0u);
  EXPECT_EQ(first.statistics.ships_verified, static_cast<std::size_t>(first.summary.ships));
  EXPECT_EQ(second.statistics.ships_cached, static_cast<std::size_t>(first.summary.ships));
  EXPECT_EQ(second.statistics.ships_verified, 0u);
  EXPECT_EQ(second.statistics.derivative_evaluations, 0u);
  EXPECT_GT(session.cache_bytes(), 0u);
  session.clear();
  EXPECT_EQ(session.cached_ships(), 0u);
  EXPECT_EQ(session.verify(text).statistics.ships_cached, 0u);
}

}  // namespace
}  // namespace kavren::test
