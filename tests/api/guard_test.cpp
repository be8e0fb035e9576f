#include "api/guard.h"

#include <functional>
#include <new>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>

#include "core/exception.h"
#include "oct_rendering/oct_rendering.h"
#include "support/gl_spy.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

constexpr const char* unknown = "Something that is no exception was thrown. ";

struct Case {
  const char* name;
  std::function<void()> thrower;
  const char* text;
  OctErrorKind kind;
};

template <class Error>
std::function<void()> throwing(const char* text) {
  return [=] { throw Error(text); };
}

// Every channel by itself: the store and the standard error stream have the bare text, the log has the name
// of the export, and the client gets the neutral result, whatever was thrown.
TEST(GuardTest, WhateverIsThrownEndsHere) {
  for (const auto& [name, thrower, text, kind] : std::initializer_list<Case>{
           {"aHandle", throwing<std::invalid_argument>("bad handle. "), "bad handle. ", OCT_ERROR_ARGUMENT},
           {"aSize", throwing<std::length_error>("too long"), "too long", OCT_ERROR_ARGUMENT},
           {"anEmptyText", throwing<OpenGLError>(""), "", OCT_ERROR_OPENGL},
           {"anOrder", throwing<StateError>("too early"), "too early", OCT_ERROR_STATE},
           {"aDevice", throwing<DeviceError>("no device"), "no device", OCT_ERROR_DEVICE},
           {"aFile", throwing<SystemError>("no file"), "no file", OCT_ERROR_SYSTEM},
           {"anError", throwing<std::runtime_error>("no idea"), "no idea", OCT_ERROR_SYSTEM},
           {"aVideoMemory", throwing<MemoryError>("no texture"), "no texture", OCT_ERROR_MEMORY},
           {"anAllocation", [] { throw std::bad_alloc(); }, "std::bad_alloc", OCT_ERROR_MEMORY},
           {"aThread",
            [] { throw std::system_error(std::make_error_code(std::errc::resource_deadlock_would_occur)); },
            "Resource deadlock avoided", OCT_ERROR_STATE},
           {"noThread", [] { throw std::system_error(std::make_error_code(std::errc::too_many_files_open)); },
            "Too many open files", OCT_ERROR_SYSTEM},
           {"aNumber", [] { throw 42; }, unknown, OCT_ERROR_SYSTEM},
           {"aText", [] { throw "text"; }, unknown, OCT_ERROR_SYSTEM}}) {
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
      if (posted) {
        EXPECT_EQ(getRendererErrorKind(), kind) << name;
      }
      EXPECT_EQ(pending_error(), posted ? text : "(none)") << name;
      EXPECT_EQ(getRendererErrorKind(), kind) << name << ", of the text read last";
    }
  }
  EXPECT_EQ(api::guarded("fine", [] { return 7; }), 7);
  static_assert(
      noexcept(api::guarded("", [] { throw 1; }))&& noexcept(api::guarded_unposted([] { throw 1; })));
}

// From the type of what is thrown, wherever it comes from.
void expect_kinds_of_every_family() {
  EXPECT_EQ(getRendererErrorKind(), OCT_ERROR_NONE);
  const OffscreenTargetHandle target = createOffscreenTarget();
  GlSpy spy;
  const auto fail = [&](const char* function, GLenum error) {
    spy.fail_next(function, 1, error);
    beginOffscreenFrame(target, 8, 8);
  };
  char no_device = 0;
  const auto device = reinterpret_cast<OCTDeviceHandle>(&no_device);
  const auto processing = reinterpret_cast<ProcessingHandle>(&no_device);
  const std::initializer_list<std::pair<std::function<void()>, OctErrorKind>> calls{
      {[] { clearDisplayData(nullptr); }, OCT_ERROR_ARGUMENT},
      {[&] { clearOffscreenTarget(reinterpret_cast<OffscreenTargetHandle>(&no_device)); },
       OCT_ERROR_ARGUMENT},
      {[] { setSurfaceSharing(7); }, OCT_ERROR_ARGUMENT},
      {[&] { finishOffscreenFrame(target, nullptr); }, OCT_ERROR_STATE},
      {[&] { fail("glFramebufferRenderbuffer", GL_INVALID_OPERATION); }, OCT_ERROR_OPENGL},
      {[&] { fail("glRenderbufferStorage", GL_OUT_OF_MEMORY); }, OCT_ERROR_MEMORY},
      {[&] { createOnlineDataSource(device, processing); }, OCT_ERROR_DEVICE}};
  setDeviceLibrary("no_such_device_library");
  int row = 0;
  for (const auto& [call, kind] : calls) {
    // Its own while it is pending, even if another thread's is read meanwhile by that thread.
    call();
    std::thread([] {
      EXPECT_EQ(getRendererErrorKind(), OCT_ERROR_NONE);
      setDisplayFlip(nullptr, 0);
      EXPECT_EQ(getRendererErrorKind(), OCT_ERROR_ARGUMENT);
      pending_error();
    }).join();
    EXPECT_EQ(getRendererErrorKind(), kind) << row;
    // Without one of its own a thread reads this one, and has its kind.
    std::thread([kind = kind, row] {
      EXPECT_NE(pending_error(), "(none)") << row;
      EXPECT_EQ(getRendererErrorKind(), kind) << row;
    }).join();
    ++row;
  }
  EXPECT_EQ(getRendererErrorKind(), OCT_ERROR_NONE);  // this thread has read none
  setDeviceLibrary(nullptr);
  clearOffscreenTarget(target);
}

TEST(GuardTest, EveryFamilyTellsTheKindOfItsErrors) {
  std::thread(expect_kinds_of_every_family).join();  // one that has read no error yet
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
