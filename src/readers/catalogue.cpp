#include "readers/catalogue.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <vector>

#include "readers/file_bytes.h"
#include "readers/numbers.h"
#include "readers/tokenizer.h"

namespace kavren {
namespace {

// Stream extraction reads numbers separated by any white space. Plain tokens ("12",
// "-3.5e2") are converted here with the same result the stream gives; at the first
// token the stream might treat differently (trailing letters, overflow, signs without
// digits, anything unusual) the rest of the text is handed to a real stream, so a
// malformed catalogue is read exactly as stream extraction reads it.
class CatalogueScanner {
 public:
  explicit CatalogueScanner(std::string_view text) : text_(text) {}

  // Reads record n into row; false once the stream has failed.
  bool read_record(double* row) {
    if (fallback_) return read_record_from_stream(row);
    if (read_plain_record(row)) return true;
    // Restart this record with the stream's own rules.
    fallback_stream_.str(std::string(text_.substr(pos_)));
    fallback_ = true;
    return read_record_from_stream(row);
  }

  // Reads a record only when every token of it is plain; otherwise leaves the position
  // at its start (row may be partly written) and returns false.
  bool read_plain_record(double* row) {
    if (fallback_) return false;
    const std::size_t record_start = pos_;
    int id = 0;
    bool plain = next_int(id);
    for (int k = 0; plain && k < kCatalogueColumns; ++k) plain = next_double(row[k]);
    if (!plain) pos_ = record_start;
    return plain;
  }

  // The position at or before `end`, and nothing but white space up to it.
  bool only_space_until(std::size_t end) const {
    if (pos_ > end) return false;
    for (std::size_t p = pos_; p < end && p < text_.size(); ++p) {
      if (!is_line_space(text_[p])) return false;
    }
    return true;
  }

 private:
  std::string_view next_token() {
    while (pos_ < text_.size() && is_line_space(text_[pos_])) ++pos_;
    const std::size_t begin = pos_;
    while (pos_ < text_.size() && !is_line_space(text_[pos_])) ++pos_;
    return text_.substr(begin, pos_ - begin);
  }

  static bool is_digit(char c) { return c >= '0' && c <= '9'; }

  // Sign, digits, optional point and digits, optional exponent with digits; nothing
  // else in the token: exactly the text the stream would take as one number.
  static bool plain_decimal(std::string_view t) {
    std::size_t p = 0;
    if (p < t.size() && (t[p] == '+' || t[p] == '-')) ++p;
    std::size_t mantissa_digits = 0;
    while (p < t.size() && is_digit(t[p])) ++p, ++mantissa_digits;
    if (p < t.size() && t[p] == '.') {
      ++p;
      while (p < t.size() && is_digit(t[p])) ++p, ++mantissa_digits;
    }
    if (mantissa_digits == 0) return false;
    if (p < t.size() && (t[p] == 'e' || t[p] == 'E')) {
      ++p;
      if (p < t.size() && (t[p] == '+' || t[p] == '-')) ++p;
      std::size_t exponent_digits = 0;
      while (p < t.size() && is_digit(t[p])) ++p, ++exponent_digits;
      if (exponent_digits == 0) return false;
    }
    return p == t.size();
  }

  bool next_int(int& value) {
    const std::string_view t = next_token();
    std::size_t p = 0;
    if (p < t.size() && (t[p] == '+' || t[p] == '-')) ++p;
    if (p == t.size() || t.size() - p > 9) return false;
    for (std::size_t q = p; q < t.size(); ++q) {
      if (!is_digit(t[q])) return false;
    }
    return std::from_chars(t.data() + (t[0] == '+' ? 1 : 0), t.data() + t.size(), value).ec ==
           std::errc();
  }

  bool next_double(double& value) {
    const std::string_view t = next_token();
    if (!plain_decimal(t)) return false;
    if (parse_plain_decimal(t, value)) return true;
    double parsed = 0.0;
    const auto result =
        std::from_chars(t.data() + (t[0] == '+' ? 1 : 0), t.data() + t.size(), parsed);
    // Out of range (overflow or underflow) is left to the stream.
    if (result.ec != std::errc() || result.ptr != t.data() + t.size()) return false;
    value = parsed;
    return true;
  }

  bool read_record_from_stream(double* row) {
    int id = 0;
    fallback_stream_ >> id;
    for (int k = 0; k < kCatalogueColumns; ++k) fallback_stream_ >> row[k];
    return static_cast<bool>(fallback_stream_);
  }

  std::string_view text_;
  std::size_t pos_ = 0;
  bool fallback_ = false;
  std::istringstream fallback_stream_;
};

// Catalogues from this size on are read in two halves at once.
constexpr std::size_t kTwoHalvesFrom = std::size_t{1} << 20;

// The records of the second half, read on a thread of their own from `first_id` on.
struct SecondHalf {
  std::vector<double> rows;
  int count = 0;
  bool whole = false;  // read as one reading would: up to the last row or to the end

  void read(std::string_view text, int first_id) {
    try {
      CatalogueScanner scanner(text);
      double row[kCatalogueColumns];
      while (first_id + count <= kNumAsteroids && scanner.read_plain_record(row)) {
        rows.insert(rows.end(), row, row + kCatalogueColumns);
        ++count;
      }
      whole = first_id + count > kNumAsteroids || scanner.only_space_until(text.size());
    } catch (...) {
      whole = false;  // out of memory: the first half's reader reads on alone
    }
  }
};

}  // namespace

void read_catalogue(std::string_view text, AsteroidTable& table) {
  // Without a line break the whole text is the header and every row stays as it is.
  const std::size_t header_end = text.find('\n');
  if (header_end == std::string_view::npos) return;
  const std::string_view body = text.substr(header_end + 1);
  CatalogueScanner scanner(body);
  int id = 1;

  // A large catalogue of one record a line is read in two halves at once: the second
  // half's records are numbered from the count of lines before it. They are taken when
  // the first half turns out to hold exactly that many plain records and nothing after
  // them, and the second half reads to its end: the rows are then those of one reading.
  // Otherwise one reading goes on from where the first half stopped.
  const std::size_t split =
      body.size() >= kTwoHalvesFrom && std::thread::hardware_concurrency() >= 2
          ? body.find('\n', body.size() / 2)
          : std::string_view::npos;
  if (split != std::string_view::npos) {
    const std::string_view second = body.substr(split + 1);
    const auto lines =
        static_cast<long long>(std::count(body.data(), body.data() + split + 1, '\n'));
    SecondHalf half;
    std::thread helper;
    if (lines < kNumAsteroids) {
      try {
        helper =
            std::thread([&half, second, lines] { half.read(second, static_cast<int>(lines) + 1); });
      } catch (const std::system_error&) {
      }
    }
    if (helper.joinable()) {
      for (; id <= lines && scanner.read_plain_record(table.row(id)); ++id) {
      }
      helper.join();
      if (id == lines + 1 && scanner.only_space_until(split + 1) && half.whole) {
        for (int k = 0; k < half.count; ++k) {
          std::copy_n(half.rows.data() + static_cast<std::size_t>(k) * kCatalogueColumns,
                      kCatalogueColumns, table.row(id + k));
        }
        return;
      }
    }
  }
  for (; id <= kNumAsteroids; ++id) {
    if (!scanner.read_record(table.row(id))) break;
  }
}

}  // namespace kavren
