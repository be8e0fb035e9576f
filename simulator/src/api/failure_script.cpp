#include "api/failure_script.h"

#include <stdexcept>

namespace oct::simulator {

void FailureScript::add(const std::string& function, int call, const std::string& message) {
  if (call < 0) throw std::invalid_argument("A call number must not be negative. ");
  const std::lock_guard lock(mutex_);
  failures_.emplace(function, Failure{call, 0, message});
}

void FailureScript::clear() {
  const std::lock_guard lock(mutex_);
  failures_.clear();
}

void FailureScript::on_call(const char* function) {
  const std::lock_guard lock(mutex_);
  if (failures_.empty()) return;
  const auto [begin, end] = failures_.equal_range(function);
  const Failure* due = nullptr;
  for (auto failure = begin; failure != end; ++failure) {
    ++failure->second.seen;
    if (!due && (failure->second.call == 0 || failure->second.call == failure->second.seen))
      due = &failure->second;
  }
  if (due) throw std::runtime_error(due->message);
}

}  // namespace oct::simulator
