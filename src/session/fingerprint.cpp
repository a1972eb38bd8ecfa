#include "session/fingerprint.h"

#include <cstring>

namespace kavren {
namespace {

constexpr std::uint64_t kOdd[4] = {0x9E3779B97F4A7C15ull, 0xC2B2AE3D27D4EB4Full,
                                   0x165667B19E3779F9ull, 0xD6E8FEB86659FD93ull};

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
  Fingerprint f;
  f.size = bytes.size();
  std::uint64_t a = 1, b = 2, c = 3, d = 4;
  const char* p = bytes.data();
  std::size_t n = bytes.size();
  while (n >= 32) {
    std::uint64_t w[4];
    std::memcpy(w, p, sizeof w);
    a = step(a, w[0], 0);
    b = step(b, w[1], 1);
    c = step(c, w[2], 2);
    d = step(d, w[3], 3);
    p += 32;
    n -= 32;
  }
  // The tail, zero-padded; the length tells a padded tail from written zeros.
  std::uint64_t w[4] = {0, 0, 0, 0};
  if (n > 0) std::memcpy(w, p, n);
  a = step(a, w[0], 0);
  b = step(b, w[1], 1);
  c = step(c, w[2], 2);
  d = step(d, w[3], 3);
  f.lanes[0] = a;
  f.lanes[1] = b;
  f.lanes[2] = c;
  f.lanes[3] = d;
  return f;
}

}  // namespace kavren
