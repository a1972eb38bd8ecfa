#include "session/fingerprint.h"

#include <cstring>

namespace kavren {
namespace {

constexpr std::uint64_t kOdd[Fingerprint::kLanes] = {
    0x9E3779B97F4A7C15ull, 0xC2B2AE3D27D4EB4Full, 0x165667B19E3779F9ull, 0xD6E8FEB86659FD93ull,
    0x9E3779B97F4A7C17ull, 0xC2B2AE3D27D4EB51ull, 0x165667B19E3779FBull, 0xD6E8FEB86659FD95ull};

inline std::uint64_t rotate(std::uint64_t x, int r) {
  return (x << r) | (x >> (64 - r));
}

// Each step maps the lane one-to-one for a given word (xor, rotation, product with an odd
// number), so two texts that differ in one word always differ in that lane's end state.
inline std::uint64_t step(std::uint64_t lane, std::uint64_t word, int k) {
  return rotate(lane ^ word, 29) * kOdd[k];
}

}  // namespace

Fingerprint fingerprint(std::string_view bytes) {
  constexpr std::size_t kBlock = 8 * Fingerprint::kLanes;
  Fingerprint f;
  f.size = bytes.size();
  // Eight lanes in variables of their own: independent chains the processor overlaps.
  std::uint64_t a = 1, b = 2, c = 3, d = 4, e = 5, g = 6, h = 7, i = 8;
  const char* p = bytes.data();
  std::size_t n = bytes.size();
  std::uint64_t w[Fingerprint::kLanes];
  while (n >= kBlock) {
    std::memcpy(w, p, sizeof w);
    a = step(a, w[0], 0);
    b = step(b, w[1], 1);
    c = step(c, w[2], 2);
    d = step(d, w[3], 3);
    e = step(e, w[4], 4);
    g = step(g, w[5], 5);
    h = step(h, w[6], 6);
    i = step(i, w[7], 7);
    p += kBlock;
    n -= kBlock;
  }
  // The tail, zero-padded; the length tells a padded tail from written zeros.
  for (std::uint64_t& word : w) word = 0;
  if (n > 0) std::memcpy(w, p, n);
  const std::uint64_t end[Fingerprint::kLanes] = {a, b, c, d, e, g, h, i};
  for (int k = 0; k < Fingerprint::kLanes; ++k) f.lanes[k] = step(end[k], w[k], k);
  return f;
}

}  // namespace kavren
