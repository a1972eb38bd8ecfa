// The solution file's grammar, grouping and event order, and the ships assembled from
// it. Every message is asserted as its whole line.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "astro/ephemeris.h"
#include "readers/solution_reader.h"
#include "support/capture.h"
#include "support/e2e.h"

namespace {

// Writes solution lines; every event line is one side of a pair.
class Solution {
 public:
  Solution& event(int ship, int id, double epoch, double mass = 1000.0,
                  const double* rv = nullptr) {
    static const double kZero[6] = {1.0e8, 0.0, 0.0, 0.0, 30.0, 0.0};
    const double* s = rv ? rv : kZero;
    char line[512];
    std::snprintf(line, sizeof line, "%d\t%d\t%.17g\t%.17g\t%.17g\t%.17g\t%.17g\t%.17g\t%.17g\t%.17g\n",
                  ship, id, epoch, s[0], s[1], s[2], s[3], s[4], s[5], mass);
    text_ += line;
    return *this;
  }
  Solution& pair(int ship, int id, double epoch, double mass_before = 1000.0,
                 double mass_after = 1000.0, const double* rv = nullptr) {
    return event(ship, id, epoch, mass_before, rv).event(ship, id, epoch, mass_after, rv);
  }
  Solution& arc(int ship, double epoch, double ux = 0.0, double uy = 0.0, double uz = 0.0,
                int id = -1) {
    char line[256];
    std::snprintf(line, sizeof line, "%d\t%d\t%.17g\t%.17g\t%.17g\t%.17g\n", ship, id, epoch, ux,
                  uy, uz);
    text_ += line;
    return *this;
  }
  Solution& raw(const std::string& line) {
    text_ += line;
    return *this;
  }
  const std::string& text() const { return text_; }

 private:
  std::string text_;
};

struct ReadResult {
  kavren::test::Outcome outcome;
  bool ok = false;
  std::vector<ShipClass> ships;
  int num_ships = -1;
};

ReadResult read(const std::string& text) {
  kavren::test::TempDir dir;
  dir.write("Result.txt", text);
  const std::string path = dir.path() + "/Result.txt";
  ReadResult result;
  result.outcome = kavren::test::capture(
      [&] { result.ok = ReadSolutionFile(result.ships, result.num_ships, path.c_str()); });
  return result;
}

// A refused file: one message line, no ending of the run.
void expect_refusal(const std::string& text, const std::string& message) {
  const ReadResult result = read(text);
  EXPECT_FALSE(result.ok);
  EXPECT_FALSE(result.outcome.ended);
  EXPECT_EQ(result.outcome.out, message + "\n");
}

Solution launch(int ship = 1, double epoch = 64330.0) {
  return Solution().event(ship, 0, epoch, 2000.0).event(ship, 0, epoch, 2000.0);
}

TEST(SolutionFile, MissingFileEndsTheRunWithStatusOne) {
  std::vector<ShipClass> ships;
  int num_ships = 0;
  const auto outcome = kavren::test::capture(
      [&] { ReadSolutionFile(ships, num_ships, "/nonexistent/Result.txt"); });
  EXPECT_TRUE(outcome.ended);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "ErrorA01. File Open Error: Cannot find the solution file.\n");
}

TEST(SolutionFile, EmptyFile) {
  expect_refusal("", "ErrorA02. File Open Error: The solution file is empty.");
}

TEST(LineGrammar, EmptyLines) {
  const std::string good = launch().text();
  expect_refusal(good + "\n", "ErrorA09. File Format Error on the line 3: This line is empty!");
  expect_refusal(" \t \r\n" + good, "ErrorA09. File Format Error on the line 1: This line is empty!");
  expect_refusal(good + std::string("\0 1\t0\t64330 1 2 3 4 5 6 7\n", 26),
                 "ErrorA09. File Format Error on the line 3: This line is empty!");
}

TEST(LineGrammar, ShortLinesAndWrongTokenCounts) {
  const std::string good = launch().text();
  const std::string unreasonable = ": The number of data in this line is unreasonable.";
  expect_refusal(good + "1 -1 64331\n",
                 "ErrorA09. File Format Error on the line 3" + unreasonable);
  expect_refusal(good + "1\t-1\t64331\t0\t0\n",
                 "ErrorA09. File Format Error on the line 3" + unreasonable);
  // A tab followed by a blank yields an extra "ROOT" token.
  expect_refusal(good + "1\t -1\t64331\t0\t0\t0\n",
                 "ErrorA09. File Format Error on the line 3" + unreasonable);
  // The length rule counts the raw line, a trailing CR included: 11 characters plus CR
  // pass it and fail on their token count instead.
  expect_refusal(good + "1 -1 6433 0\r\n",
                 "ErrorA09. File Format Error on the line 3" + unreasonable);
  expect_refusal(good + "1 -1 6433 0\n",
                 "ErrorA09. File Format Error on the line 3" + unreasonable);
}

// The bytes of a literal that holds NUL bytes, without its terminating one.
template <std::size_t N>
std::string with_nul(const char (&text)[N]) {
  return std::string(text, N - 1);
}

// Found by fuzzing: a long line of a single token (or one whose text a NUL byte cuts
// after its first token) has no event ID; it is refused by its token count.
TEST(LineGrammar, LinesOfOneTokenAreRefusedByTheirCount) {
  const std::string good = launch().text();
  const std::string unreasonable = ": The number of data in this line is unreasonable.";
  expect_refusal(good + "123456789012\n",
                 "ErrorA09. File Format Error on the line 3" + unreasonable);
  expect_refusal(good + with_nul("1\0\t0\t64330 1 2 3 4 5 6 7\n"),
                 "ErrorA09. File Format Error on the line 3" + unreasonable);
  expect_refusal(with_nul("-29.60`\0000216086973.5\t-2.258\n"),
                 "ErrorA09. File Format Error on the line 1" + unreasonable);
}

TEST(LineGrammar, EventIdentifiers) {
  const std::string good = launch().text();
  for (int id : {-1, -5, 60001, 1000000}) {
    expect_refusal(good + Solution().event(1, id, 64331.0).text(),
                   "ErrorA10. File Format Error on the line3: The event ID is unreasonable.");
  }
  expect_refusal(good + Solution().arc(1, 64331.0, 0, 0, 0, 5).text(),
                 "ErrorA11. File Format Error on the line3: The event ID of the burning arcs is "
                 "wrong.");
}

TEST(LineGrammar, ShipIdentifiers) {
  expect_refusal(launch(0).text(),
                 "ErrorA12. File Format Error on the line1: The ID of the ship is wrong.");
  expect_refusal(launch(-3).text(),
                 "ErrorA12. File Format Error on the line1: The ID of the ship is wrong.");
}

TEST(LineGrammar, EpochLimitsIncludeBothEnds) {
  const ReadResult start = read(launch(1, 64328.0).text());
  EXPECT_TRUE(start.ok) << start.outcome.out;
  const ReadResult end = read(launch(1, 69807.0).text());
  EXPECT_TRUE(end.ok) << end.outcome.out;
  expect_refusal(launch(1, 64327.999).text(),
                 "Error001. Event Time Error on the line1: The epoch is earlier than the "
                 "mission's initial time (64328 MJD).");
  expect_refusal(launch(1, 69807.001).text(),
                 "Error002. Event Time Error on the line1: The epoch is later than the "
                 "mission's end time (69807 MJD).");
  // "nan" is a number to the reader, and NaN fails no limit.
  const ReadResult nan = read("1\t0\tnan\t0 0 0 0 0 0 2000\n1\t0\tnan\t0 0 0 0 0 0 2000\n");
  EXPECT_TRUE(nan.ok) << nan.outcome.out;
}

TEST(Structure, LaunchesAndShips) {
  expect_refusal(launch().event(1, -2, 64331.0).event(1, -2, 64331.0).raw(launch(2).text()).text().substr(0) +
                     Solution().event(3, 0, 64340.0).text(),
                 "ErrorA13. File Format Error: The number of mining ships does not match the "
                 "number of launch events.");
  // A ship whose first line is no launch.
  expect_refusal(launch(1).raw(Solution().pair(2, -2, 64331.0).text()).raw(launch(2, 64332).text())
                     .text(),
                 "ErrorA14. File Format Error on the line5: The event ID of the launch is wrong.");
  expect_refusal(Solution().pair(1, -2, 64331.0).raw(launch(1).text()).text(),
                 "ErrorA14. File Format Error on the line3: The event ID of the launch is wrong.");
  expect_refusal(Solution()
                     .event(1, 0, 64330.0)
                     .arc(1, 64330.0)
                     .event(1, 0, 64330.0)
                     .text(),
                 "ErrorA15. File Format Error on the line3: The event IDs of one launch do not "
                 "appear in two adjacent lines.");
}

TEST(Structure, FlybyPairs) {
  const std::string good = launch().text();
  struct Case {
    int id;
    const char *odd, *apart;
  } cases[] = {
      {-2,
       "ErrorA16. File Format Error: The number of the event IDs of the Venus flybys is odd.",
       "ErrorA17. File Format Error on the line6: The event IDs of one Venus flyby do not "
       "appear in two adjacent lines."},
      {-3,
       "ErrorA18. File Format Error: The number of the event IDs of the Earth flybys is odd.",
       "ErrorA19. File Format Error on the line6: The event IDs of one Earth flyby do not "
       "appear in two adjacent lines."},
      {-4, "ErrorA20. File Format Error: The number of the event IDs of the Mars flybys is odd.",
       "ErrorA21. File Format Error on the line6: The event IDs of one Mars flyby do not "
       "appear in two adjacent lines."},
  };
  for (const Case& c : cases) {
    expect_refusal(good + Solution().event(1, c.id, 64331.0).text(), c.odd);
    // Separated by a rendezvous pair: the second line of the flyby pair is line 6.
    expect_refusal(good + Solution().event(1, c.id, 64331.0).pair(1, 5, 64332.0)
                              .event(1, c.id, 64333.0).text(),
                   c.apart);
  }
}

TEST(Structure, RendezvousPairs) {
  const std::string good = launch().text();
  expect_refusal(good + Solution().event(1, 5, 64331.0).text(),
                 "ErrorA22. File Format Error: The number of the event IDs of the rendezvouses "
                 "is odd.");
  // Adjacent, but with two different asteroids.
  expect_refusal(good + Solution().event(1, 5, 64331.0).event(1, 6, 64331.0).text(),
                 "ErrorA23. File Format Error on the line4: The event IDs of one rendezvous do "
                 "not appear in two adjacent lines.");
  expect_refusal(good + Solution().event(1, 5, 64331.0).pair(1, -2, 64332.0)
                            .event(1, 5, 64333.0).text(),
                 "ErrorA23. File Format Error on the line6: The event IDs of one rendezvous do "
                 "not appear in two adjacent lines.");
}

TEST(Assembly, EqualEpochsAreRefused) {
  expect_refusal(launch(1, 64330.0).pair(1, 5, 64330.0).text(),
                 "Error005. Event Time Error on the line3: The epoch of the launch, rendezvous, "
                 "or flyby is earlier than the epoch of last launch, rendezvous, or flyby.");
  expect_refusal(launch(1, 64330.0).pair(1, 5, 64340.0).pair(1, 6, 64339.0).text(),
                 "Error005. Event Time Error on the line5: The epoch of the launch, rendezvous, "
                 "or flyby is earlier than the epoch of last launch, rendezvous, or flyby.");
}

TEST(Assembly, ArcsOfOneToThreeLinesAreRefusedWithTheZeroBasedLine) {
  for (int count = 1; count <= 3; ++count) {
    Solution s = launch();
    for (int k = 0; k < count; ++k) s.arc(1, 64330.0 + k);
    s.pair(1, 5, 64340.0);
    expect_refusal(s.text(),
                   "ErrorA03:  File Format Error on the line 1: The number of lines in this "
                   "burning arc is unreasonable.");
  }
}

TEST(Assembly, EpochOrderIsCheckedBeforeTheArcLines) {
  expect_refusal(launch(1, 64330.0).arc(1, 64330.0).arc(1, 64331.0).pair(1, 5, 64329.0).text(),
                 "Error005. Event Time Error on the line5: The epoch of the launch, rendezvous, "
                 "or flyby is earlier than the epoch of last launch, rendezvous, or flyby.");
}

// A state moving with the Earth plus an excess velocity along x.
std::vector<double> near_earth(double epoch, double excess) {
  int flag = 0;
  std::vector<double> rv(6, 0.0);
  getrv_stats_asteroids(flag, rv.data(), -3, epoch);
  EXPECT_EQ(flag, 1);
  rv[3] += excess;
  return rv;
}

TEST(Assembly, EarthDropNeedsALowExcessSpeed) {
  const double epoch = 64500.0;
  const auto fast = near_earth(epoch, 6.002);
  expect_refusal(launch().pair(1, -3, epoch, 1500.0, 1400.0, fast.data()).text(),
                 "Error806. Mining Data Error on the line3: The hyperbolic excess velocity of "
                 "the ship relative to the Earth should not be larger than 6.0 km/s  at the "
                 "moment of dropping resources.");
  // A fast pass that drops nothing is an ordinary flyby.
  const ReadResult flyby = read(launch().pair(1, -3, epoch, 1500.0, 1500.0005, fast.data()).text());
  EXPECT_TRUE(flyby.ok) << flyby.outcome.out;
  ASSERT_EQ(flyby.ships.size(), 1u);
  EXPECT_TRUE(flyby.ships[0].dm_groups.empty());
  ASSERT_EQ(flyby.ships[0].flybys.size(), 1u);
  EXPECT_EQ(flyby.ships[0].flybys[0].body_id, -3);
}

TEST(Assembly, Error806ComesBeforeTheArcLinesOfItsPair) {
  const double epoch = 64500.0;
  const auto fast = near_earth(epoch, 7.0);
  expect_refusal(launch().arc(1, 64330.0).pair(1, -3, epoch, 1500.0, 1400.0, fast.data()).text(),
                 "Error806. Mining Data Error on the line4: The hyperbolic excess velocity of "
                 "the ship relative to the Earth should not be larger than 6.0 km/s  at the "
                 "moment of dropping resources.");
}

TEST(Assembly, ShipsAreRunsOfEqualIds) {
  const ReadResult result =
      read(launch(7, 64330.0).raw(launch(9, 64331.0).text()).raw(launch(7, 64332.0).text()).text());
  ASSERT_TRUE(result.ok) << result.outcome.out;
  EXPECT_EQ(result.num_ships, 3);
  ASSERT_EQ(result.ships.size(), 3u);
  for (int k = 0; k < 3; ++k) {
    EXPECT_EQ(result.ships[k].ship_id, k + 1);
    EXPECT_EQ(result.ships[k].launch.body_id, 0);
    EXPECT_EQ(result.ships[k].launch.state_before.line_index, 2 * k);
    EXPECT_EQ(result.ships[k].launch.state_after.line_index, 2 * k + 1);
    EXPECT_TRUE(result.ships[k].burning_arcs.empty());
    EXPECT_EQ(result.ships[k].final_mass, 2000.0);
  }
}

TEST(Assembly, ArcsEventsAndMiningGroups) {
  const double drop_epoch = 64800.0;
  const auto slow = near_earth(drop_epoch, 5.9);
  Solution s = launch(4, 64330.0);
  s.pair(4, 12, 64340.0, 2000.0, 1960.0);            // miner left behind: no entry
  s.arc(4, 64340.0, 0.1, 0.2, 0.3).arc(4, 64341.0).arc(4, 64342.0).arc(4, 64342.5, 0, 0, -0.5);
  s.pair(4, 13, 64400.0, 1960.0, 1990.0);             // collection
  s.pair(4, -2, 64500.0, 1990.0, 1990.0);             // Venus flyby, coast arc before
  s.pair(4, 14, 64600.0, 1990.0, 2010.0);             // collection
  s.pair(4, -3, drop_epoch, 2010.0, 1960.0, slow.data());  // drop: closes the group
  s.pair(4, 15, 64900.0, 1960.0, 1980.0);             // collection left open: discarded
  s.arc(4, 64901.0).arc(4, 64902.0);                  // trailing lines: ignored
  const ReadResult result = read(s.text());
  ASSERT_TRUE(result.ok) << result.outcome.out;
  ASSERT_EQ(result.ships.size(), 1u);
  const ShipClass& ship = result.ships[0];
  EXPECT_EQ(ship.ship_id, 1);
  ASSERT_EQ(ship.visits.size(), 4u);
  EXPECT_EQ(ship.visits[0].body_id, 12);
  EXPECT_EQ(ship.visits[0].mass_change, -40.0);
  EXPECT_EQ(ship.visits[1].mass_change, 30.0);
  ASSERT_EQ(ship.flybys.size(), 2u);
  EXPECT_EQ(ship.flybys[0].body_id, -2);
  EXPECT_EQ(ship.flybys[0].mass_change, 0.0);
  EXPECT_EQ(ship.flybys[1].mass_change, -50.0);

  ASSERT_EQ(ship.burning_arcs.size(), 6u);
  const BurningArc& coast = ship.burning_arcs[0];
  EXPECT_EQ(coast.first_line, -1);
  EXPECT_EQ(coast.last_line, -1);
  EXPECT_EQ(coast.start_epoch, 64330.0);
  EXPECT_EQ(coast.end_epoch, 64340.0);
  EXPECT_EQ(coast.start_state.line_index, 1);
  EXPECT_EQ(coast.end_state.line_index, 2);
  const BurningArc& thrust = ship.burning_arcs[1];
  EXPECT_EQ(thrust.ship_number, 1);
  EXPECT_EQ(thrust.first_line, 4);
  EXPECT_EQ(thrust.last_line, 7);
  EXPECT_EQ(thrust.start_epoch, 64340.0);
  EXPECT_EQ(thrust.end_epoch, 64400.0);
  EXPECT_EQ(thrust.values, (std::vector<double>{64340.0, 64341.0, 64342.0, 64342.5}));
  ASSERT_EQ(thrust.lines.size(), 4u);
  EXPECT_EQ(thrust.lines[0], (std::vector<double>{0.1, 0.2, 0.3}));
  EXPECT_EQ(thrust.lines[3], (std::vector<double>{0.0, 0.0, -0.5}));
  EXPECT_EQ(thrust.end_state.mass, 1960.0);

  ASSERT_EQ(ship.dm_groups.size(), 1u);
  const auto& group = ship.dm_groups[0];
  ASSERT_EQ(group.size(), 3u);
  EXPECT_EQ(group[0].line_index, 9);
  EXPECT_EQ(group[0].mass_change, 30.0);
  EXPECT_EQ(group[0].epoch, 64400.0);
  EXPECT_EQ(group[1].mass_change, 20.0);
  EXPECT_EQ(group[2].line_index, 15);
  EXPECT_EQ(group[2].mass_change, -50.0);
  EXPECT_EQ(group[2].epoch, drop_epoch);
  // The last event line's mass, trailing arc lines notwithstanding.
  EXPECT_EQ(ship.final_mass, 1980.0);
}

TEST(Assembly, CarriageReturnLineEnds) {
  std::string text = launch().pair(1, 5, 64340.0).text();
  std::string crlf;
  for (char c : text) {
    if (c == '\n') crlf += '\r';
    crlf += c;
  }
  const ReadResult result = read(crlf);
  ASSERT_TRUE(result.ok) << result.outcome.out;
  EXPECT_EQ(result.ships[0].visits[0].state_after.mass, 1000.0);
}

TEST(Assembly, LastLineWithoutLineBreak) {
  std::string text = launch().text();
  text.pop_back();
  const ReadResult result = read(text);
  ASSERT_TRUE(result.ok) << result.outcome.out;
  EXPECT_EQ(result.num_ships, 1);
}

}  // namespace
