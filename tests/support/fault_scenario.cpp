#include "support/fault_scenario.h"

#include <iostream>
#include <set>

#include "support/gl_spy.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

// Without its vertex array an indexed draw reads from address 0 on, and drivers crash. None refuses an array that it made.
bool can_fail(const std::string& function) {
  return function.starts_with("gl") && !function.starts_with("glGet") && !function.starts_with("glDelete") &&
         !function.starts_with("glUnmap") && function != "glBindVertexArray";
}

class FaultRun {
 public:
  explicit FaultRun(const FaultScenario& scenario) : scenario_(scenario) {
    scenario_.error();
    scenario_.start();
    expected_ = scenario_.frame();
    scenario_.frame();
    scenario_.stop();
    EXPECT_EQ(scenario_.error(), "(none)");
    objects_ = spy_.live_objects();
    calls_ = spy_.all_calls();
  }

  void every_call() {
    for (const auto& [function, count] : calls_) {
      if (!can_fail(function)) continue;
      std::set<int> indices{count / 2};
      if (OCT_EVERY_FAULT) indices.insert({0, std::min(1, count - 1), count - 1});
      for (const int index : indices) {
        SCOPED_TRACE(function + ", call " + std::to_string(index) + " of " + std::to_string(count));
        one_call(function, index);
        ++faults_;
      }
    }
    std::cout << faults_ << " faults, " << reported_ << " reported\n";
  }

 private:
  void one_call(const std::string& function, int index) {
    spy_.forget_calls();
    spy_.fail_next(function, 1,
                   function == "glCheckFramebufferStatus" ? GL_FRAMEBUFFER_UNSUPPORTED : GL_OUT_OF_MEMORY,
                   index);
    scenario_.start();
    const std::string start_error = scenario_.error();
    const Picture picture = scenario_.frame();
    const std::string frame_error = scenario_.error();
    const bool reported = start_error != "(none)" || frame_error != "(none)";
    reported_ += reported;
    EXPECT_TRUE(reported || agree(picture, expected_)) << "wrong without a word";
    spy_.forget_calls();
    expect_recovery(start_error != "(none)" || (reported && scenario_.dies_of_errors));
    scenario_.stop();
    EXPECT_EQ(scenario_.error(), "(none)");
    EXPECT_EQ(spy_.live_objects(), objects_) << "after " << start_error << ", " << frame_error;
  }

  // What failed behind the last checkpoint of one frame is reported by the next, once.
  void expect_recovery(bool restart) {
    Picture picture;
    std::string error;
    for (int attempt = 0; attempt < 2; ++attempt) {
      if (restart) {
        scenario_.start();
        scenario_.error();
      }
      picture = scenario_.frame();
      error = scenario_.error();
      if (error == "(none)") break;
      restart = scenario_.dies_of_errors;
    }
    EXPECT_EQ(error, "(none)");
    EXPECT_TRUE(agree(picture, expected_));
  }

  const FaultScenario& scenario_;
  GlSpy spy_;
  Picture expected_;
  std::size_t objects_ = 0;
  std::map<std::string, int> calls_;
  int faults_ = 0;
  int reported_ = 0;
};

}  // namespace

void fail_every_call(const FaultScenario& scenario) {
  FaultRun(scenario).every_call();
}

}  // namespace oct::test
