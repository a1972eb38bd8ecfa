// Verification of candidates that differ from earlier ones in a few ships, as an
// optimiser makes them: a session keeps, per ship, what verifying that ship produced,
// keyed by the ship's bytes and the options, and verifies only the ships it has not seen
// in any earlier candidate. What spans ships (the grouping of the file, the mining
// ledger, the ship count, the score file) is evaluated anew every time.
//
//   kavren::Session session(catalogue);
//   kavren::Report a = session.verify(text_a);  // every ship verified
//   kavren::Report b = session.verify(text_b);  // only the ships text_a did not have
//
// The report equals kavren::verify's for the same text and options in every field but
// `statistics` (which says how many ships came from the cache). A session is used from
// one thread at a time; several sessions may run in parallel.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include "kavren/report.h"
#include "kavren/verify.h"

namespace kavren {

class Session {
 public:
  static constexpr std::size_t kDefaultCacheBytes = std::size_t{256} << 20;

  // `cache_bytes` bounds what the session keeps; past it the ships used least recently
  // are forgotten first.
  explicit Session(Catalogue catalogue, std::size_t cache_bytes = kDefaultCacheBytes);
  ~Session();
  Session(Session&&) noexcept;
  Session& operator=(Session&&) noexcept;
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // As kavren::verify(catalogue, solution_text, options). The arcs of the ships verified
  // anew count in the progress callback; ships taken from the cache do not.
  Report verify(std::string_view solution_text, const Options& options = {});

  std::size_t cached_ships() const;  // entries kept
  std::size_t cache_bytes() const;   // their estimated size
  void clear();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace kavren
