// The HTML page: one file with inline CSS, inline SVG and a few lines of script, so that
// it opens anywhere without a network. Plots use decimated samples so that a 100-ship
// solution stays a few megabytes.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <set>
#include <string_view>

#include "kavren/bodies.h"
#include "kavren/limits.h"
#include "kavren/verify.h"
#include "report/polish_hint.h"
#include "report/render.h"

namespace kavren::report {
namespace {

constexpr double kMissionStart = kMissionStartMjd;
constexpr double kMissionEnd = kMissionEndMjd;
// Most findings and lines quoted on the page; the JSON report has them all.
constexpr std::size_t kMaxFindingsShown = 2000;
constexpr std::size_t kMaxLinesQuoted = 6;
// Samples kept per ship: the orbit plot, and min-max buckets of each time plot.
constexpr std::size_t kOrbitSamples = 800;
constexpr std::size_t kTimeBuckets = 300;

std::string escape(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (unsigned char c : text) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\'':
        out += "&#39;";
        break;
      case '\t':
        out += ' ';
        break;
      case '\n':
        out += '\n';
        break;
      case '\r':
        break;
      default:
        // Control bytes have no place in a page; everything else passes as UTF-8.
        if (c < 0x20 || c == 0x7F)
          out += "\xEF\xBF\xBD";
        else
          out += static_cast<char>(c);
    }
  }
  return out;
}

std::string fixed(double x, int decimals = 1) {
  char buffer[48];
  std::snprintf(buffer, sizeof buffer, "%.*f", decimals, x);
  return buffer;
}

// A distinct colour per ship (golden-angle hues).
std::string ship_colour(int ship) {
  const double hue = std::fmod(ship * 137.508, 360.0);
  return "hsl(" + fixed(hue, 0) + ",70%,42%)";
}

std::string number_cell(double x, const std::string& unit) {
  std::string cell =
      "<td class=\"num\" title=\"" + exact_number(x) + "\">" + escape(short_number(x));
  if (!unit.empty() && std::isfinite(x)) cell += " " + escape(unit);
  return cell + "</td>";
}

std::string join_lines(const std::vector<long long>& lines) {
  std::string s;
  for (std::size_t k = 0; k < lines.size() && k < 8; ++k)
    s += (k ? ", " : "") + std::to_string(lines[k]);
  if (lines.size() > 8) s += ", … (" + std::to_string(lines.size()) + ")";
  return s;
}

// The solution's lines, without their line ends, for quoting.
std::vector<std::string_view> split_lines(const std::string& text) {
  std::vector<std::string_view> lines;
  std::size_t start = 0;
  while (start < text.size()) {
    std::size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    std::string_view line(text.data() + start, end - start);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    lines.push_back(line);
    start = end + 1;
  }
  return lines;
}

// Events that a finding names: the event of a named line, or for a line inside an arc the
// event that ends the arc. Keyed by (ship, index of the event).
struct Place {
  int ship;
  std::size_t event;
  bool operator<(const Place& o) const { return ship != o.ship ? ship < o.ship : event < o.event; }
};

std::map<Place, std::string> violated_places(const Report& r) {
  std::map<Place, std::string> places;
  for (const Finding& f : r.findings) {
    for (long long line : f.lines) {
      for (const ShipSummary& s : r.summary.per_ship) {
        if (f.ship != 0 && s.ship != f.ship) continue;
        for (std::size_t k = 0; k < s.events.size(); ++k) {
          const long long first = s.events[k].line;
          const bool in_pair = line == first || line == first + 1;
          const bool ends_arc =
              line < first && (k == 0 || line > s.events[k - 1].line + 1) && f.ship == s.ship;
          if (in_pair || ends_arc) {
            std::string& codes = places[{s.ship, k}];
            if (codes.find(f.code) == std::string::npos)
              codes += (codes.empty() ? "" : " ") + f.code;
            break;
          }
        }
      }
    }
  }
  return places;
}

// ---- plots ------------------------------------------------------------------------

struct Frame {             // maps data to SVG pixels
  double x0, x1, y0, y1;   // data ranges
  double left, top, w, h;  // pixel box
  double px(double x) const { return left + (x - x0) / (x1 - x0) * w; }
  double py(double y) const { return top + h - (y - y0) / (y1 - y0) * h; }
};

std::string marker(const std::string& kind, double x, double y, const std::string& fill,
                   const std::string& title) {
  const std::string t = "<title>" + escape(title) + "</title>";
  const std::string X = fixed(x), Y = fixed(y);
  if (kind == "launch") {
    return "<path class=\"ev launch\" d=\"M" + fixed(x) + " " + fixed(y - 5) + "L" +
           fixed(x + 4.5) + " " + fixed(y + 3.5) + "L" + fixed(x - 4.5) + " " + fixed(y + 3.5) +
           "Z\" fill=\"" + fill + "\">" + t + "</path>";
  }
  if (kind == "rendezvous") {
    return "<rect class=\"ev rendezvous\" x=\"" + fixed(x - 3.5) + "\" y=\"" + fixed(y - 3.5) +
           "\" width=\"7\" height=\"7\" fill=\"" + fill + "\">" + t + "</rect>";
  }
  if (kind == "drop") {
    return "<path class=\"ev drop\" d=\"M" + X + " " + fixed(y - 5) + "L" + fixed(x + 5) + " " + Y +
           "L" + X + " " + fixed(y + 5) + "L" + fixed(x - 5) + " " + Y + "Z\" fill=\"" + fill +
           "\">" + t + "</path>";
  }
  return "<circle class=\"ev flyby\" cx=\"" + X + "\" cy=\"" + Y +
         "\" r=\"3.5\" fill=\"white\" stroke=\"" + fill + "\" stroke-width=\"2\">" + t +
         "</circle>";
}

std::string event_title(const ShipSummary& s, const EventMark& e) {
  std::string body = e.body_id == -2                     ? "Venus"
                     : e.body_id == -3 || e.body_id == 0 ? "the Earth"
                     : e.body_id == -4                   ? "Mars"
                                                         : "asteroid " + std::to_string(e.body_id);
  return "ship " + std::to_string(s.ship) + ": " + e.kind + " (" + body + ") at MJD " +
         short_number(e.epoch, 9) + ", line " + std::to_string(e.line) + ", mass " +
         short_number(e.mass) + " kg";
}

// Evenly spaced indices over [0, n), first and last included.
std::vector<std::size_t> stride(std::size_t n, std::size_t keep) {
  std::vector<std::size_t> out;
  if (n == 0) return out;
  if (n <= keep) {
    for (std::size_t k = 0; k < n; ++k) out.push_back(k);
    return out;
  }
  for (std::size_t k = 0; k < keep; ++k) out.push_back(k * (n - 1) / (keep - 1));
  return out;
}

const Trajectory* trajectory_of(const Report& r, int ship) {
  for (const Trajectory& t : r.trajectories)
    if (t.ship == ship && !t.points.empty()) return &t;
  return nullptr;
}

double radius_au(const double* r) {
  return std::sqrt(r[0] * r[0] + r[1] * r[1] + r[2] * r[2]) / kKmPerAu;
}

std::string orbit_plot(const Report& r, const std::map<Place, std::string>& places) {
  // Planet orbits over one revolution each, from the system's own ephemeris.
  struct Planet {
    int id;
    const char* name;
    double period;
  };
  const Planet planets[] = {{-2, "Venus", 224.701}, {-3, "Earth", 365.256}, {-4, "Mars", 686.98}};
  std::vector<std::pair<const Planet*, std::vector<std::pair<double, double>>>> orbits;
  double extent = 1.75;
  for (const Planet& p : planets) {
    std::vector<std::pair<double, double>> path;
    for (int k = 0; k <= 180; ++k) {
      double rv[6] = {0, 0, 0, 0, 0, 0};
      if (planet_state(p.id, kMissionStart + p.period * k / 180.0, rv)) {
        path.emplace_back(rv[0] / kKmPerAu, rv[1] / kKmPerAu);
      }
    }
    orbits.emplace_back(&p, std::move(path));
  }
  for (const ShipSummary& s : r.summary.per_ship) {
    for (const EventMark& e : s.events)
      if (std::isfinite(radius_au(e.r))) extent = std::max(extent, radius_au(e.r) * 1.05);
    if (const Trajectory* t = trajectory_of(r, s.ship)) {
      for (std::size_t k : stride(t->points.size(), kOrbitSamples)) {
        const double d = radius_au(t->points[k].r);
        if (std::isfinite(d)) extent = std::max(extent, d * 1.05);
      }
    }
  }
  extent = std::min(extent, 40.0);
  const double size = 640;
  const Frame f{-extent, extent, -extent, extent, 10, 10, size - 20, size - 20};
  std::string svg = "<svg class=\"orbits\" viewBox=\"0 0 " + fixed(size, 0) + " " + fixed(size, 0) +
                    "\" width=\"" + fixed(size, 0) + "\" height=\"" + fixed(size, 0) +
                    "\" xmlns=\"http://www.w3.org/2000/svg\" role=\"img\">";
  svg += "<rect x=\"0\" y=\"0\" width=\"100%\" height=\"100%\" fill=\"#fbfbfd\"/>";
  // A grid ring every AU.
  for (int ring = 1; ring <= static_cast<int>(extent); ++ring) {
    svg += "<circle cx=\"" + fixed(f.px(0)) + "\" cy=\"" + fixed(f.py(0)) + "\" r=\"" +
           fixed(ring / extent * f.w / 2) + "\" class=\"grid\"/>";
    svg += "<text class=\"tick\" x=\"" + fixed(f.px(ring) + 2) + "\" y=\"" + fixed(f.py(0) - 2) +
           "\">" + std::to_string(ring) + " AU</text>";
  }
  for (const auto& [planet, path] : orbits) {
    if (path.empty()) continue;
    std::string d;
    for (const auto& [x, y] : path)
      d += (d.empty() ? "M" : "L") + fixed(f.px(x)) + " " + fixed(f.py(y));
    svg += "<path class=\"planet\" d=\"" + d + "Z\"><title>orbit of " + planet->name +
           "</title></path>";
    svg += "<text class=\"planet-name\" x=\"" + fixed(f.px(path[45].first) + 4) + "\" y=\"" +
           fixed(f.py(path[45].second) - 4) + "\">" + planet->name + "</text>";
  }
  svg += "<circle cx=\"" + fixed(f.px(0)) + "\" cy=\"" + fixed(f.py(0)) +
         "\" r=\"6\" fill=\"#f5b700\" stroke=\"#c98f00\"><title>the Sun</title></circle>";

  for (const ShipSummary& s : r.summary.per_ship) {
    const std::string colour = ship_colour(s.ship);
    svg += "<g class=\"ship\" data-ship=\"" + std::to_string(s.ship) + "\">";
    std::string d;
    if (const Trajectory* t = trajectory_of(r, s.ship)) {
      for (std::size_t k : stride(t->points.size(), kOrbitSamples)) {
        const TrajectoryPoint& p = t->points[k];
        if (!std::isfinite(p.r[0]) || !std::isfinite(p.r[1])) continue;
        d += (d.empty() ? "M" : "L") + fixed(f.px(p.r[0] / kKmPerAu)) + " " +
             fixed(f.py(p.r[1] / kKmPerAu));
      }
      svg += "<path class=\"track\" d=\"" + d + "\" stroke=\"" + colour + "\"><title>ship " +
             std::to_string(s.ship) + "</title></path>";
    } else {
      for (const EventMark& e : s.events) {
        if (!std::isfinite(e.r[0]) || !std::isfinite(e.r[1])) continue;
        d += (d.empty() ? "M" : "L") + fixed(f.px(e.r[0] / kKmPerAu)) + " " +
             fixed(f.py(e.r[1] / kKmPerAu));
      }
      svg += "<path class=\"track unsampled\" d=\"" + d + "\" stroke=\"" + colour +
             "\"><title>ship " + std::to_string(s.ship) +
             ": straight lines between events (no sampled states)</title></path>";
    }
    for (std::size_t k = 0; k < s.events.size(); ++k) {
      const EventMark& e = s.events[k];
      if (!std::isfinite(e.r[0]) || !std::isfinite(e.r[1])) continue;
      const double x = f.px(e.r[0] / kKmPerAu), y = f.py(e.r[1] / kKmPerAu);
      auto hit = places.find({s.ship, k});
      if (hit != places.end()) {
        svg += "<circle class=\"violated\" cx=\"" + fixed(x) + "\" cy=\"" + fixed(y) +
               "\" r=\"10\"><title>" + escape(hit->second) + " at line " + std::to_string(e.line) +
               "</title></circle>";
      }
      svg += marker(e.kind, x, y, colour, event_title(s, e));
    }
    svg += "</g>";
  }
  svg += "</svg>";
  return svg;
}

// Intervals of a ship's samples where the engine thrusts.
std::vector<std::pair<double, double>> thrust_phases(const Trajectory& t) {
  std::vector<std::pair<double, double>> phases;
  bool inside = false;
  for (const TrajectoryPoint& p : t.points) {
    const bool on = p.thrust > 0.0;
    if (on && !inside) phases.emplace_back(p.epoch, p.epoch);
    if (on) phases.back().second = p.epoch;
    inside = on;
  }
  return phases;
}

std::string axis_years(const Frame& f, double y_bottom) {
  std::string svg;
  // Ticks every year of the mission from its start, labelled in MJD.
  const double span = f.x1 - f.x0;
  const double step = span > 2500 ? 730.5 : span > 900 ? 365.25 : span > 300 ? 100.0 : 20.0;
  for (double t = kMissionStart; t <= f.x1 + 1e-9; t += step) {
    if (t < f.x0 - 1e-9) continue;
    svg += "<line class=\"grid\" x1=\"" + fixed(f.px(t)) + "\" x2=\"" + fixed(f.px(t)) +
           "\" y1=\"" + fixed(f.top) + "\" y2=\"" + fixed(y_bottom) + "\"/>";
    svg += "<text class=\"tick\" x=\"" + fixed(f.px(t)) + "\" y=\"" + fixed(y_bottom + 11) +
           "\" text-anchor=\"middle\">" + fixed(t, 0) + "</text>";
  }
  return svg;
}

std::string timeline_plot(const Report& r, const std::map<Place, std::string>& places) {
  const double row = 18, left = 64, width = 900;
  const std::size_t n = r.summary.per_ship.size();
  const double height = 24 + row * static_cast<double>(n) + 18;
  Frame f{
      kMissionStart, kMissionEnd, 0, 1, left, 16, width - left - 12, row * static_cast<double>(n)};
  for (const ShipSummary& s : r.summary.per_ship)
    for (const EventMark& e : s.events)
      if (std::isfinite(e.epoch)) {
        f.x0 = std::min(f.x0, e.epoch);
        f.x1 = std::max(f.x1, e.epoch);
      }
  f.x0 = std::max(f.x0, kMissionStart - 400);
  f.x1 = std::min(f.x1, kMissionEnd + 400);
  std::string svg = "<svg class=\"timeline\" viewBox=\"0 0 " + fixed(width, 0) + " " +
                    fixed(height, 0) + "\" width=\"" + fixed(width, 0) + "\" height=\"" +
                    fixed(height, 0) + "\" xmlns=\"http://www.w3.org/2000/svg\" role=\"img\">";
  svg += axis_years(f, f.top + f.h);
  svg += "<text class=\"tick\" x=\"" + fixed(left) + "\" y=\"10\">MJD</text>";
  for (std::size_t i = 0; i < n; ++i) {
    const ShipSummary& s = r.summary.per_ship[i];
    const double y = f.top + row * static_cast<double>(i) + row / 2;
    const std::string colour = ship_colour(s.ship);
    svg += "<g class=\"ship-row\" data-ship=\"" + std::to_string(s.ship) + "\">";
    svg += "<text class=\"label\" x=\"4\" y=\"" + fixed(y + 4) + "\">ship " +
           std::to_string(s.ship) + "</text>";
    double first = NAN, last = NAN;
    for (const EventMark& e : s.events) {
      if (!std::isfinite(e.epoch)) continue;
      first = std::isnan(first) ? e.epoch : std::min(first, e.epoch);
      last = std::isnan(last) ? e.epoch : std::max(last, e.epoch);
    }
    if (std::isfinite(first)) {
      svg += "<line x1=\"" + fixed(f.px(first)) + "\" x2=\"" + fixed(f.px(last)) + "\" y1=\"" +
             fixed(y) + "\" y2=\"" + fixed(y) + "\" stroke=\"" + colour +
             "\" stroke-width=\"1.5\"/>";
    }
    if (const Trajectory* t = trajectory_of(r, s.ship)) {
      for (const auto& [a, b] : thrust_phases(*t)) {
        svg += "<rect class=\"burn\" x=\"" + fixed(f.px(a)) + "\" y=\"" + fixed(y - 4) +
               "\" width=\"" + fixed(std::max(1.0, f.px(b) - f.px(a))) + "\" height=\"8\" fill=\"" +
               colour + "\"><title>ship " + std::to_string(s.ship) + " thrusts from MJD " +
               short_number(a, 9) + " to " + short_number(b, 9) + "</title></rect>";
      }
    }
    for (std::size_t k = 0; k < s.events.size(); ++k) {
      const EventMark& e = s.events[k];
      if (!std::isfinite(e.epoch)) continue;
      const double x = f.px(std::clamp(e.epoch, f.x0, f.x1));
      if (places.count({s.ship, k})) {
        svg += "<circle class=\"violated\" cx=\"" + fixed(x) + "\" cy=\"" + fixed(y) +
               "\" r=\"8\"><title>" + escape(places.at({s.ship, k})) + "</title></circle>";
      }
      svg += marker(e.kind, x, y, colour, event_title(s, e));
    }
    svg += "</g>";
  }
  svg += "</svg>";
  return svg;
}

// One series against time, decimated to the smallest and largest value of each bucket.
std::string series_path(const std::vector<std::pair<double, double>>& points, const Frame& f) {
  std::string d;
  auto add = [&](double t, double v) {
    if (!std::isfinite(t) || !std::isfinite(v)) return;
    const double y = std::clamp(f.py(v), f.top - 4, f.top + f.h + 4);
    d += (d.empty() ? "M" : "L") + fixed(f.px(t)) + " " + fixed(y);
  };
  if (points.size() <= 2 * kTimeBuckets) {
    for (const auto& [t, v] : points) add(t, v);
    return d;
  }
  const std::size_t per = (points.size() + kTimeBuckets - 1) / kTimeBuckets;
  for (std::size_t start = 0; start < points.size(); start += per) {
    const std::size_t end = std::min(points.size(), start + per);
    std::size_t lo = start, hi = start;
    for (std::size_t k = start; k < end; ++k) {
      if (points[k].second < points[lo].second) lo = k;
      if (points[k].second > points[hi].second) hi = k;
    }
    add(points[std::min(lo, hi)].first, points[std::min(lo, hi)].second);
    if (lo != hi) add(points[std::max(lo, hi)].first, points[std::max(lo, hi)].second);
  }
  add(points.back().first, points.back().second);
  return d;
}

double limit_of(const Report& r, const std::string& code, const std::string& unit,
                double fallback) {
  for (const Constraint& c : r.constraints)
    if (c.code == code && c.unit == unit && std::isfinite(c.limit)) return c.limit;
  return fallback;
}

std::string ship_plots(const Report& r, const ShipSummary& s,
                       const std::map<Place, std::string>& places) {
  const Trajectory* t = trajectory_of(r, s.ship);
  std::vector<std::pair<double, double>> thrust, mass, distance;
  if (t) {
    for (const TrajectoryPoint& p : t->points) {
      thrust.emplace_back(p.epoch, p.thrust);
      mass.emplace_back(p.epoch, p.mass);
      distance.emplace_back(p.epoch, radius_au(p.r));
    }
  } else {
    for (const EventMark& e : s.events) {
      mass.emplace_back(e.epoch, e.mass);
      distance.emplace_back(e.epoch, radius_au(e.r));
    }
  }
  double t0 = INFINITY, t1 = -INFINITY;
  for (const auto& series : {mass, distance})
    for (const auto& [time, v] : series)
      if (std::isfinite(time)) {
        t0 = std::min(t0, time);
        t1 = std::max(t1, time);
      }
  if (!(t0 < t1)) return "<p class=\"note\">No states to plot for this ship.</p>";

  double cap = limit_of(r, "Error401", "N", kThrustCap);
  double floor_au = limit_of(r, "Error101", "AU", kMinSunDistance);
  if (floor_au == kMinSunDistance) {
    const double km = limit_of(r, "Error101", "km", NAN);
    if (std::isfinite(km)) floor_au = km / kKmPerAu;
  }
  struct Panel {
    const char* title;
    const char* unit;
    const std::vector<std::pair<double, double>>* data;
    double limit;
  };
  const Panel panels[] = {{"thrust", "N", &thrust, cap},
                          {"mass", "kg", &mass, NAN},
                          {"distance from the Sun", "AU", &distance, floor_au}};
  const double width = 900, panel_h = 110, gap = 34, left = 64;
  const double height = 3 * (panel_h + gap) + 8;
  std::string svg = "<svg class=\"ship-plot\" viewBox=\"0 0 " + fixed(width, 0) + " " +
                    fixed(height, 0) + "\" width=\"" + fixed(width, 0) + "\" height=\"" +
                    fixed(height, 0) + "\" xmlns=\"http://www.w3.org/2000/svg\" role=\"img\">";
  const std::string colour = ship_colour(s.ship);
  for (int p = 0; p < 3; ++p) {
    const Panel& panel = panels[p];
    double lo = INFINITY, hi = -INFINITY;
    for (const auto& [time, v] : *panel.data)
      if (std::isfinite(v)) {
        lo = std::min(lo, v);
        hi = std::max(hi, v);
      }
    if (std::isfinite(panel.limit)) {
      lo = std::min(lo, panel.limit);
      hi = std::max(hi, panel.limit);
    }
    if (p == 0 || p == 2) lo = std::min(lo, 0.0);
    if (!std::isfinite(lo) || !std::isfinite(hi)) lo = 0, hi = 1;
    if (hi - lo < 1e-12) hi = lo + (std::fabs(lo) > 0 ? std::fabs(lo) * 0.1 : 1.0);
    hi += (hi - lo) * 0.08;
    const double top = 18 + p * (panel_h + gap);
    const Frame f{t0, t1, lo, hi, left, top, width - left - 12, panel_h};
    svg += "<g class=\"panel\" data-quantity=\"" + std::string(panel.title) + "\">";
    svg += "<rect class=\"frame\" x=\"" + fixed(f.left) + "\" y=\"" + fixed(f.top) + "\" width=\"" +
           fixed(f.w) + "\" height=\"" + fixed(f.h) + "\"/>";
    svg += "<text class=\"panel-title\" x=\"" + fixed(f.left) + "\" y=\"" + fixed(f.top - 5) +
           "\">" + panel.title + " (" + panel.unit + ")</text>";
    for (double v : {lo, (lo + hi) / 2, hi}) {
      svg += "<text class=\"tick\" x=\"" + fixed(f.left - 4) + "\" y=\"" + fixed(f.py(v) + 3) +
             "\" text-anchor=\"end\">" + escape(short_number(v, 4)) + "</text>";
    }
    svg += axis_years(f, f.top + f.h);
    if (std::isfinite(panel.limit)) {
      svg += "<line class=\"limit\" x1=\"" + fixed(f.left) + "\" x2=\"" + fixed(f.left + f.w) +
             "\" y1=\"" + fixed(f.py(panel.limit)) + "\" y2=\"" + fixed(f.py(panel.limit)) +
             "\"><title>limit " + escape(short_number(panel.limit)) + " " + panel.unit +
             "</title></line>";
    }
    for (std::size_t k = 0; k < s.events.size(); ++k) {
      if (!places.count({s.ship, k}) || !std::isfinite(s.events[k].epoch)) continue;
      const double x = f.px(s.events[k].epoch);
      svg += "<line class=\"violated-at\" x1=\"" + fixed(x) + "\" x2=\"" + fixed(x) + "\" y1=\"" +
             fixed(f.top) + "\" y2=\"" + fixed(f.top + f.h) + "\"><title>" +
             escape(places.at({s.ship, k})) + "</title></line>";
    }
    if (panel.data->empty()) {
      svg += "<text class=\"note\" x=\"" + fixed(f.left + 8) + "\" y=\"" + fixed(f.top + f.h / 2) +
             "\">no sampled states</text>";
    } else {
      svg += "<path class=\"series\" d=\"" + series_path(*panel.data, f) + "\" stroke=\"" + colour +
             "\"/>";
    }
    svg += "</g>";
  }
  svg += "</svg>";
  return svg;
}

// ---- tables -----------------------------------------------------------------------

std::string findings_table(const Checked& c, const std::vector<std::string_view>& lines) {
  const Report& r = c.report;
  if (r.findings.empty()) return "<p class=\"none\">No rule is violated.</p>";
  const std::vector<PolishHint> hints = polish_hints(r, c.text);
  std::string html =
      "<table class=\"findings\"><thead><tr><th>code</th><th>lines</th><th>ship</th>"
      "<th>quantity</th><th>value</th><th>limit</th><th>margin</th></tr></thead><tbody>";
  for (std::size_t k = 0; k < r.findings.size() && k < kMaxFindingsShown; ++k) {
    const Finding& f = r.findings[k];
    html += std::string("<tr class=\"finding") + (f.first ? " first" : "") +
            "\"><td class=\"code\">" + escape(f.code) +
            (f.first ? " <span class=\"tag\">printed</span>" : "") + "</td><td>" +
            join_lines(f.lines) + "</td><td>" + (f.ship ? std::to_string(f.ship) : "") +
            "</td><td>" + escape(f.quantity) + "</td>" + number_cell(f.value, f.unit) +
            number_cell(f.limit, f.unit) + number_cell(f.margin, f.unit) + "</tr>";
    html += "<tr class=\"detail\"><td></td><td colspan=\"6\"><div class=\"message\">" +
            escape(f.message) + "</div>";
    for (const PolishHint& hint : hints) {
      if (hint.ship == f.ship && !f.lines.empty() && hint.line == f.lines.front() &&
          (f.code == "Error201" || f.code == "Error202" || f.code == "Error203")) {
        html += "<div class=\"note\">" + escape(polish_sentence(hint)) + "</div>";
      }
    }
    if (!f.lines.empty()) {
      html += "<pre class=\"quoted\">";
      for (std::size_t q = 0; q < f.lines.size() && q < kMaxLinesQuoted; ++q) {
        const long long n = f.lines[q];
        std::string_view text = n >= 1 && static_cast<std::size_t>(n) <= lines.size()
                                    ? lines[static_cast<std::size_t>(n - 1)]
                                    : std::string_view("(no such line)");
        if (text.size() > 300) text = text.substr(0, 300);
        char number[24];
        std::snprintf(number, sizeof number, "%7lld │ ", n);
        html += number + escape(text) + "\n";
      }
      if (f.lines.size() > kMaxLinesQuoted) {
        html += "        … " + std::to_string(f.lines.size() - kMaxLinesQuoted) + " more lines\n";
      }
      html += "</pre>";
    }
    html += "</td></tr>";
  }
  html += "</tbody></table>";
  if (r.findings.size() > kMaxFindingsShown) {
    html += "<p class=\"note\">" + std::to_string(r.findings.size() - kMaxFindingsShown) +
            " more findings are in the JSON report.</p>";
  }
  return html;
}

std::string constraints_table(const Report& r) {
  if (r.constraints.empty()) return "<p class=\"none\">No rule was evaluated.</p>";
  std::string html =
      "<table class=\"constraints\"><thead><tr><th>rule</th><th>code</th><th>quantity</th>"
      "<th>evaluations</th><th>worst</th><th>where</th><th>limit</th><th>margin</th>"
      "<th>result</th></tr></thead><tbody>";
  for (const Constraint& c : r.constraints) {
    std::string where;
    if (c.line) where = "line " + std::to_string(c.line);
    if (c.ship)
      where += (where.empty() ? "" : ", ") + std::string("ship ") + std::to_string(c.ship);
    html += std::string("<tr class=\"") + (c.passed ? "pass" : "fail") + "\"><td>" +
            escape(c.rule) + "</td><td>" + escape(c.code) + "</td><td>" + escape(c.quantity) +
            "</td><td class=\"num\">" + std::to_string(c.evaluations) + "</td>" +
            number_cell(c.worst, c.unit) + "<td>" + where + "</td>" + "<td class=\"num\">" +
            (std::isfinite(c.limit) ? escape(c.relation) + " " + escape(short_number(c.limit)) +
                                          (c.unit.empty() ? "" : " " + escape(c.unit))
                                    : "—") +
            "</td>" + number_cell(c.margin, c.unit) + "<td class=\"result\">" +
            (c.passed ? "pass" : "fail (" + std::to_string(c.violations) + ")") + "</td></tr>";
  }
  return html + "</tbody></table>";
}

std::string warnings_list(const Report& r) {
  if (r.warnings.empty()) return "<p class=\"none\">No warnings.</p>";
  std::string html = "<ul class=\"warnings\">";
  for (const Warning& w : r.warnings) {
    html += "<li><span class=\"kind\">" + escape(w.kind) + "</span> ";
    if (!w.lines.empty()) html += "line " + join_lines(w.lines) + " ";
    if (w.ship) html += "ship " + std::to_string(w.ship) + " ";
    if (!w.rule.empty()) html += "(" + escape(w.rule) + ") ";
    html += "— " + escape(w.message) + "</li>";
  }
  return html + "</ul>";
}

std::string ships_table(const Report& r) {
  const Summary& s = r.summary;
  std::string html = "<p>" + std::to_string(s.ships) + " ships, " +
                     std::to_string(s.mined_asteroids) + " mined asteroids, " +
                     escape(short_number(s.total_resource_mass)) + " kg of resources.</p>";
  if (s.per_ship.empty()) return html;
  html +=
      "<table class=\"ships\"><thead><tr><th>ship</th><th>launch MJD</th><th>final mass</th>"
      "<th>miners</th><th>resources</th><th>last drop MJD</th><th>thrust phases</th>"
      "<th>events</th></tr></thead><tbody>";
  for (const ShipSummary& ship : s.per_ship) {
    html += "<tr><td><span class=\"swatch\" style=\"background:" + ship_colour(ship.ship) +
            "\"></span>" + std::to_string(ship.ship) + "</td><td class=\"num\">" +
            escape(short_number(ship.launch_epoch, 9)) + "</td>" +
            number_cell(ship.final_mass, "kg") + "<td class=\"num\">" +
            std::to_string(ship.miners) + "</td>" + number_cell(ship.resources, "kg") +
            "<td class=\"num\">" + escape(short_number(ship.last_drop_epoch, 9)) +
            "</td><td class=\"num\">" + std::to_string(ship.thrust_phases) +
            "</td><td class=\"num\">" + std::to_string(ship.events.size()) + "</td></tr>";
  }
  return html + "</tbody></table>";
}

std::string legend(const Report& r) {
  std::string html = "<div class=\"legend\">";
  html +=
      "<span class=\"key\"><svg width=\"12\" height=\"12\"><path d=\"M6 1L10.5 9.5L1.5 9.5Z\" "
      "fill=\"#555\"/></svg> launch</span><span class=\"key\"><svg width=\"12\" height=\"12\">"
      "<circle cx=\"6\" cy=\"6\" r=\"3.5\" fill=\"white\" stroke=\"#555\" stroke-width=\"2\"/>"
      "</svg> flyby</span><span class=\"key\"><svg width=\"12\" height=\"12\"><rect x=\"2.5\" "
      "y=\"2.5\" width=\"7\" height=\"7\" fill=\"#555\"/></svg> rendezvous</span><span "
      "class=\"key\"><svg width=\"12\" height=\"12\"><path d=\"M6 1L11 6L6 11L1 6Z\" "
      "fill=\"#555\"/></svg> Earth drop</span><span class=\"key\"><svg width=\"14\" "
      "height=\"14\"><circle cx=\"7\" cy=\"7\" r=\"5.5\" class=\"violated\"/></svg> "
      "violated</span>";
  html += "<span class=\"ships-toggle\">";
  for (const ShipSummary& s : r.summary.per_ship) {
    html += "<label><input type=\"checkbox\" checked data-ship=\"" + std::to_string(s.ship) +
            "\"><span class=\"swatch\" style=\"background:" + ship_colour(s.ship) + "\"></span>" +
            std::to_string(s.ship) + "</label>";
  }
  return html + "</span></div>";
}

const char* const kStyle = R"(
body{font:14px/1.45 system-ui,-apple-system,"Segoe UI",Roboto,Helvetica,Arial,sans-serif;margin:0;
color:#1d2330;background:#f3f4f7}
main{max-width:1180px;margin:0 auto;padding:18px 24px 60px}
h1{font-size:22px;margin:8px 0 2px}h2{font-size:19px;margin:0 0 10px;display:flex;gap:12px;
align-items:center}
h3{font-size:15px;margin:22px 0 8px;color:#39425a;text-transform:uppercase;letter-spacing:.04em}
section.solution{background:white;border-radius:10px;box-shadow:0 1px 3px #0002;padding:18px 22px;
margin:18px 0}
.badge{font-size:13px;padding:2px 10px;border-radius:12px;color:white}
.badge.ok{background:#1f8a4c}.badge.fail{background:#c62f2f}.badge.warn{background:#b7791f}
pre{font:12.5px/1.4 ui-monospace,SFMono-Regular,Menlo,Consolas,monospace;white-space:pre-wrap;
word-break:break-all;margin:0}
pre.verdict{background:#f6f7fa;border-left:4px solid #1f8a4c;padding:8px 12px}
pre.verdict.fail{border-color:#c62f2f;background:#fdf3f3}
table{border-collapse:collapse;width:100%;font-size:13px}
th{text-align:left;font-weight:600;color:#4a5470;border-bottom:2px solid #dde1ea;padding:4px 8px}
td{padding:3px 8px;border-bottom:1px solid #eef0f4;vertical-align:top}
td.num{text-align:right;font-variant-numeric:tabular-nums;white-space:nowrap}
tr.fail td{background:#fdf0f0}tr.fail td.result{color:#c62f2f;font-weight:600}
tr.pass td.result{color:#1f8a4c}
tr.finding td{border-bottom:none;padding-top:8px}
tr.finding td.code{color:#c62f2f;font-weight:600;white-space:nowrap}
.tag{font-size:11px;background:#c62f2f;color:white;border-radius:8px;padding:0 6px;font-weight:500}
tr.detail td{padding-bottom:10px}.message{font-family:ui-monospace,Menlo,Consolas,monospace;
font-size:12px;color:#5a2020}
pre.quoted{background:#f6f7fa;border-radius:4px;padding:4px 8px;margin-top:4px;color:#333}
.none,.note{color:#667}ul.warnings{margin:0;padding-left:18px}
.warnings .kind{font-weight:600;color:#9a5b00}
.plots{display:flex;flex-wrap:wrap;gap:16px;align-items:flex-start}svg{max-width:100%;height:auto}
.legend{display:flex;flex-wrap:wrap;gap:6px 14px;font-size:12px;max-width:500px;
align-content:flex-start}
.legend .key{display:inline-flex;gap:4px;align-items:center}
.ships-toggle{display:flex;flex-wrap:wrap;gap:2px 8px;margin-top:6px}
.ships-toggle label{display:inline-flex;align-items:center;gap:3px;cursor:pointer}
.swatch{display:inline-block;width:10px;height:10px;border-radius:2px;margin-right:4px}
svg .grid{fill:none;stroke:#e3e6ee;stroke-width:1}
svg .tick{font-size:10px;fill:#778}svg .planet{fill:none;stroke:#9aa3b8;stroke-width:1;
stroke-dasharray:4 3}
svg .planet-name{font-size:11px;fill:#6a7390}svg .track{fill:none;stroke-width:1.3;opacity:.85}
svg .track.unsampled{stroke-dasharray:5 4}
svg .violated,.violated{fill:none;stroke:#e02424;stroke-width:2.5}
svg .label{font-size:11px;fill:#445}
svg .frame{fill:#fbfbfd;stroke:#dde1ea}svg .panel-title{font-size:12px;fill:#39425a;font-weight:600}
svg .series{fill:none;stroke-width:1.3}svg .limit{stroke:#e02424;stroke-width:1.2;
stroke-dasharray:6 4}
svg .violated-at{stroke:#e02424;stroke-width:1.5;opacity:.7}
details{margin:6px 0;border:1px solid #e6e8ef;border-radius:6px;padding:4px 10px}
summary{cursor:pointer;font-weight:600}
.hidden{display:none}
)";

// Ticking a ship in the legend shows or hides it on the orbit plot and the timeline.
const char* const kScript = R"(
window.addEventListener('error',function(e){document.body.setAttribute('data-script-error',
String(e.message));
});
document.querySelectorAll('.ships-toggle input').forEach(function(box){
  box.addEventListener('change',function(){
    var section=box.closest('section');
    section.querySelectorAll('[data-ship="'+box.dataset.ship+'"]').forEach(function(g){
      if(g!==box)g.classList.toggle('hidden',!box.checked);
    });
  });
});
document.body.setAttribute('data-ready','yes');
)";

std::string solution_section(const Checked& c, std::size_t index) {
  const Report& r = c.report;
  const std::vector<std::string_view> lines = split_lines(c.text);
  const std::map<Place, std::string> places = violated_places(r);
  const std::string name = c.name == "-" ? "standard input" : c.name;
  std::string html = "<section class=\"solution\" id=\"solution-" + std::to_string(index) + "\">";
  html += "<h2>" + escape(name) +
          (r.accepted ? " <span class=\"badge ok\">accepted</span>"
                      : " <span class=\"badge fail\">rejected</span>");
  if (r.outcome != Outcome::verified) html += " <span class=\"badge warn\">incomplete</span>";
  html += "</h2>";
  html += std::string("<pre class=\"verdict") + (r.accepted ? "" : " fail") + "\">" +
          escape(r.checker_output) + "</pre>";
  if (r.outcome != Outcome::verified) html += "<p class=\"note\">" + escape(r.error) + "</p>";
  html +=
      "<p class=\"note\">kavren-check exits with status " + std::to_string(r.exit_status) + ".</p>";
  html +=
      "<h3>Findings (" + std::to_string(r.findings.size()) + ")</h3>" + findings_table(c, lines);
  html +=
      "<h3>Trajectories</h3><p class=\"note\">Heliocentric, projected on the ecliptic "
      "(x to the right, y up), with the orbits of Venus, the Earth and Mars.</p>";
  html += "<div class=\"plots\">" + orbit_plot(r, places) + legend(r) + "</div>";
  html += "<h3>Timeline</h3><p class=\"note\">Events and thrust phases of every ship.</p>" +
          timeline_plot(r, places);
  html += "<h3>Constraints (" + std::to_string(r.constraints.size()) + " rules)</h3>" +
          constraints_table(r);
  html += "<h3>Warnings (" + std::to_string(r.warnings.size()) + ")</h3>" + warnings_list(r);
  html += "<h3>Ships</h3>" + ships_table(r);
  html += "<h3>Thrust, mass and distance from the Sun</h3>";
  std::set<int> violated_ships;
  for (const Finding& f : r.findings) violated_ships.insert(f.ship);
  for (std::size_t k = 0; k < r.summary.per_ship.size(); ++k) {
    const ShipSummary& s = r.summary.per_ship[k];
    const bool open = k < 6 || violated_ships.count(s.ship) > 0;
    html += std::string("<details class=\"ship-plots\" data-ship-plot=\"") +
            std::to_string(s.ship) + "\"" + (open ? " open" : "") +
            "><summary><span class=\"swatch\" style=\"background:" + ship_colour(s.ship) +
            "\"></span>ship " + std::to_string(s.ship) +
            (violated_ships.count(s.ship) ? " — violated" : "") + "</summary>" +
            ship_plots(r, s, places) + "</details>";
  }
  return html + "</section>";
}

}  // namespace

std::string render_html(const std::vector<Checked>& all) {
  std::string title = "kavren-report";
  if (all.size() == 1)
    title += ": " + (all[0].name == "-" ? std::string("standard input") : all[0].name);
  std::string html =
      "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">"
      "<meta name=\"viewport\" content=\"width=device-width,initial-scale=1\">"
      "<title>" +
      escape(title) + "</title><style>" + kStyle + "</style></head><body><main>";
  html += "<h1>" + escape(title) + "</h1><p class=\"note\">Verified by kavren " +
          std::string(kavren::version()) + ".</p>";
  if (all.size() > 1) {
    html +=
        "<section class=\"solution overview\"><h3>Solutions</h3><table><thead><tr><th>file</th>"
        "<th>verdict</th><th>ships</th><th>asteroids</th><th>resource mass</th><th>time</th>"
        "</tr></thead><tbody>";
    for (std::size_t k = 0; k < all.size(); ++k) {
      const Report& r = all[k].report;
      char seconds[32];
      std::snprintf(seconds, sizeof seconds, "%.2f s", all[k].seconds);
      html += std::string("<tr class=\"") + (r.accepted ? "pass" : "fail") +
              "\"><td><a href=\"#solution-" + std::to_string(k) + "\">" + escape(all[k].name) +
              "</a></td><td class=\"result\">" + (r.accepted ? "accepted" : "rejected") +
              "</td><td class=\"num\">" + std::to_string(r.summary.ships) +
              "</td><td class=\"num\">" + std::to_string(r.summary.mined_asteroids) + "</td>" +
              number_cell(r.summary.total_resource_mass, "kg") + "<td class=\"num\">" + seconds +
              "</td></tr>";
    }
    html += "</tbody></table></section>";
  }
  for (std::size_t k = 0; k < all.size(); ++k) html += solution_section(all[k], k);
  html += "</main><script>" + std::string(kScript) + "</script></body></html>\n";
  return html;
}

}  // namespace kavren::report
