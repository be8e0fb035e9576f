#include "api/guard.h"

#include <functional>
#include <stdexcept>
#include <string>

#include "core/exception.h"
#include "oct_rendering/oct_rendering.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

constexpr const char* unknown = "Something that is no exception was thrown. ";

struct Case {
  const char* name;
  std::function<void()> thrower;
  const char* text;
};

// Every channel by itself: the store and the standard error stream have the bare text, the log has the name
// of the export, and the client gets the neutral result, whatever was thrown.
TEST(GuardTest, WhateverIsThrownEndsHere) {
  for (const auto& [name, thrower, text] : std::initializer_list<Case>{
           {"aHandle", [] { throw std::invalid_argument("bad handle. "); }, "bad handle. "},
           {"anEmptyText", [] { throw Exception(""); }, ""},
           {"aNumber", [] { throw 42; }, unknown},
           {"aText", [] { throw "text"; }, unknown}}) {
    // Those that are never posted leave a line on the standard error stream and nothing else.
    for (const bool posted : {true, false}) {
      std::string printed;
      const std::string logged = log_of([&, name = name, thrower = thrower] {
        const auto body = [&] { return thrower(), 7; };
        testing::internal::CaptureStderr();
        EXPECT_EQ(posted ? api::guarded(name, body) : api::guarded_unposted(body), 0) << name;
        printed = testing::internal::GetCapturedStderr();
      });
      EXPECT_EQ(printed, "An error occured: " + std::string(text) + "\n") << name;
      EXPECT_EQ(logged, posted ? std::string(name) + ": " + text + "\n" : "");
      EXPECT_EQ(pending_error(), posted ? text : "(none)") << name;
    }
  }
  EXPECT_EQ(api::guarded("fine", [] { return 7; }), 7);
  static_assert(
      noexcept(api::guarded("", [] { throw 1; }))&& noexcept(api::guarded_unposted([] { throw 1; })));
}

// The name that an export gives is its own.
TEST(GuardTest, TheLogNamesTheExport) {
  const std::string logged = log_of([] {
    clearDisplayData(nullptr);
    stopDataSource(nullptr);
    setOnlineRefractiveIndex(nullptr, -1.0);  // takes a null handle without a word
    renderOpenGLControlLoop(nullptr);
  });
  EXPECT_EQ(logged,
            "clearDisplayData: Invalid DisplayRenderingHandle specified. \n"
            "stopDataSource: The specified LiveDataSourceHandle is invalid. \n");
  pending_error();
}

}  // namespace
}  // namespace oct::test
