// What the functions of the pattern device share.
#pragma once

#include <array>
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
  std::map<const void*, std::string> names;            // of the objects that are alive
  std::map<const void*, std::shared_ptr<void>> alive;  // those of them that clients create
  std::map<std::string, int> made;
  int misused = 0;
  std::array<int, 3> size = {16, 12, 10};
  std::vector<float> volume;
  int channels = 2;
  std::vector<float> analog;
  std::vector<float> surface;
  std::map<std::string, std::pair<int, int>> failures;  // which call, and how many have been seen
  bool recording = false;
  std::string recorded;
  std::string error;
  std::set<OCTDeviceHandle> measuring;
  int acquired = 0;
  std::map<ProcessingHandle, DataHandle> data_outputs;
  std::map<ProcessingHandle, ComplexDataHandle> complex_outputs;
  DataHandle polarization_output = nullptr;
  int quantity = 0;
};

class PatternState : public PatternDevice, public PatternSettings {
 public:
  PatternState() { PatternState::reset(); }

  void reset() override;
  OCTDeviceHandle device(int number) override;
  ProcessingHandle processing(int number) override;
  PolarizationProcessingHandle polarization() override;
  ScanPatternHandle scan_pattern() override;
  void set_size(int size1, int size2, int size3) override { set(size, {size1, size2, size3}); }
  void set_volume(const float* samples) override {
    set(volume, {samples, samples + (samples ? a_scans() * size[0] : 0)});
  }
  void set_analog(int count, const float* samples) override {
    set(channels, count);
    set(analog, {samples, samples + count * a_scans()});
  }
  void set_surface(const float* depths) override { set(surface, {depths, depths + a_scans()}); }
  void fail(const char* function, int call) override {
    const std::lock_guard lock(mutex);
    failures[function] = {call, 0};
  }
  void hold(const char* function, int after) override;
  bool held() override { return get(waiting) > 0; }
  void release() override { hold("", 0); }
  void record(bool enabled) override {
    if (enabled) set(recorded, {});
    set(recording, enabled);
  }
  std::string calls() override { return get(recorded); }
  int volumes() override { return get(acquired); }
  int objects() override { return static_cast<int>(get(alive).size()); }
  int misuses() override { return get(misused); }

  std::mutex mutex;
  std::condition_variable condition;
  std::string held_function;
  int permits = 0;
  int waiting = 0;  // since the latest hold
  int holds = 0;

  template <class Object>
  Object* make(const char* kind) {
    const auto object = std::make_shared<Object>();
    const std::lock_guard lock(mutex);
    names[object.get()] = kind + std::to_string(made[kind]++);
    alive[object.get()] = object;
    return object.get();
  }

  void clear(const void* object) {
    const std::lock_guard lock(mutex);
    names.erase(object);
    alive.erase(object);
  }

  std::string text(const void* handle) {
    const auto name = names.find(handle);
    if (name != names.end()) return name->second;
    ++misused;
    return "(no object)";
  }
  template <class Number>
  requires std::is_arithmetic_v<Number> std::string text(Number value) {
    std::ostringstream stream;
    stream << value;
    return stream.str();
  }

  void raise(const std::string& message) {
    const std::lock_guard lock(mutex);
    if (error.empty()) error = message;
  }

  void fill(OctData& data, int number, int shown_quantity);

 private:
  std::ptrdiff_t a_scans() const { return std::ptrdiff_t{size[1]} * size[2]; }
  template <class Value>
  void set(Value& member, Value value) {
    const std::lock_guard lock(mutex);
    member = std::move(value);
  }
  template <class Value>
  Value get(const Value& member) {
    const std::lock_guard lock(mutex);
    return member;
  }
};

PatternState& pattern_state();

// Does something with the state while no other thread does.
template <class Action>
auto locked(Action action) {
  const std::lock_guard lock(pattern_state().mutex);
  return action(pattern_state());
}

void resize(OctData& data, int size1, int size2, int size3);
// Zeros where there is no source.
void copy_or_clear(const std::vector<float>& source, std::vector<float>& target);

// One call of a device function: notes it, waits while it is held. True when the function shall do its work.
template <class... Arguments>
bool entered(const char* function, Arguments... arguments) {
  PatternState& state = pattern_state();
  std::unique_lock lock(state.mutex);
  const int misuses_before = state.misused;
  std::string list;
  ((list += (list.empty() ? "" : ", ") + state.text(arguments)), ...);
  if (state.recording) state.recorded += std::string(function) + "(" + list + ")\n";
  if (state.held_function == function && --state.permits < 0) {
    ++state.waiting;
    state.condition.wait(lock, [&, mine = state.holds] { return state.holds != mine; });
  }
  bool failed = state.misused > misuses_before;
  const auto failure = state.failures.find(function);
  if (failure != state.failures.end()) {
    auto& [call, seen] = failure->second;
    if (++seen == call || call == 0) failed = true;
  }
  if (failed && state.error.empty()) state.error = std::string(function) + " failed";
  return !failed;
}

}  // namespace oct::test
