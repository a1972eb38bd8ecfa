// A real report for the renderings: the demo with a NaN thrust that passes (line 5), a
// thrust over the limit (line 10) and its first rendezvous moved 1500 km along the
// asteroid's track, verified in mode all with the states sampled along the arcs.
#pragma once

#include <string>

#include "kavren/verify.h"
#include "report/render.h"
#include "support/error_case.h"

namespace kavren::test {

inline const report::Checked& faulty_demo() {
  static const report::Checked made = [] {
    Scenario s = demo_scenario();
    s.lines[4] = with_token(s.lines[4], 3, "nan");
    s.lines[9] = with_token(with_token(with_token(s.lines[9], 3, "0.7"), 4, "0"), 5, "0");
    move_along_track(s, std::stoi(tokens_of(s.lines[14])[1]), 14, 1500.0);
    Options options;
    options.mode = Mode::all;
    options.workers = 1;
    options.trajectories = true;
    report::Checked c;
    c.name = "Result.txt";
    c.text = s.result_text();
    c.report = verify(Catalogue::from_text(s.catalogue), c.text, options);
    return c;
  }();
  return made;
}

}  // namespace kavren::test
