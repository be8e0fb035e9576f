// What the functions of the pattern device share.
#pragma once

#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <sstream>
#include <vector>

#include "live/pattern_device.h"
#include "oct_device/oct_device.h"

struct OctData {
  int size[3] = {};
  double range[3] = {};
  std::vector<float> samples;
};
struct OctRawData {
  int volume = -1;
  int camera = 0;
};
struct OctComplexData {
  int volume = -1;
};

namespace oct::test {

// What a reset makes as at first.
struct PatternSettings {
  std::map<const void*, std::string> names;              // of the objects that are alive
  std::map<const void*, std::shared_ptr<void>> objects;  // those of them that clients create
  std::map<std::string, int> made;
  int misuses = 0;
  int size[3] = {16, 12, 10};
  std::vector<float> volume;
  int channels = 2;
  std::vector<float> analog;
  std::vector<float> surface;
  std::map<std::string, std::pair<int, int>> failures;  // which call, and how many have been seen
  bool recording = false;
  std::string calls;
  std::string error;
  std::set<OCTDeviceHandle> measuring;
  int acquired = 0;
  std::map<ProcessingHandle, DataHandle> dataOutputs;
  std::map<ProcessingHandle, ComplexDataHandle> complexOutputs;
  DataHandle polarizationOutput = nullptr;
  int quantity = 0;
};

struct PatternState : PatternSettings {
  std::mutex mutex;
  std::condition_variable condition;
  std::string held;
  int permits = 0;
  int waiting = 0;  // since the latest hold
  int holds = 0;

  template <class Object>
  Object* make(const char* kind) {
    const auto object = std::make_shared<Object>();
    const std::lock_guard lock(mutex);
    names[object.get()] = kind + std::to_string(made[kind]++);
    objects[object.get()] = object;
    return object.get();
  }

  void clear(const void* object) {
    const std::lock_guard lock(mutex);
    names.erase(object);
    objects.erase(object);
  }

  std::string text(const void* handle) {
    const auto name = names.find(handle);
    if (name != names.end()) return name->second;
    ++misuses;
    return "(no object)";
  }
  template <class Number>
  requires std::is_arithmetic_v<Number> std::string text(Number value) {
    std::ostringstream stream;
    stream << value;
    return stream.str();
  }

  void hold(const std::string& function, int after) {
    {
      const std::lock_guard lock(mutex);
      held = function;
      permits = after;
      waiting = 0;
      ++holds;
    }
    condition.notify_all();
  }

  void raise(const std::string& message) {
    const std::lock_guard lock(mutex);
    if (error.empty()) error = message;
  }

  void fill(OctData& data, int number, int shownQuantity);
};

PatternState& patternState();

// Does something with the state while no other thread does.
template <class Action>
auto locked(Action action) {
  const std::lock_guard lock(patternState().mutex);
  return action(patternState());
}

void resize(OctData& data, int size1, int size2, int size3);
void copyOrClear(const std::vector<float>& source, std::vector<float>& target);

// One call of a device function: notes it, waits while it is held. True when the function shall do its work.
template <class... Arguments>
bool entered(const char* function, Arguments... arguments) {
  PatternState& state = patternState();
  std::unique_lock lock(state.mutex);
  const int misusesBefore = state.misuses;
  std::string list;
  ((list += (list.empty() ? "" : ", ") + state.text(arguments)), ...);
  if (state.recording) state.calls += std::string(function) + "(" + list + ")\n";
  if (state.held == function && --state.permits < 0) {
    ++state.waiting;
    state.condition.wait(lock, [&, mine = state.holds] { return state.holds != mine; });
  }
  bool failed = state.misuses > misusesBefore;
  const auto failure = state.failures.find(function);
  if (failure != state.failures.end()) {
    auto& [call, seen] = failure->second;
    if (++seen == call || call == 0) failed = true;
  }
  if (failed && state.error.empty()) state.error = std::string(function) + " failed";
  return !failed;
}

}  // namespace oct::test
