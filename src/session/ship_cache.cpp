#include "session/ship_cache.h"

#include <utility>

namespace kavren {

std::shared_ptr<const ShipWork> ShipCache::find(const ShipKey& key) {
  const auto found = index_.find(key);
  if (found == index_.end()) return nullptr;
  order_.splice(order_.begin(), order_, found->second);
  return found->second->work;
}

void ShipCache::put(const ShipKey& key, std::shared_ptr<const ShipWork> work) {
  const std::size_t size = work->footprint() + sizeof(Entry);
  const auto found = index_.find(key);
  if (found != index_.end()) {
    bytes_ -= found->second->bytes;
    order_.erase(found->second);
    index_.erase(found);
  }
  order_.push_front(Entry{key, std::move(work), size});
  index_.emplace(key, order_.begin());
  bytes_ += size;
  while (bytes_ > bound_ && !order_.empty()) {
    bytes_ -= order_.back().bytes;
    index_.erase(order_.back().key);
    order_.pop_back();
  }
}

void ShipCache::clear() {
  index_.clear();
  order_.clear();
  bytes_ = 0;
}

}  // namespace kavren
