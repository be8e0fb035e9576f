// A device library whose volumes tell where they come from, and that does what a test asks for.
#pragma once

#include <array>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <sstream>
#include <vector>

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
  int analog_lacks = 0;  // B-scans
  std::vector<float> analog;
  std::map<std::string, std::pair<int, int>> failures;  // which call, and how many have been seen
  std::string recorded;
  std::string error;
  std::set<OCTDeviceHandle> measuring;
  int acquired = 0;
  int lost = 0;
  std::map<ProcessingHandle, DataHandle> data_outputs;
  std::map<ProcessingHandle, ComplexDataHandle> complex_outputs;
  DataHandle polarization_output = nullptr;
  int quantity = 0;
};

// Every sample of a volume has the same value: the quantity that it shows as whole number, and a fraction of
// its own. A volume made of two is thus seen. A test may supply the samples instead. What tests call is
// virtual, so that the library's own code runs.
class PatternDevice : public PatternSettings {
 public:
  virtual ~PatternDevice() = default;

  // Everything as at first: 16 x 12 x 10 samples, 2 x 3 x 1.5 mm, nothing failing, held or recorded.
  virtual void reset() {
    release();
    const std::lock_guard lock(mutex);
    static_cast<PatternSettings&>(*this) = {};
    names = {{&polarizations, "polarization"}, {&patterns, "scan"}};
    for (int i = 0; i < devices; ++i) {
      names[&device_objects[i]] = "device" + (i > 0 ? std::to_string(i) : "");
      names[&processings[i]] = "processing" + std::to_string(i);
    }
  }

  // So many devices measure at the same time, each with processings of its own.
  static constexpr int devices = 16;
  OCTDeviceHandle device(int number = 0) {
    return reinterpret_cast<OCTDeviceHandle>(&device_objects[number]);
  }
  ProcessingHandle processing(int number) { return reinterpret_cast<ProcessingHandle>(&processings[number]); }
  PolarizationProcessingHandle polarization() {
    return reinterpret_cast<PolarizationProcessingHandle>(&polarizations);
  }
  ScanPatternHandle scan_pattern() { return reinterpret_cast<ScanPatternHandle>(&patterns); }

  // From the next volume on.
  virtual void set_size(int size1, int size2, int size3) { set(size, {size1, size2, size3}); }
  virtual void set_volume(const float* samples) { set(volume, {samples, samples + a_scans() * size[0]}); }
  // At first two channels of zeros.
  virtual void set_analog(int count, const float* samples) {
    set(channels, count);
    set(analog, {samples, samples + count * a_scans()});
  }
  // The analog input has fewer B-scans than the volume.
  virtual void shorten_analog(int b_scans) { set(analog_lacks, b_scans); }

  // The call of that number from now on, 0: every one, does nothing but leave "<function> failed".
  virtual void fail(const char* function, int call) {
    const std::lock_guard lock(mutex);
    failures[function] = {call, 0};
  }

  // Calls of the function wait until another one is held or release().
  virtual void hold(const char* function) {
    {
      const std::lock_guard lock(mutex);
      held_function = function;
      waiting = 0;
      ++holds;
    }
    condition.notify_all();
  }
  virtual bool held() { return get(waiting) > 0; }  // whether a call waits
  virtual void release() { hold(""); }

  virtual void record() { set(recorded, {}); }           // begins a new record
  virtual std::string calls() { return get(recorded); }  // one per line

  virtual int volumes() { return get(acquired); }                        // since the reset
  virtual int objects() { return static_cast<int>(get(alive).size()); }  // created and not cleared
  virtual int misuses() { return get(misused); }  // handles that were null or not alive

  static constexpr int sensor0 = 0;  // quantities; polarization outputs by their number, intensity 10
  static constexpr int intensity = 10;
  static constexpr int sensor1 = 8;

  // Objects that tests pass through without owning them.
  int device_objects[devices] = {};
  int processings[devices] = {};
  int polarizations = 0;
  int patterns = 0;

  std::mutex mutex;
  std::condition_variable condition;
  std::string held_function;
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

  // The next object may get the address: nobody's output is to be taken for it.
  void clear(const void* object) {
    const std::lock_guard lock(mutex);
    names.erase(object);
    alive.erase(object);
    const auto is_output = [object](const auto& output) { return output.second == object; };
    std::erase_if(data_outputs, is_output);
    std::erase_if(complex_outputs, is_output);
    if (polarization_output == object) polarization_output = nullptr;
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

PatternDevice& pattern_state();

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
  PatternDevice& state = pattern_state();
  std::unique_lock lock(state.mutex);
  const int misuses_before = state.misused;
  std::string list;
  ((list += (list.empty() ? "" : ", ") + state.text(arguments)), ...);
  state.recorded += std::string(function) + "(" + list + ")\n";
  if (state.held_function == function) {
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

extern "C" OCT_DEVICE_API oct::test::PatternDevice* patternDevice();
