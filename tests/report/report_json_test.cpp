// The JSON report against its documentation: every field the schema page lists is
// written, nothing else is, in the documented order, with non-finite numbers as null and
// finite ones read back to the same double.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <limits>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "json/json_value.h"
#include "report/report_fixture.h"

namespace kavren::test {
namespace {

using nlohmann::ordered_json;

// The field paths of docs/report-schema.md in page order: the first column of its tables.
std::vector<std::string> documented_fields() {
  std::ifstream page(std::string(KAVREN_SOURCE_DIR) + "/docs/report-schema.md");
  std::vector<std::string> fields;
  std::string line;
  while (std::getline(page, line)) {
    if (line.rfind("| `", 0) != 0) continue;
    const std::size_t end = line.find("` |", 3);
    if (end != std::string::npos) fields.push_back(line.substr(3, end - 3));
  }
  return fields;
}

// Every path of a JSON value, in the page's notation ("findings[].code"), in order.
void paths_of(const ordered_json& value, const std::string& prefix, std::vector<std::string>& out) {
  if (value.is_object()) {
    for (const auto& [key, child] : value.items()) {
      const std::string path = prefix.empty() ? key : prefix + "." + key;
      out.push_back(path);
      paths_of(child, path, out);
    }
  } else if (value.is_array() && !value.empty() && value.front().is_object()) {
    // Elements share their fields: the first stands for all.
    paths_of(value.front(), prefix + "[]", out);
  }
}

TEST(ReportJson, WritesExactlyTheDocumentedFieldsInOrder) {
  const std::vector<std::string> documented = documented_fields();
  ASSERT_GT(documented.size(), 50u);
  const ordered_json json = ordered_json::parse(report_to_json(faulty_demo().report));
  std::vector<std::string> written;
  paths_of(json, "", written);
  // Each object's fields, in order, as written and as documented.
  auto by_parent = [](const std::vector<std::string>& paths) {
    std::map<std::string, std::vector<std::string>> children;
    std::set<std::string> seen;
    for (const std::string& p : paths) {
      if (!seen.insert(p).second) continue;
      const std::size_t dot = p.rfind('.');
      children[dot == std::string::npos ? "" : p.substr(0, dot)].push_back(p);
    }
    return children;
  };
  EXPECT_EQ(by_parent(written), by_parent(documented));
  EXPECT_EQ(json.at("schema"), 1);
  EXPECT_EQ(json.at("findings").at(2).at("margin"), faulty_demo().report.findings[2].margin);
  EXPECT_FALSE(json.contains("trajectories"));
  EXPECT_FALSE(json.contains("statistics"));
}

TEST(ReportJson, NumbersRoundTripAndNonFiniteAreNull) {
  Report r;
  r.score_file = std::string("1\t2\n");
  Finding f;
  f.code = "Error101";
  f.message = "bytes that are not UTF-8: \xff\xfe\n";
  f.value = 0.1 + 0.2;  // needs all 17 digits
  f.limit = std::numeric_limits<double>::infinity();
  f.margin = kNotANumber;
  f.lines = {3, 4};
  r.findings.push_back(f);
  EventMark e;
  e.r[0] = 1e300;
  e.r[1] = -std::numeric_limits<double>::denorm_min();
  ShipSummary s;
  s.events.push_back(e);
  r.summary.per_ship.push_back(s);
  r.summary.total_resource_mass = -0.0;

  const std::string text = report_to_json(r);
  const ordered_json json = ordered_json::parse(text);
  const ordered_json& finding = json.at("findings").at(0);
  EXPECT_EQ(finding.at("value").get<double>(), 0.1 + 0.2);
  EXPECT_TRUE(finding.at("limit").is_null());
  EXPECT_TRUE(finding.at("margin").is_null());
  EXPECT_EQ(finding.at("lines"), ordered_json::array({3, 4}));
  EXPECT_EQ(finding.at("message").get<std::string>(),
            "bytes that are not UTF-8: \xEF\xBF\xBD\xEF\xBF\xBD\n");
  const ordered_json& r0 = json.at("summary").at("per_ship").at(0).at("events").at(0).at("r");
  EXPECT_EQ(r0.at(0).get<double>(), 1e300);
  EXPECT_EQ(r0.at(1).get<double>(), -std::numeric_limits<double>::denorm_min());
  EXPECT_TRUE(r0.at(2).is_null());
  EXPECT_TRUE(std::signbit(json.at("summary").at("total_resource_mass").get<double>()));
  EXPECT_EQ(json.at("score_file"), "1\t2\n");
  EXPECT_TRUE(ordered_json::parse(report_to_json(Report{})).at("score_file").is_null());
  EXPECT_EQ(json.at("outcome"), "verified");

  // The value form holds the same content as the text.
  const Report fixture = faulty_demo().report;
  EXPECT_TRUE(nlohmann::json::parse(report_to_json(fixture)) == report_to_json_value(fixture));
  // Indented text is the same value.
  EXPECT_EQ(ordered_json::parse(report_to_json(r, 2)), json);
}

}  // namespace
}  // namespace kavren::test
