// The library loaded, used and unloaded by name, as a measurement application does it.
#include <array>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "core/shared_block.h"
#include "library/dynamic_library.h"
#include "oct_rendering/oct_rendering.h"

namespace oct::test {
namespace {

// Draws an image of one bright A-scan and returns the brightness of a pixel of it and of one beside.
std::array<int, 2> draw(const DynamicLibrary& library) {
  const auto create_target = library.function<decltype(createOffscreenTarget)>("createOffscreenTarget");
  const auto clear_target = library.function<decltype(clearOffscreenTarget)>("clearOffscreenTarget");
  const auto begin = library.function<decltype(beginOffscreenFrame)>("beginOffscreenFrame");
  const auto finish = library.function<decltype(finishOffscreenFrame)>("finishOffscreenFrame");
  const auto create = library.function<decltype(createDisplayRendering)>("createDisplayRendering");
  const auto clear = library.function<decltype(clearDisplayRendering)>("clearDisplayRendering");
  const auto init = library.function<decltype(initDisplayRendering)>("initDisplayRendering");
  const auto uninit = library.function<decltype(uninitDisplayRendering)>("uninitDisplayRendering");
  const auto render = library.function<decltype(renderDisplay)>("renderDisplay");
  const auto set_data = library.function<decltype(setDisplayData)>("setDisplayData");

  std::vector<float> image(8 * 8, 0.0F);
  for (std::size_t z = 0; z < 8; ++z) image[2 * 8 + z] = 1.0F;  // A-scan 2
  std::array<std::array<std::array<unsigned char, 4>, 8>, 8> pixels{};
  const OffscreenTargetHandle target = create_target();
  const DisplayRenderingHandle renderer = create();
  init(renderer);
  set_data(renderer, 8, 8, image.data());
  begin(target, 8, 8);
  render(renderer);
  finish(target, pixels.data());
  uninit(renderer);
  clear(renderer);
  clear_target(target);
  return {pixels[5][2][0], pixels[5][3][0]};
}

TEST(LifetimeGLTest, LoadedUsedAndUnloadedManyTimes) {
  for (const char* const quiet : {static_cast<const char*>(nullptr), "", "0", "1", "yes"}) {
    set_environment("OCT_RENDERING_QUIET", quiet);
    testing::internal::CaptureStdout();
    {
      const DynamicLibrary library(OCT_LIBRARY_FILE);
      EXPECT_STREQ(library.function<decltype(getRendererVersion)>("getRendererVersion")(), OCT_VERSION);
      EXPECT_EQ(draw(library), (std::array<int, 2>{255, 0}));
      EXPECT_EQ(library.function<decltype(isRendererError)>("isRendererError")(), 0);
      library.function<decltype(setDisplayFlip)>("setDisplayFlip")(nullptr, 1);
      EXPECT_EQ(library.function<decltype(isRendererError)>("isRendererError")(), OCT_RENDERER_ERROR);
    }  // the pending error goes with the library
    const std::string output = testing::internal::GetCapturedStdout();
    if (quiet && (*quiet == '1' || *quiet == 'y')) {
      EXPECT_EQ(output, "");
      continue;
    }
    EXPECT_EQ(output.find("Process attach... "), 0U) << output;
    EXPECT_NE(output.find("Found OpenGL "), std::string::npos) << output;
    EXPECT_NE(output.find("\nProcess detach... "), std::string::npos) << output;
  }
  set_environment("OCT_RENDERING_QUIET", nullptr);
}

// Loaded where the environment asks for a trace: it is whole when the library is gone, and a path that cannot be opened
// costs a line.
TEST(LifetimeGLTest, TracesWhatTheEnvironmentAsksFor) {
  const std::string file = testing::TempDir() + "oct_environment.json";
  for (const std::string& path : {file, file + "/no folder"}) {
    set_environment("OCT_RENDERING_TRACE", path.c_str());
    testing::internal::CaptureStderr();
    {
      const DynamicLibrary library(OCT_LIBRARY_FILE);
      EXPECT_EQ(draw(library), (std::array<int, 2>{255, 0}));
      EXPECT_EQ(library.function<decltype(isRendererError)>("isRendererError")(), 0);
    }
    const std::string errors = testing::internal::GetCapturedStderr();
    const std::string line = "OCT_RENDERING_TRACE: The trace file could not be opened: ";
    EXPECT_EQ(errors.find(line) == 0, path != file) << errors;
  }
  set_environment("OCT_RENDERING_TRACE", "");
  std::ifstream stream(file);
  const std::string trace((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
  EXPECT_NE(trace.find("\"name\":\"GPU, "), std::string::npos);
  EXPECT_EQ(trace.find("\n]\n"), trace.size() - 3);
  stream.close();
  std::remove(file.c_str());
}

// A client that unloads the library without finishOpenGL does not take the code from under the host thread.
TEST(LifetimeGLTest, StaysLoadedWhileItsHostThreadLives) {
  const auto output_of_use = [](const char* function) {
    testing::internal::CaptureStdout();
    {
      const DynamicLibrary library(OCT_LIBRARY_FILE);
      library.function<decltype(prepareOpenGL)>(function)();
    }
    return testing::internal::GetCapturedStdout();
  };
  for (int round = 0; round < 3; ++round) {
    EXPECT_EQ(output_of_use("prepareOpenGL").find("Process detach"), std::string::npos);
    EXPECT_NE(output_of_use("finishOpenGL").find("Process detach"), std::string::npos);
  }
}

// The log's settings as another process finds them.
TEST(SharedLogTest, NameOfTheFileIsInTheBlockOfAllProcesses) {
  const DynamicLibrary library(OCT_LIBRARY_FILE);
  const auto set_log_file = library.function<decltype(setRendererLogFile)>("setRendererLogFile");
  const SharedBlock block("oct_log_settings");
  const std::string name = "no/such/folder/" + std::to_string(std::random_device{}());
  std::string found;
  // Others on the machine may write to the block in between, but not each time.
  for (int i = 0; i < 20 && found != name; ++i) {
    set_log_file(name.c_str());
    const SharedBlock::Bytes bytes = block.read();
    found.assign(bytes.data(), strnlen(bytes.data(), bytes.size()));
  }
  EXPECT_EQ(found, name);
  set_log_file(nullptr);
}

}  // namespace
}  // namespace oct::test
