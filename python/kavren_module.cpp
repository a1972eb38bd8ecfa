// The Python module `kavren`: loads a catalogue once and verifies solutions in memory,
// returning the whole report (findings with their margins, one row per rule, warnings,
// the summary and, on request, the states along every arc as NumPy arrays).
//
// The report objects are read-only views of the C++ values. Verification runs without
// the interpreter lock, so threads of one Python process verify candidates in parallel.
// It is the package's extension `kavren._kavren`; kavren/__init__.py gives its names.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "kavren/json.h"
#include "kavren/polish.h"
#include "kavren/report.h"
#include "kavren/session.h"
#include "kavren/verify.h"

namespace py = pybind11;

namespace {

static_assert(offsetof(kavren::TrajectoryPoint, thrust) == 8 * sizeof(double),
              "a trajectory point is nine doubles, epoch first and thrust last");

using kavren::outcome_name;

// A number for people: six significant digits, "nan" and "inf" as they are.
std::string num(double x) {
  char text[32];
  std::snprintf(text, sizeof text, "%.6g", x);
  return text;
}

std::string quoted(const std::string& text) {
  return py::repr(py::str(text)).cast<std::string>();
}

template <typename Line>
std::string lines_text(const std::vector<Line>& lines) {
  if (lines.empty()) return "";
  std::string out = lines.size() == 1 ? " line " : " lines ";
  for (std::size_t k = 0; k < lines.size(); ++k) {
    out += (k ? "," : "") + std::to_string(lines[k]);
  }
  return out;
}

std::string ship_text(int ship) {
  return ship > 0 ? " ship " + std::to_string(ship) : "";
}

std::string finding_repr(const kavren::Finding& f) {
  std::string out = "<kavren.Finding " + f.code + lines_text(f.lines) + ship_text(f.ship);
  if (!f.quantity.empty()) {
    out += ": " + f.quantity + " " + num(f.value) + " " + f.unit + ", limit " + num(f.limit) + " " +
           f.unit + ", margin " + num(f.margin) + " " + f.unit;
  } else {
    std::string message = f.message;
    while (!message.empty() && (message.back() == '\n' || message.back() == '\r')) {
      message.pop_back();
    }
    out += ": " + message;
  }
  return out + ">";
}

std::string constraint_repr(const kavren::Constraint& c) {
  std::string out = "<kavren.Constraint " + c.rule + (c.passed ? " passed" : " violated");
  out += ": " + std::to_string(c.evaluations) + " evaluations";
  if (c.violations > 0) out += ", " + std::to_string(c.violations) + " violated";
  if (c.evaluations > 0) {
    out += "; worst " + c.quantity + " " + num(c.worst) + " " + c.unit + " (must be " + c.relation +
           " " + num(c.limit) + "), margin " + num(c.margin) + " " + c.unit;
    if (c.line > 0) out += " at line " + std::to_string(c.line);
  }
  return out + ">";
}

std::string report_repr(const kavren::Report& r) {
  if (r.outcome != kavren::Outcome::verified) {
    return std::string("<kavren.Report ") + outcome_name(r.outcome) + ": " + r.error + ">";
  }
  std::size_t violated = 0;
  for (const kavren::Constraint& c : r.constraints) violated += c.passed ? 0 : 1;
  std::string out = "<kavren.Report ";
  if (r.accepted) {
    out += "accepted: " + std::to_string(r.summary.ships) + " ships, " +
           std::to_string(r.summary.mined_asteroids) + " mined asteroids, " +
           num(r.summary.total_resource_mass) + " kg";
  } else {
    out += "rejected, exit status " + std::to_string(r.exit_status) + ": " +
           std::to_string(r.findings.size()) + (r.findings.size() == 1 ? " finding" : " findings");
    if (!r.findings.empty()) {
      const kavren::Finding& f = r.findings.front();
      out += ", first " + f.code + lines_text(f.lines) + ship_text(f.ship);
    }
  }
  out += "; " + std::to_string(r.constraints.size()) + " constraints";
  if (violated > 0) out += " (" + std::to_string(violated) + " violated)";
  out += ", " + std::to_string(r.warnings.size()) +
         (r.warnings.size() == 1 ? " warning" : " warnings");
  if (!r.trajectories.empty()) {
    out += ", " + std::to_string(r.trajectories.size()) + " trajectories";
  }
  return out + ">";
}

// The solution's bytes: str is the text itself (its UTF-8 form), bytes and bytearray are
// its bytes, a path-like object names a file to read. An immutable object is viewed in
// place, kept alive by `owner`; a bytearray, which another thread could change while the
// verification runs, is copied.
struct SolutionText {
  py::object owner;
  std::string copy;
  std::string_view view;
};

std::string_view bytes_view(const py::object& bytes) {
  char* data = nullptr;
  Py_ssize_t size = 0;
  if (PyBytes_AsStringAndSize(bytes.ptr(), &data, &size) != 0) throw py::error_already_set();
  return std::string_view(data, static_cast<std::size_t>(size));
}

SolutionText solution_text(const py::handle& solution) {
  SolutionText text;
  if (py::isinstance<py::str>(solution)) {
    Py_ssize_t size = 0;
    const char* data = PyUnicode_AsUTF8AndSize(solution.ptr(), &size);
    if (data == nullptr) throw py::error_already_set();
    text.owner = py::reinterpret_borrow<py::object>(solution);
    text.view = std::string_view(data, static_cast<std::size_t>(size));
    return text;
  }
  if (py::isinstance<py::bytes>(solution)) {
    text.owner = py::reinterpret_borrow<py::object>(solution);
    text.view = bytes_view(text.owner);
    return text;
  }
  if (py::isinstance<py::bytearray>(solution)) {
    try {
      text.copy = std::string(py::reinterpret_borrow<py::bytearray>(solution));
    } catch (const std::bad_alloc&) {
      PyErr_SetString(PyExc_MemoryError, "out of memory while reading the solution");
      throw py::error_already_set();
    }
    text.view = text.copy;
    return text;
  }
  if (py::hasattr(solution, "__fspath__")) {
    py::object file = py::module_::import("io").attr("open")(solution, "rb");
    try {
      text.owner = file.attr("read")();
    } catch (...) {
      file.attr("close")();
      throw;
    }
    file.attr("close")();
    text.view = bytes_view(text.owner);
    return text;
  }
  throw py::type_error("solution must be the text (str or bytes) or a path (os.PathLike), not " +
                       py::str(py::type::of(solution).attr("__name__")).cast<std::string>());
}

// A catalogue as the module holds it: the rows, and the text they were read from, which
// is what a pickled catalogue carries to another process (e.g. a Dask worker).
struct HeldCatalogue : kavren::Catalogue {
  HeldCatalogue(kavren::Catalogue rows, std::string bytes)
      : kavren::Catalogue(std::move(rows)),
        text(std::make_shared<const std::string>(std::move(bytes))) {}
  std::shared_ptr<const std::string> text;
};

HeldCatalogue catalogue_from_text(std::string bytes) {
  py::gil_scoped_release release;
  kavren::Catalogue rows = kavren::Catalogue::from_text(bytes);
  return HeldCatalogue(std::move(rows), std::move(bytes));
}

HeldCatalogue load_catalogue(const py::object& path) {
  const std::string name = py::str(py::module_::import("os").attr("fsdecode")(path));
  try {
    py::gil_scoped_release release;
    kavren::Catalogue rows = kavren::Catalogue::from_file(name);
    // Read at its size in one allocation: no freed blocks left in the address space.
    std::ifstream file(name, std::ios::binary | std::ios::ate);
    const std::streamoff size = file.tellg();
    std::string bytes(size > 0 ? static_cast<std::size_t>(size) : 0, '\0');
    file.seekg(0);
    if (!file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()))) {
      throw kavren::InputError("cannot read the catalogue " + name);
    }
    return HeldCatalogue(std::move(rows), std::move(bytes));
  } catch (const kavren::InputError& e) {
    std::error_code ec;
    const bool exists = std::filesystem::exists(name, ec);
    PyErr_SetString(exists ? PyExc_OSError : PyExc_FileNotFoundError, e.what());
    throw py::error_already_set();
  }
}

kavren::Options verify_options(const std::string& mode, const std::optional<int>& threads,
                               bool trajectories, const std::optional<long long>& max_bytes,
                               const std::optional<double>& deadline) {
  kavren::Options options;
  if (mode == "first") {
    options.mode = kavren::Mode::first;
  } else if (mode == "all") {
    options.mode = kavren::Mode::all;
  } else {
    throw py::value_error("mode must be \"first\" or \"all\", not " + quoted(mode));
  }
  if (threads) {
    if (*threads < 1) throw py::value_error("threads must be at least 1, or None for all cores");
    options.workers = *threads;
  }
  options.trajectories = trajectories;
  if (max_bytes) {
    if (*max_bytes < 1) throw py::value_error("max_bytes must be at least 1, or None for no limit");
    options.max_bytes = static_cast<std::size_t>(*max_bytes);
  }
  if (deadline) {
    if (!(*deadline > 0.0 && *deadline <= 1e9)) {
      throw py::value_error("deadline must be a positive number of seconds, or None for none");
    }
    options.deadline = std::chrono::milliseconds(std::max(1LL, std::llround(*deadline * 1000.0)));
  }
  return options;
}

// A report that ran out of memory is a MemoryError.
kavren::Report checked(kavren::Report report) {
  if (report.outcome == kavren::Outcome::out_of_memory) {
    PyErr_SetString(PyExc_MemoryError, report.error.c_str());
    throw py::error_already_set();
  }
  return report;
}

kavren::Report run_verify(const py::object& solution, const HeldCatalogue& catalogue,
                          const std::string& mode, const std::optional<int>& threads,
                          bool trajectories, const std::optional<long long>& max_bytes,
                          const std::optional<double>& deadline) {
  const kavren::Options options = verify_options(mode, threads, trajectories, max_bytes, deadline);
  const SolutionText text = solution_text(solution);
  kavren::Report report;
  {
    py::gil_scoped_release release;
    report = kavren::verify(catalogue, text.view, options);
  }
  return checked(std::move(report));
}

// A session as the module holds it: calls from several Python threads take turns, since
// the interpreter lock is released while one runs.
struct HeldSession {
  HeldSession(const HeldCatalogue& catalogue, long long cache_bytes)
      : session(catalogue, static_cast<std::size_t>(cache_bytes)) {}
  kavren::Session session;
  std::mutex turn;
};

kavren::Report run_session(HeldSession& held, const py::object& solution, const std::string& mode,
                           const std::optional<int>& threads, bool trajectories,
                           const std::optional<long long>& max_bytes,
                           const std::optional<double>& deadline) {
  const kavren::Options options = verify_options(mode, threads, trajectories, max_bytes, deadline);
  const SolutionText text = solution_text(solution);
  kavren::Report report;
  {
    py::gil_scoped_release release;
    std::lock_guard<std::mutex> lock(held.turn);
    report = held.session.verify(text.view, options);
  }
  return checked(std::move(report));
}

// One NumPy array per ship, shape (points, 9), viewing the report's own memory; the
// array keeps the report alive and cannot be written.
py::list trajectory_arrays(const py::object& self) {
  const kavren::Report& report = self.cast<const kavren::Report&>();
  py::list arrays;
  for (const kavren::Trajectory& t : report.trajectories) {
    const auto n = static_cast<py::ssize_t>(t.points.size());
    const py::ssize_t row = static_cast<py::ssize_t>(sizeof(kavren::TrajectoryPoint));
    py::array_t<double> array;
    if (n == 0) {
      array = py::array_t<double>(std::vector<py::ssize_t>{0, 9});
    } else {
      const double* data = &t.points.front().epoch;
      array =
          py::array_t<double>({n, py::ssize_t{9}}, {row, py::ssize_t{sizeof(double)}}, data, self);
    }
    array.attr("flags").attr("writeable") = false;
    arrays.append(array);
  }
  return arrays;
}

py::tuple xyz(const double (&r)[3]) {
  return py::make_tuple(r[0], r[1], r[2]);
}

kavren::PolishResult run_polish(const py::object& solution, const HeldCatalogue& catalogue,
                                double safety, double max_degrees,
                                const std::optional<int>& threads) {
  kavren::PolishOptions options;
  if (!(safety > 0.0 && safety <= 1.0)) throw py::value_error("safety must lie in (0, 1]");
  if (!(max_degrees > 0.0 && max_degrees <= 90.0)) {
    throw py::value_error("max_degrees must lie in (0, 90]");
  }
  options.safety = safety;
  options.max_degrees = max_degrees;
  if (threads) {
    if (*threads < 1) throw py::value_error("threads must be at least 1, or None for all cores");
    options.threads = *threads;
  }
  const SolutionText text = solution_text(solution);
  kavren::PolishResult result;
  try {
    py::gil_scoped_release release;
    result = kavren::polish(catalogue, text.view, options);
  } catch (const std::bad_alloc&) {
    PyErr_SetString(PyExc_MemoryError, "out of memory while polishing the solution");
    throw py::error_already_set();
  }
  return result;
}

}  // namespace

PYBIND11_MODULE(_kavren, m) {
  m.doc() =
      "Verification of low-thrust asteroid-mining solutions in memory.\n\n"
      "    import kavren\n"
      "    catalogue = kavren.Catalogue(\"KAVREN_Asteroids_Data.txt\")\n"
      "    report = kavren.verify(pathlib.Path(\"Result.txt\"), catalogue, mode=\"all\")\n"
      "    for finding in report.findings:\n"
      "        print(finding.code, finding.margin, finding.unit)\n\n"
      "Load the catalogue once and reuse it; verify() releases the interpreter lock, so a\n"
      "ThreadPoolExecutor verifies several candidates at once.";
  m.attr("__version__") = kavren::version();

  py::class_<HeldCatalogue>(
      m, "Catalogue",
      "The asteroid catalogue: loaded once, immutable, shared by every verification.")
      .def(py::init(&load_catalogue), py::arg("path"),
           "Reads the catalogue file (str or os.PathLike). Raises FileNotFoundError when it\n"
           "does not exist and OSError when it cannot be read.")
      .def_static(
          "from_text",
          [](const py::object& text) {
            if (!py::isinstance<py::str>(text) && !py::isinstance<py::bytes>(text)) {
              throw py::type_error("the catalogue text must be str or bytes");
            }
            return catalogue_from_text(text.cast<std::string>());
          },
          py::arg("text"),
          "The catalogue from its text (str or bytes): a header line, then the records.\n"
          "Never fails: rows a short or malformed text does not reach stay at zero.")
      .def(py::pickle(
          [](const HeldCatalogue& c) { return py::make_tuple(py::bytes(*c.text)); },
          [](const py::tuple& state) { return catalogue_from_text(state[0].cast<std::string>()); }))
      .def("__repr__", [](const HeldCatalogue&) { return "<kavren.Catalogue>"; });

  py::class_<kavren::Finding>(m, "Finding", "One violated rule, with its margin.")
      .def_readonly("code", &kavren::Finding::code, "The message code, e.g. \"Error704\".")
      .def_readonly("message", &kavren::Finding::message,
                    "The exact text kavren-check prints for it, newline included.")
      .def_readonly("lines", &kavren::Finding::lines,
                    "1-based lines of the solution file it concerns.")
      .def_readonly("ship", &kavren::Finding::ship, "1-based ordinal of the ship, 0 when none.")
      .def_readonly("quantity", &kavren::Finding::quantity,
                    "What was compared, e.g. \"position error to the asteroid\".")
      .def_readonly("value", &kavren::Finding::value, "The value met (nan when none).")
      .def_readonly("limit", &kavren::Finding::limit, "The limit it was held to (nan when none).")
      .def_readonly("margin", &kavren::Finding::margin,
                    "Signed distance to the limit in `unit`; negative means violated.")
      .def_readonly("unit", &kavren::Finding::unit, "Unit of value, limit and margin.")
      .def_readonly("first", &kavren::Finding::first, "True for the finding kavren-check prints.")
      .def_readonly("exit_status", &kavren::Finding::exit_status,
                    "kavren-check's exit status when this finding is the first.")
      .def("__repr__", &finding_repr);

  py::class_<kavren::Constraint>(m, "Constraint",
                                 "One rule the solution was checked against, over all its "
                                 "evaluations: the worst one and its margin.")
      .def_readonly("rule", &kavren::Constraint::rule,
                    "Stable identifier, e.g. \"rendezvous.position\".")
      .def_readonly("code", &kavren::Constraint::code, "The message code of a violation.")
      .def_readonly("quantity", &kavren::Constraint::quantity, "What is compared.")
      .def_readonly("unit", &kavren::Constraint::unit, "Unit of worst, limit and margin.")
      .def_readonly("relation", &kavren::Constraint::relation,
                    "\"<=\", \">=\", \"<\" or \">\": `value relation limit` must hold.")
      .def_readonly("evaluations", &kavren::Constraint::evaluations, "How often it was evaluated.")
      .def_readonly("violations", &kavren::Constraint::violations, "How often it was violated.")
      .def_readonly("worst", &kavren::Constraint::worst,
                    "The value with the smallest margin (nan when never evaluated).")
      .def_readonly("limit", &kavren::Constraint::limit, "The limit at that evaluation.")
      .def_readonly("margin", &kavren::Constraint::margin, "Its margin; negative means violated.")
      .def_readonly("line", &kavren::Constraint::line,
                    "1-based line where the worst value was met, 0 when none.")
      .def_readonly("ship", &kavren::Constraint::ship, "1-based ship of the worst value, 0: none.")
      .def_readonly("passed", &kavren::Constraint::passed, "True when no evaluation violated it.")
      .def("__repr__", &constraint_repr);

  py::class_<kavren::Warning>(m, "Warning", "Something that passes only by accident of the rules.")
      .def_readonly("kind", &kavren::Warning::kind,
                    "\"nan-passes\", \"zero-length-thrust-step\", \"evaluation-budget\", "
                    "\"near-limit\" or \"step-spans-thrust-points\".")
      .def_readonly("message", &kavren::Warning::message, "One sentence for people.")
      .def_readonly("lines", &kavren::Warning::lines, "1-based lines it concerns.")
      .def_readonly("ship", &kavren::Warning::ship, "1-based ship, 0 when none.")
      .def_readonly("rule", &kavren::Warning::rule, "The constraint concerned, when there is one.")
      .def("__repr__", [](const kavren::Warning& w) {
        return "<kavren.Warning " + w.kind + lines_text(w.lines) + ship_text(w.ship) + ": " +
               w.message + ">";
      });

  py::class_<kavren::EventMark>(m, "EventMark", "An event of a ship as the file states it.")
      .def_readonly("kind", &kavren::EventMark::kind,
                    "\"launch\", \"flyby\", \"rendezvous\" or \"drop\" (an Earth flyby that "
                    "drops).")
      .def_readonly("body_id", &kavren::EventMark::body_id, "The body's identifier.")
      .def_readonly("line", &kavren::EventMark::line, "1-based line of the event's first line.")
      .def_readonly("epoch", &kavren::EventMark::epoch, "Epoch, MJD.")
      .def_property_readonly(
          "r", [](const kavren::EventMark& e) { return xyz(e.r); }, "Position (x, y, z), km.")
      .def_readonly("mass", &kavren::EventMark::mass, "Mass, kg.")
      .def("__repr__", [](const kavren::EventMark& e) {
        return "<kavren.EventMark " + e.kind + " body " + std::to_string(e.body_id) + " line " +
               std::to_string(e.line) + " epoch " + num(e.epoch) + " mass " + num(e.mass) + ">";
      });

  py::class_<kavren::ShipSummary>(m, "ShipSummary", "One ship's figures.")
      .def_readonly("ship", &kavren::ShipSummary::ship, "1-based ordinal.")
      .def_readonly("launch_epoch", &kavren::ShipSummary::launch_epoch, "Launch epoch, MJD.")
      .def_readonly("final_mass", &kavren::ShipSummary::final_mass, "Final mass, kg.")
      .def_readonly("miners", &kavren::ShipSummary::miners, "Miners left on asteroids.")
      .def_readonly("resources", &kavren::ShipSummary::resources,
                    "Resources collected at rendezvous, kg.")
      .def_readonly("last_drop_epoch", &kavren::ShipSummary::last_drop_epoch,
                    "Epoch of the last Earth drop, MJD; nan without one.")
      .def_readonly("thrust_phases", &kavren::ShipSummary::thrust_phases, "Thrust phases flown.")
      .def_readonly("events", &kavren::ShipSummary::events, "The ship's events, in file order.")
      .def("__repr__", [](const kavren::ShipSummary& s) {
        return "<kavren.ShipSummary ship " + std::to_string(s.ship) + ": " +
               std::to_string(s.miners) + " miners, " + num(s.resources) + " kg collected, " +
               std::to_string(s.thrust_phases) + " thrust phases, final mass " + num(s.final_mass) +
               " kg>";
      });

  py::class_<kavren::Summary>(m, "Summary", "The solution's figures.")
      .def_readonly("ships", &kavren::Summary::ships, "Number of mining ships.")
      .def_readonly("mined_asteroids", &kavren::Summary::mined_asteroids,
                    "Number of mined asteroids.")
      .def_readonly("total_resource_mass", &kavren::Summary::total_resource_mass,
                    "Total resource mass, kg.")
      .def_readonly("per_ship", &kavren::Summary::per_ship, "One ShipSummary per ship.")
      .def("__repr__", [](const kavren::Summary& s) {
        return "<kavren.Summary " + std::to_string(s.ships) + " ships, " +
               std::to_string(s.mined_asteroids) + " mined asteroids, " +
               num(s.total_resource_mass) + " kg>";
      });

  py::class_<kavren::Statistics>(m, "Statistics",
                                 "Work done (not part of the verdict: depends on the options).")
      .def_readonly("derivative_evaluations", &kavren::Statistics::derivative_evaluations,
                    "Derivative evaluations of the integrations.")
      .def_readonly("arcs", &kavren::Statistics::arcs, "Burning arcs integrated.")
      .def_readonly("lines", &kavren::Statistics::lines, "Lines of the solution read.")
      .def_readonly("ships_verified", &kavren::Statistics::ships_verified,
                    "Ships read and verified by this call.")
      .def_readonly("ships_cached", &kavren::Statistics::ships_cached,
                    "Ships a Session took from what it verified before.");

  py::class_<kavren::Report>(m, "Report", "What one verification of a solution finds.")
      .def_property_readonly(
          "outcome", [](const kavren::Report& r) { return outcome_name(r.outcome); },
          "\"verified\", \"limit_reached\" or \"out_of_memory\".")
      .def_readonly("error", &kavren::Report::error,
                    "The reason when the outcome is not \"verified\".")
      .def_readonly("checker_output", &kavren::Report::checker_output,
                    "The text kavren-check prints.")
      .def_readonly("exit_status", &kavren::Report::exit_status, "kavren-check's exit status.")
      .def_property_readonly(
          "score_file",
          [](const kavren::Report& r) -> py::object {
            if (!r.score_file) return py::none();
            return py::str(*r.score_file);
          },
          "The text of ScoreData.txt when the check writes it, else None.")
      .def_readonly("accepted", &kavren::Report::accepted,
                    "True when there is no finding (\"Check successfully!\").")
      .def_readonly("findings", &kavren::Report::findings,
                    "Every violated rule in the order the checks meet it (only the first in "
                    "mode \"first\").")
      .def_readonly("constraints", &kavren::Report::constraints,
                    "One row per rule, in the order of the checks.")
      .def_readonly("warnings", &kavren::Report::warnings, "Things that pass only by accident.")
      .def_readonly("summary", &kavren::Report::summary, "The solution's figures.")
      .def_property_readonly(
          "trajectories", &trajectory_arrays,
          "One read-only NumPy array per ship when verify() was asked for trajectories (else\n"
          "an empty list), shape (n, 9): epoch [MJD], x, y, z [km], vx, vy, vz [km/s],\n"
          "mass [kg], thrust magnitude [N], every accepted integration step in time order.")
      .def_readonly("statistics", &kavren::Report::statistics, "Work done.")
      .def(
          "to_dict",
          [](const kavren::Report& r) {
            return py::module_::import("json").attr("loads")(kavren::report_to_json(r));
          },
          "The report as the JSON object kavren-report writes (statistics and trajectories\n"
          "left out; numbers that are not finite are None).")
      .def("__repr__", &report_repr);

  py::class_<kavren::ArcPolish>(m, "ArcPolish", "One arc whose end state failed.")
      .def_readonly("ship", &kavren::ArcPolish::ship)
      .def_readonly("first_line", &kavren::ArcPolish::first_line,
                    "The arc's first line (1-based; 0 when it has none).")
      .def_readonly("last_line", &kavren::ArcPolish::last_line)
      .def_readonly("end_line", &kavren::ArcPolish::end_line,
                    "The line of the end state (the findings' line).")
      .def_readonly("codes", &kavren::ArcPolish::codes, "What was found there: \"Error201\" ...")
      .def_readonly("polished", &kavren::ArcPolish::polished)
      .def_readonly("reason", &kavren::ArcPolish::reason, "Why not, when not polished.")
      .def_property_readonly(
          "before", [](const kavren::ArcPolish& a) { return xyz(a.before); },
          "End-state errors before: position km, velocity km/s, mass kg.")
      .def_property_readonly(
          "after", [](const kavren::ArcPolish& a) { return xyz(a.after); },
          "End-state errors after (as before when not polished).")
      .def_readonly("max_turn_degrees", &kavren::ArcPolish::max_turn_degrees)
      .def_readonly("max_magnitude_change", &kavren::ArcPolish::max_magnitude_change,
                    "Largest change of a thrust magnitude, N.")
      .def_readonly("changed_lines", &kavren::ArcPolish::changed_lines)
      .def_readonly("iterations", &kavren::ArcPolish::iterations)
      .def_readonly("integrations", &kavren::ArcPolish::integrations)
      .def("__repr__", [](const kavren::ArcPolish& a) {
        return "<ArcPolish ship " + std::to_string(a.ship) + " line " + std::to_string(a.end_line) +
               (a.polished ? " polished>" : " not polished>");
      });
  py::class_<kavren::LeftFinding>(m, "LeftFinding", "A finding polishing leaves as it is.")
      .def_readonly("code", &kavren::LeftFinding::code)
      .def_readonly("lines", &kavren::LeftFinding::lines)
      .def_readonly("ship", &kavren::LeftFinding::ship)
      .def_readonly("reason", &kavren::LeftFinding::reason);
  py::class_<kavren::PolishResult>(m, "PolishResult", "A polished solution.")
      .def_property_readonly(
          "text",
          [](const kavren::PolishResult& r) {
            return py::reinterpret_steal<py::str>(PyUnicode_DecodeUTF8(
                r.text.data(), static_cast<Py_ssize_t>(r.text.size()), "surrogateescape"));
          },
          "The polished solution's text.")
      .def_readonly("arcs", &kavren::PolishResult::arcs, "One entry per failing arc.")
      .def_readonly("left", &kavren::PolishResult::left, "The other findings, left as they are.")
      .def_readonly("report", &kavren::PolishResult::report,
                    "The polished text verified, every finding (mode \"all\").");

  m.def("polish", &run_polish, py::arg("solution"), py::arg("catalogue"), py::arg("safety") = 0.5,
        py::arg("max_degrees") = 10.0, py::arg("threads") = py::none(),
        "Changes the thrust numbers of every burning arc whose end state misses (Error201,\n"
        "Error202, Error203) so that the verifier's integration lands on it, and returns a\n"
        "PolishResult: the polished text, one entry per failing arc and the report of the\n"
        "polished text.\n\n"
        "solution: the text (str or bytes) or a path (os.PathLike).\n"
        "safety: the polished arc's end-state errors stay within this fraction of each limit.\n"
        "max_degrees: the largest turn of a thrust line.\n"
        "threads: workers (None: one per core); the result does not depend on it.\n"
        "The interpreter lock is released while it runs.");

  py::class_<HeldSession>(
      m, "Session",
      "Verifies candidates that differ from earlier ones in a few ships: keeps, per ship,\n"
      "what verifying it produced, and verifies only the ships not seen in any earlier\n"
      "candidate. Reports equal verify()'s except in statistics.\n\n"
      "    session = kavren.Session(catalogue)\n"
      "    for candidate in population:\n"
      "        report = session.verify(candidate)")
      .def(py::init([](const HeldCatalogue& catalogue, long long cache_bytes) {
             if (cache_bytes < 1) throw py::value_error("cache_bytes must be at least 1");
             return std::make_unique<HeldSession>(catalogue, cache_bytes);
           }),
           py::arg("catalogue"),
           py::arg("cache_bytes") = static_cast<long long>(kavren::Session::kDefaultCacheBytes),
           "catalogue: a Catalogue. cache_bytes: what the session may keep (default 256 MB);\n"
           "past it the ships used least recently are forgotten first.")
      .def("verify", &run_session, py::arg("solution"), py::arg("mode") = "first",
           py::arg("threads") = py::none(), py::arg("trajectories") = false,
           py::arg("max_bytes") = py::none(), py::arg("deadline") = py::none(),
           "As kavren.verify(solution, catalogue, ...). Calls from several threads take turns.")
      .def_property_readonly(
          "cached_ships",
          [](HeldSession& s) {
            std::lock_guard<std::mutex> lock(s.turn);
            return s.session.cached_ships();
          },
          "Ships kept.")
      .def_property_readonly(
          "cache_bytes",
          [](HeldSession& s) {
            std::lock_guard<std::mutex> lock(s.turn);
            return s.session.cache_bytes();
          },
          "Their estimated size in bytes.")
      .def(
          "clear",
          [](HeldSession& s) {
            std::lock_guard<std::mutex> lock(s.turn);
            s.session.clear();
          },
          "Forgets every ship.");

  m.def("verify", &run_verify, py::arg("solution"), py::arg("catalogue"), py::arg("mode") = "first",
        py::arg("threads") = py::none(), py::arg("trajectories") = false,
        py::arg("max_bytes") = py::none(), py::arg("deadline") = py::none(),
        "Verifies one solution and returns its Report.\n\n"
        "solution: the text of a Result.txt file (str or bytes), or the path of one\n"
        "  (os.PathLike, e.g. pathlib.Path).\n"
        "catalogue: a Catalogue.\n"
        "mode: \"first\" stops at the first violation, as kavren-check does; \"all\" reports\n"
        "  every violation of every event, arc and ship.\n"
        "threads: workers integrating the arcs; None uses one per core. The report does not\n"
        "  depend on it.\n"
        "trajectories: keep the states along every arc (Report.trajectories).\n"
        "max_bytes, deadline: limits for solutions from untrusted sources (None: none). A\n"
        "  solution of more than max_bytes bytes, or a verification still running after\n"
        "  deadline seconds, returns a Report whose outcome is \"limit_reached\", with the\n"
        "  reason in Report.error and no verdict.\n\n"
        "Raises MemoryError (with the reason) when memory cannot be had, and OSError when a\n"
        "path cannot be read. The interpreter lock is released while it runs.");
}
