#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace quorlo {

// The rules by which a clock shows moments. A value; its copies may be used on one thread at a time.
class TimeZone {
 public:
  using OffsetAt = std::function<std::chrono::seconds(std::chrono::sys_seconds)>;

  // `offsetAt` tells how far the clock is ahead of UTC. The name is an IANA name such as "Europe/Berlin",
  // empty for rules without one.
  TimeZone(std::string name, OffsetAt offsetAt);

  const std::string& name() const { return name_; }
  std::chrono::seconds offsetAt(std::chrono::sys_time<std::chrono::milliseconds> moment) const;

  // When the clock shows a time. Two moments where it is set back over that time. Where it is set forward
  // over it, the moment at which it would have shown that time without the change, twice.
  struct Moments {
    std::chrono::sys_time<std::chrono::milliseconds> first;
    std::chrono::sys_time<std::chrono::milliseconds> last;
  };
  Moments momentsOf(std::chrono::local_time<std::chrono::milliseconds> local) const;

 private:
  std::string name_;
  OffsetAt offsetAt_;
};

// By the rules built into the ICU library, which may be older than the system's; UTC for a name that it does
// not know.
TimeZone icuTimeZone(const std::string& name);

}  // namespace quorlo
