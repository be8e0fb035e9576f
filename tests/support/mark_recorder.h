// Listens to timing marks.
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "core/timing_mark.h"

namespace oct::test {

// Keeps the marks of each thread in their order: "+phase", "-phase" at its end,
// "!instant". Listens as long as it lives.
class MarkRecorder : public TimingListener {
 public:
  using Marks = std::vector<std::string>;

  MarkRecorder() { add_timing_listener(*this); }
  ~MarkRecorder() override {
    remove_timing_listener(*this);
    await_timing_calls(*this);
  }
  void begin(std::string_view name, std::uint32_t thread, Time time) override {
    add('+', name, thread, time);
  }
  void end(std::string_view name, std::uint32_t thread, Time time) override { add('-', name, thread, time); }
  void instant(std::string_view name, std::uint32_t thread, Time time) override {
    add('!', name, thread, time);
  }

  std::map<std::uint32_t, Marks> all() {
    const std::lock_guard lock(mutex_);
    return marks_;
  }

 private:
  void add(char kind, std::string_view name, std::uint32_t thread, Time time) {
    const std::lock_guard lock(mutex_);
    EXPECT_GE(time, last_[thread]);
    last_[thread] = time;
    marks_[thread].push_back(kind + std::string(name));
  }

  std::mutex mutex_;
  std::map<std::uint32_t, Marks> marks_;
  std::map<std::uint32_t, Time> last_;
};

}  // namespace oct::test
