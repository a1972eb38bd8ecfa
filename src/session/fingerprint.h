// A fingerprint of a run of bytes, the key under which a session keeps what a ship's
// lines produced: 512 bits from eight independent lanes, each a chain of bijections of
// the words it reads, and the length.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kavren {

struct Fingerprint {
  static constexpr int kLanes = 8;
  std::uint64_t lanes[kLanes] = {};
  std::size_t size = 0;

  bool operator==(const Fingerprint& other) const {
    if (size != other.size) return false;
    for (int k = 0; k < kLanes; ++k) {
      if (lanes[k] != other.lanes[k]) return false;
    }
    return true;
  }
};

Fingerprint fingerprint(std::string_view bytes);

}  // namespace kavren
