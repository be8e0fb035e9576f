// Which library the sources' functions come from.
#include <memory>

#include <gtest/gtest.h>

#include "live/pattern_device.h"
#include "module/shared_library.h"
#include "oct_rendering/oct_rendering.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

// Functions of another library get handles of this one and find them foreign, which binding does not mind.
class DeviceBindingTest : public testing::Test {
 protected:
  ~DeviceBindingTest() override { setDeviceLibrary(nullptr); }

  bool creates_standard() {
    const LiveDataSourceHandle source = createOnlineDataSource(device_, processing_);
    clearDataSource(source);
    return source != nullptr;
  }
  bool creates_polarization() {
    const LiveDataSourceHandle source =
        createOnlineDataSource_PS(device_, processing_, processing_, polarization_);
    clearDataSource(source);
    return source != nullptr;
  }

  static PatternDevice& control_of(const char* library) {
    void* const function = SharedLibrary(library).symbol("patternDevice");
    PatternDevice& pattern = *reinterpret_cast<decltype(patternDevice)*>(function)();
    pattern.reset();
    return pattern;
  }

  int object_ = 0;
  OCTDeviceHandle device_ = reinterpret_cast<OCTDeviceHandle>(&object_);
  ProcessingHandle processing_ = reinterpret_cast<ProcessingHandle>(&object_);
  PolarizationProcessingHandle polarization_ = reinterpret_cast<PolarizationProcessingHandle>(&object_);
};

TEST_F(DeviceBindingTest, AMissingLibraryIsNamed) {
  for (const char* const name : {"no_such_device", "/no/such/folder/device.so"}) {
    setDeviceLibrary(name);
    EXPECT_FALSE(creates_standard());
    const std::string expected = "The device library \"" + std::string(name) + "\" could not be loaded: ";
    const std::string error = pending_error();
    EXPECT_EQ(error.substr(0, expected.size()), expected);
    EXPECT_GT(error.size(), expected.size() + 3) << "the system's reason";
    EXPECT_FALSE(creates_polarization());
    EXPECT_EQ(pending_error().substr(0, expected.size()), expected);
  }
  setDeviceLibrary(OCT_PATTERN_DEVICE);
  EXPECT_TRUE(creates_standard()) << "the next attempt";
  EXPECT_EQ(pending_error(), "(none)");
}

// Without the polarization functions only the source that needs them fails.
TEST_F(DeviceBindingTest, AMissingFunctionIsNamed) {
  setDeviceLibrary(OCT_LACKING_PATTERN_DEVICE);
  EXPECT_FALSE(creates_standard());
  EXPECT_EQ(pending_error(),
            "The device library \"" OCT_LACKING_PATTERN_DEVICE "\" has no function \"determineSurface\". ");
  setDeviceLibrary(OCT_STANDARD_PATTERN_DEVICE);
  EXPECT_FALSE(creates_polarization());
  EXPECT_EQ(pending_error(),
            "The device library \"" OCT_STANDARD_PATTERN_DEVICE "\" has no function \"createComplexData\". ");
  EXPECT_TRUE(creates_standard());
  EXPECT_EQ(pending_error(), "(none)");
}

// A source keeps the library that it was made with; the next one comes from the one named last.
TEST_F(DeviceBindingTest, LibrariesChangeWithTheNextSource) {
  setDeviceLibrary(OCT_PATTERN_DEVICE);
  PatternDevice& pattern = control_of(OCT_PATTERN_DEVICE);
  pattern.record();
  const LiveDataSourceHandle source = createOnlineDataSource(pattern.device(), pattern.processing(0));
  setDeviceLibrary(OCT_STANDARD_PATTERN_DEVICE);
  EXPECT_TRUE(creates_standard());
  setSizeZ(source, 3);
  clearDataSource(source);
  EXPECT_EQ(pattern.calls(),
            "getDevicePropertyInt(device, 0)\ngetDevicePropertyFloat(device, 1)\n"
            "getDevicePropertyFloat(device, 1)\n");
}

// By its bare name the module that the process has loaded is found, wherever that lies.
TEST_F(DeviceBindingTest, ALoadedModuleIsFoundByItsName) {
  PatternDevice& pattern = control_of(OCT_DEFAULT_PATTERN_DEVICE);
  for (const char* const name : {"", "oct_device"}) {
    setDeviceLibrary("no_such_device");
    setDeviceLibrary(name);
    pattern.record();
    const LiveDataSourceHandle source = createOnlineDataSource(pattern.device(), pattern.processing(0));
    EXPECT_NE(source, nullptr);
    EXPECT_EQ(pattern.calls(), "getDevicePropertyInt(device, 0)\ngetDevicePropertyFloat(device, 1)\n");
    clearDataSource(source);
  }
  EXPECT_EQ(pending_error(), "(none)");
}

}  // namespace
}  // namespace oct::test
