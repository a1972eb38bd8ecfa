#include "readers/tokenizer.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kavren {

namespace {

#if defined(__SSE2__)
__m128i load16(const char* p) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

// Bit k: byte k of the 16 at p is white space (a blank, or tab to carriage return).
unsigned space_mask(const char* p) {
  const __m128i bytes = load16(p);
  const __m128i blank = _mm_cmpeq_epi8(bytes, _mm_set1_epi8(' '));
  const __m128i from_tab = _mm_sub_epi8(bytes, _mm_set1_epi8('\t'));
  const __m128i control = _mm_cmpeq_epi8(_mm_min_epu8(from_tab, _mm_set1_epi8(4)), from_tab);
  return static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(blank, control)));
}

// The offset of the first NUL byte of a text of at least 16 bytes, or its size; chunks
// of 16, the last one ending at the text's end.
std::size_t first_nul(const char* p, std::size_t size) {
  for (std::size_t offset = 0; offset < size; offset += 16) {
    const std::size_t at = std::min(offset, size - 16);
    const auto nul = static_cast<unsigned>(
        _mm_movemask_epi8(_mm_cmpeq_epi8(load16(p + at), _mm_setzero_si128())));
    if (nul != 0) return at + static_cast<std::size_t>(__builtin_ctz(nul));
  }
  return size;
}
#endif

}  // namespace

std::string_view trimmed_line(std::string_view raw) {
  // The line is handled as a C string: a NUL byte ends its text.
  const char* const p = raw.data();
  std::size_t end = raw.size();
  std::size_t begin = 0;
#if defined(__SSE2__)
  if (end >= 16) {
    end = first_nul(p, end);
    if (end >= 16) {
      // The first and the last 16 bytes of the text usually hold its ends.
      const unsigned head = ~space_mask(p) & 0xFFFFu;
      begin = head != 0 ? static_cast<std::size_t>(__builtin_ctz(head)) : 16;
      const unsigned tail = ~space_mask(p + end - 16) & 0xFFFFu;
      end = tail != 0 ? end - 16 + static_cast<std::size_t>(32 - __builtin_clz(tail)) : end - 16;
      if (begin > end) begin = end;
    }
  } else
#endif
  {
    const void* nul = std::memchr(p, '\0', end);
    if (nul != nullptr) end = static_cast<std::size_t>(static_cast<const char*>(nul) - p);
  }
  while (begin < end && is_line_space(p[begin])) ++begin;
  while (end > begin && is_line_space(p[end - 1])) --end;
  return raw.substr(begin, end - begin);
}

void split_views(std::string_view s, std::string_view delimiters,
                 std::vector<std::string_view>& tokens) {
  static constexpr std::string_view kRoot = "ROOT";
  if (s.empty() || delimiters.empty()) return;
  std::size_t pos = 0;
  while (true) {
    const std::size_t delimiter = s.find_first_of(delimiters, pos);
    if (delimiter == std::string_view::npos) break;
    if (pos == 0 && delimiter == 0) {
      tokens.push_back(kRoot);
    } else {
      tokens.push_back(s.substr(pos, delimiter - pos));
    }
    pos = s.find_first_not_of(delimiters, delimiter);
    if (pos == std::string_view::npos || pos >= s.size()) return;
  }
  if (pos < s.size()) tokens.push_back(s.substr(pos));
}

namespace {

// Bit k of `blank` and `tab` tells whether byte k of a block of up to 64 bytes is a
// blank or a tab.
struct BlockMasks {
  std::uint64_t blank = 0;
  std::uint64_t tab = 0;
};

#if defined(__SSE2__)
// The masks of 16 bytes at `p`.
inline void chunk_masks(const char* p, std::uint32_t& blank, std::uint32_t& tab) {
  const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
  blank = static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(' '))));
  tab = static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('\t'))));
}
#endif

// The masks of line[from, from + n), n <= 64. Every load stays inside the line: a last
// chunk shorter than 16 bytes is loaded as the line's last 16 bytes and shifted, and
// only a line shorter than 16 bytes is looked at byte by byte.
inline BlockMasks block_masks(std::string_view line, std::size_t from, std::size_t n) {
  BlockMasks masks;
  std::size_t offset = 0;
#if defined(__SSE2__)
  for (; offset < n; offset += 16) {
    const std::size_t end = from + std::min<std::size_t>(n, offset + 16);
    if (end < 16) break;
    std::uint32_t blank = 0;
    std::uint32_t tab = 0;
    chunk_masks(line.data() + end - 16, blank, tab);
    const std::size_t skip = 16 - (end - from - offset);  // bytes of the chunk before
    masks.blank |= static_cast<std::uint64_t>(blank >> skip) << offset;
    masks.tab |= static_cast<std::uint64_t>(tab >> skip) << offset;
  }
#endif
  for (; offset < n; ++offset) {
    const char c = line[from + offset];
    masks.blank |= static_cast<std::uint64_t>(c == ' ') << offset;
    masks.tab |= static_cast<std::uint64_t>(c == '\t') << offset;
  }
  return masks;
}

}  // namespace

void tokenize_line(std::string_view line, std::vector<std::string_view>& tokens) {
  // The result of splitting on tabs and then each piece on blanks: a piece is a maximal
  // run without tabs; a piece that starts with a blank (or a line that starts with a
  // tab) yields "ROOT"; the tokens are the maximal runs without blanks inside each piece.
  // Found by blocks of 64 bytes: bit masks of blanks and tabs give the positions where
  // a token starts, where one ends, and where a "ROOT" falls (a blank after a tab, or a
  // blank or tab opening the line), visited in the order of the line.
  static constexpr std::string_view kRoot = "ROOT";
  tokens.clear();
  const std::size_t size = line.size();
  // The byte before the block: a separator, a tab (the line's start counts as both).
  std::uint64_t before_separator = 1;
  std::uint64_t before_tab = 1;
  std::size_t token_start = 0;
  for (std::size_t from = 0; from < size; from += 64) {
    const std::size_t n = std::min<std::size_t>(64, size - from);
    const BlockMasks m = block_masks(line, from, n);
    const std::uint64_t valid = n == 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << n) - 1;
    const std::uint64_t separator = m.blank | m.tab;
    const std::uint64_t other = ~separator & valid;
    const std::uint64_t starts = other & ((separator << 1) | before_separator);
    const std::uint64_t ends = separator & ((other << 1) | (before_separator ^ 1));
    std::uint64_t roots = m.blank & ((m.tab << 1) | before_tab);
    if (from == 0) roots |= m.tab & 1;
    if (roots == 0) {
      // No "ROOT" (every well-formed line): starts and ends alternate, the first end
      // possibly closing a token opened in an earlier block.
      std::uint64_t open_ends = ends;
      if (before_separator == 0 && open_ends != 0) {
        const std::size_t at = from + static_cast<std::size_t>(__builtin_ctzll(open_ends));
        tokens.emplace_back(line.data() + token_start, at - token_start);
        open_ends &= open_ends - 1;
      }
      for (std::uint64_t open = starts; open != 0; open &= open - 1) {
        token_start = from + static_cast<std::size_t>(__builtin_ctzll(open));
        if (open_ends == 0) break;  // the token goes on past this block
        const std::size_t at = from + static_cast<std::size_t>(__builtin_ctzll(open_ends));
        tokens.emplace_back(line.data() + token_start, at - token_start);
        open_ends &= open_ends - 1;
      }
    } else {
      for (std::uint64_t events = starts | ends | roots; events != 0; events &= events - 1) {
        const int bit = __builtin_ctzll(events);
        const std::uint64_t one = std::uint64_t{1} << bit;
        const std::size_t at = from + static_cast<std::size_t>(bit);
        if (starts & one) {
          token_start = at;
        } else if (ends & one) {
          tokens.emplace_back(line.data() + token_start, at - token_start);
        } else {
          tokens.push_back(kRoot);
        }
      }
    }
    before_separator = (separator >> (n - 1)) & 1;
    before_tab = (m.tab >> (n - 1)) & 1;
  }
  if (size != 0 && before_separator == 0) {
    tokens.emplace_back(line.data() + token_start, size - token_start);
  }
}

void decode_event_line(int line_index, const std::vector<std::string_view>& tokens, int& event_id,
                       double& epoch, StateStruct& state) {
  auto token = [&tokens](std::size_t k) {
    return k < tokens.size() ? tokens[k] : std::string_view();
  };
  event_id = parse_int(token(1));
  epoch = parse_double(token(2));
  state.line_index = line_index;
  state.epoch = epoch;
  for (int k = 0; k < 3; ++k) state.r[k] = parse_double(token(3 + k));
  for (int k = 0; k < 3; ++k) state.v[k] = parse_double(token(6 + k));
  state.mass = parse_double(token(9));
}

}  // namespace kavren

void trim(char* in, char* out) {
  const std::string_view text = kavren::trimmed_line(std::string_view(in, std::strlen(in)));
  std::memmove(out, text.data(), text.size());
  out[text.size()] = '\0';
}

std::vector<std::string> split(const std::string& s, const std::string& delimiters) {
  std::vector<std::string_view> views;
  kavren::split_views(s, delimiters, views);
  return std::vector<std::string>(views.begin(), views.end());
}

void string_eventline2data(int line_index, std::vector<std::string> tokens, int& event_id,
                           double& epoch, StateStruct& state) {
  std::vector<std::string_view> views(tokens.begin(), tokens.end());
  kavren::decode_event_line(line_index, views, event_id, epoch, state);
}
