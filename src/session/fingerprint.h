// A fingerprint of a run of bytes, the key under which a session keeps what a ship's
// lines produced: 256 bits from four independent lanes, each a chain of bijections of
// the words it reads, and the length.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kavren {

struct Fingerprint {
  std::uint64_t lanes[4] = {0, 0, 0, 0};
  std::size_t size = 0;

  bool operator==(const Fingerprint& other) const {
    return size == other.size && lanes[0] == other.lanes[0] && lanes[1] == other.lanes[1] &&
           lanes[2] == other.lanes[2] && lanes[3] == other.lanes[3];
  }
};

Fingerprint fingerprint(std::string_view bytes);

}  // namespace kavren
