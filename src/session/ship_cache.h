// What a session verified, per ship: bounded in memory, the least recently used out
// first.
#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <unordered_map>

#include "kavren/verify.h"
#include "session/fingerprint.h"
#include "session/ship_work.h"

namespace kavren {

// A ship's work depends on its bytes and on the options that change what is verified or
// kept (the catalogue is the session's); a verification asked for in another mode or with
// trajectories is another entry.
struct ShipKey {
  Fingerprint bytes;
  Mode mode = Mode::first;
  bool trajectories = false;

  bool operator==(const ShipKey& other) const {
    return bytes == other.bytes && mode == other.mode && trajectories == other.trajectories;
  }
};

class ShipCache {
 public:
  explicit ShipCache(std::size_t bound) : bound_(bound) {}

  // The work kept under `key`, now the most recently used; null when none.
  std::shared_ptr<const ShipWork> find(const ShipKey& key);
  // Keeps `work` under `key` (replacing what was there), then lets the least recently
  // used go until the total is within the bound.
  void put(const ShipKey& key, std::shared_ptr<const ShipWork> work);
  void clear();

  std::size_t entries() const { return index_.size(); }
  std::size_t bytes() const { return bytes_; }

 private:
  struct Entry {
    ShipKey key;
    std::shared_ptr<const ShipWork> work;
    std::size_t bytes;
  };
  struct Hash {
    std::size_t operator()(const ShipKey& key) const {
      return static_cast<std::size_t>(key.bytes.lanes[0] ^ key.bytes.lanes[5]);
    }
  };

  std::size_t bound_;
  std::size_t bytes_ = 0;
  std::list<Entry> order_;  // most recently used first
  std::unordered_map<ShipKey, std::list<Entry>::iterator, Hash> index_;
};

}  // namespace kavren
