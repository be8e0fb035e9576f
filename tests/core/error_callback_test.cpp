#include "core/error_callback.h"

#include <gtest/gtest.h>

#include "live/abstract_data_source.h"
#include "oct_rendering/oct_rendering.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

std::string received;

class Source : public AbstractDataSource {
 public:
  void set_error_callback(const ErrorCallback& callback) override { callback_ = callback; }
  ErrorCallback callback_;

  void register_live_rendering(AbstractLiveRendering*) override {}
  void deregister_renderer() override {}
  void start(ScanPatternHandle) override {}
  void stop() override {}
  void await_end() override {}
  void set_ref_intensity_callback(std::unique_ptr<RefIntensityFunctor>) override {}
  void set_size_z(std::int32_t) override {}
  void set_camera(std::int32_t) override {}
  std::int32_t get_camera() override { return 0; }
  void set_refractive_index(double) override {}
  void set_analog_input(bool) override {}
  void thread() override {}
  std::thread start_thread() override { return {}; }
};

TEST(ErrorCallbackTest, SourceKeepsItsOwnCopy) {
  Source source;
  const auto handle = reinterpret_cast<LiveDataSourceHandle>(static_cast<AbstractDataSource*>(&source));
  setErrorCallback(handle, [](const char* message) { received = message; });
  ASSERT_TRUE(source.callback_);
  source.callback_("the laser is off");
  EXPECT_EQ(received, "the laser is off");
  setErrorCallback(handle, nullptr);
  EXPECT_FALSE(source.callback_);
  EXPECT_EQ(pendingError(), "(none)");
}

TEST(ErrorCallbackTest, NullHandle) {
  setErrorCallback(nullptr, nullptr);
  EXPECT_EQ(pendingError(), "The specified LiveDataSourceHandle is invalid. ");
}

}  // namespace
}  // namespace oct::test
