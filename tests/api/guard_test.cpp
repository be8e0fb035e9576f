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
    int number = 7;
    const char* pointer = "something";
    std::string printed;
    const std::string logged = log_of([&] {
      testing::internal::CaptureStderr();
      number = api::guarded(name, [&] { return thrower(), 7; });
      printed = testing::internal::GetCapturedStderr();
    });
    EXPECT_EQ(number, 0) << name;
    EXPECT_EQ(printed, "An error occured: " + std::string(text) + "\n") << name;
    EXPECT_EQ(logged, std::string(name) + ": " + text + "\n");
    EXPECT_EQ(pending_error(), text) << name;

    // Those that are never posted leave a line on the standard error stream and nothing else.
    const std::string quietly_logged = log_of([&] {
      testing::internal::CaptureStderr();
      pointer = api::guarded_unposted([&]() -> const char* { return thrower(), "something"; });
      printed = testing::internal::GetCapturedStderr();
    });
    EXPECT_EQ(pointer, nullptr) << name;
    EXPECT_EQ(printed, "An error occured: " + std::string(text) + "\n") << name;
    EXPECT_EQ(quietly_logged, "") << name;
    EXPECT_EQ(pending_error(), "(none)") << name;
  }
  EXPECT_EQ(api::guarded("fine", [] { return 7; }), 7);
  static_assert(
      noexcept(api::guarded("", [] { throw 1; }))&& noexcept(api::guarded_unposted([] { throw 1; })));
}

// The name that an export gives is its own.
TEST(GuardTest, TheLogNamesTheExport) {
  const std::string logged = log_of([] {
    clearDisplayData(nullptr);
    pending_error();
    stopDataSource(nullptr);
    pending_error();
    setOnlineRefractiveIndex(nullptr, -1.0);  // takes a null handle without a word
    renderOpenGLControlLoop(nullptr);
  });
  EXPECT_EQ(logged,
            "clearDisplayData: Invalid DisplayRenderingHandle specified. \n"
            "stopDataSource: The specified LiveDataSourceHandle is invalid. \n");
}

}  // namespace
}  // namespace oct::test
