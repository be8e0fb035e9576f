// Work to be done however a scope is left.
#pragma once

#include <utility>

namespace oct {

template <class Action>
class ScopeExit {
 public:
  explicit ScopeExit(Action action) : action_(std::move(action)) {}
  ~ScopeExit() {
    if (armed_) action_();
  }
  ScopeExit(const ScopeExit&) = delete;
  ScopeExit& operator=(const ScopeExit&) = delete;

  void dismiss() { armed_ = false; }

 private:
  Action action_;
  bool armed_ = true;
};

}  // namespace oct
