#pragma once

#include <cassert>
#include <string>
#include <utility>
#include <variant>

namespace quorlo {

// What went wrong, where, and what to do about it, in words for the user.
struct Error {
  std::string message;
};

// The outcome of an operation that can fail: a value or an Error. Errors are values at the edges of
// modules; nothing throws across them.
template <class T>
class [[nodiscard]] Result {
 public:
  Result(T value) : state_(std::in_place_index<0>, std::move(value)) {}
  Result(Error error) : state_(std::in_place_index<1>, std::move(error)) {}

  bool ok() const { return state_.index() == 0; }
  explicit operator bool() const { return ok(); }

  // Only while ok().
  const T& value() const& {
    assert(ok());
    return *std::get_if<0>(&state_);
  }
  T& value() & {
    assert(ok());
    return *std::get_if<0>(&state_);
  }
  // By value, so that a loop over the value of a temporary is safe.
  T value() && {
    assert(ok());
    return std::move(*std::get_if<0>(&state_));
  }

  // Only while not ok().
  const Error& error() const {
    assert(!ok());
    return *std::get_if<1>(&state_);
  }

 private:
  std::variant<T, Error> state_;
};

template <>
class [[nodiscard]] Result<void> {
 public:
  Result() = default;
  Result(Error error) : error_(std::move(error)), ok_(false) {}

  bool ok() const { return ok_; }
  explicit operator bool() const { return ok_; }
  const Error& error() const {
    assert(!ok_);
    return error_;
  }

 private:
  Error error_;
  bool ok_ = true;
};

using Status = Result<void>;

}  // namespace quorlo
