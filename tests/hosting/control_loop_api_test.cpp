// Exports of control loops: handles, misuse, the road from request to surface, the trace.
#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>
#include <thread>

#include "hosting/loop/functors.h"
#include "hosting/loop/render_trace.h"
#include "oct_rendering/oct_rendering.h"
#include "support/test_context.h"
#include "support/test_loop.h"

namespace oct::test {
namespace {

constexpr const char* invalidHandle = "Invalid OpenGLControlLoopHandle specified. ";

TEST(ControlLoopApiTest, NullHandles) {
  expectNullRefused(invalidHandle, deleteOpenGLControlLoop, registerOpenGLControlLoopRenderCallback,
                    registerOpenGLControlLoopCallback, snapshotOpenGLControlLoop, resizeOpenGLControlLoop,
                    OpenGLControlLoopMode, unlockBuffer, createDXSurface, copyDXSurface, destroyDXSurface);
}

// Requests come too often to leave errors behind.
TEST(ControlLoopApiTest, RequestsPostNothing) {
  for (const auto& call : std::vector<std::function<void()>>{
           [] { renderOpenGLControlLoop(nullptr); }, [] { renderMultOpenGLControlLoop(nullptr, 1); }}) {
    testing::internal::CaptureStderr();
    call();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              std::string("An error occured: ") + invalidHandle + "\n");
    EXPECT_EQ(pendingError(), "(none)");
  }
}

TEST(ControlLoopApiTest, ImageReadyWithoutFunctionWarns) {
  const std::string text = logOf([] { ImageReadyCallback{nullptr}(1, 2, 3, nullptr); });
  EXPECT_TRUE(contains(text, "Warning: returning image withoug callback being specified. \n")) << text;
}

TEST(ControlLoopApiTest, EndsOfALoopAreLogged) {
  chooseSharing(SurfaceSharing::hostMemory);
  std::string text = logOf([] { const OpenGLControlLoop loop; });
  const std::size_t finished = text.find("Rendering loop finished. \n");
  const std::size_t joined = text.find("background thread successfully joined. \n");
  EXPECT_NE(finished, std::string::npos) << text;
  EXPECT_NE(joined, std::string::npos) << text;
  EXPECT_LT(finished, joined);

  text = logOf([] { const OpenGLControlLoop loop(functor([] { throw std::runtime_error("broken"); })); });
  EXPECT_TRUE(contains(text, "Rendering loop: broken\n")) << text;
  EXPECT_FALSE(contains(text, "Rendering loop finished. ")) << text;
  text = logOf([] { const OpenGLControlLoop loop(functor([] { throw 1; })); });
  EXPECT_TRUE(contains(text, "Rendering loop, unknown error.\n")) << text;
}

Recorded<std::uint32_t>* drawn = nullptr;
Recorded<Picture>* pictures = nullptr;
Recorded<std::string>* errors = nullptr;
SurfaceSharing sharing;
OpenGLControlLoopHandle loopHandle = nullptr;

void draw(unsigned id) {
  drawPattern(id);
  drawn->add(id);
}
void show(unsigned, unsigned, unsigned, void* surface) {
  pictures->add(surfacePicture(sharing, surface));
}

class ControlLoopApiGLTest : public LoopGLTest {
 protected:
  void SetUp() override {
    LoopGLTest::SetUp();
    // The first request of the process opens the trace, if its folder is there.
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path(renderTraceFile()).parent_path(), ignored);
    sharing = GetParam();
    drawn = &drawn_;
    pictures = &pictures_;
    errors = &errors_;
    loop_ = loopHandle =
        createOpenGLControlLoopCB(nullptr, nullptr, [](const char* text) { errors->add(text); });
    ASSERT_NE(loop_, nullptr);
    registerOpenGLControlLoopRenderCallback(loop_, draw);
    registerOpenGLControlLoopCallback(loop_, show);
    resizeOpenGLControlLoop(loop_, 30, 20);
    OpenGLControlLoopMode(loop_, 0);
  }
  void TearDown() override {
    if (loop_) deleteOpenGLControlLoop(loop_);
    EXPECT_EQ(pendingError(), "(none)");
    EXPECT_EQ(errors_.all(), std::vector<std::string>{});
  }

  OpenGLControlLoopHandle loop_ = nullptr;
  Recorded<Picture> pictures_;
};

TEST_P(ControlLoopApiGLTest, FromRequestToSurface) {
  renderOpenGLControlLoop(loop_);
  pictures_.atLeast(1);
  renderMultOpenGLControlLoop(loop_, 0x345678);
  const auto all = pictures_.atLeast(2);
  ASSERT_EQ(all.size(), 2U);
  EXPECT_TRUE(agree(all[0], patternPicture(0, 30, 20), exact));
  EXPECT_TRUE(agree(all[1], patternPicture(0x345678, 30, 20), exact));
}

TEST_P(ControlLoopApiGLTest, NullKeepsTheRenderFunctionAndRemovesTheOther) {
  registerOpenGLControlLoopRenderCallback(loop_, nullptr);
  registerOpenGLControlLoopCallback(loop_, nullptr);
  renderMultOpenGLControlLoop(loop_, 3);
  EXPECT_EQ(drawn_.atLeast(1), std::vector<std::uint32_t>{3});
  unlockBuffer(loop_);
  renderMultOpenGLControlLoop(loop_, 4);
  EXPECT_EQ(drawn_.atLeast(2).size(), 2U);
  EXPECT_EQ(pictures_.all().size(), 0U);
}

TEST_P(ControlLoopApiGLTest, SnapshotsAndTheirMisuse) {
  Picture picture(11, 4);
  snapshotOpenGLControlLoop(loop_, 11, 4, picture.bytes.data());
  EXPECT_TRUE(agree(picture, patternPicture(0, 11, 4), exact));
  snapshotOpenGLControlLoop(loop_, 1, 1, nullptr);
  EXPECT_EQ(pendingError(), "Valid data pointer must be provided to take snapshot. ");
  for (const auto& [width, height] : {std::pair{-1, 1}, {1, -1}, {-5, -5}}) {
    snapshotOpenGLControlLoop(loop_, width, height, picture.bytes.data());
    EXPECT_EQ(pendingError(), "Snapshot sizes must not be negative. ");
  }
  constexpr int most = std::numeric_limits<int>::max();
  snapshotOpenGLControlLoop(loop_, most, most, picture.bytes.data());
  EXPECT_EQ(pendingError(), "The snapshot is too large. ");
}

TEST_P(ControlLoopApiGLTest, SurfacesOfTheClient) {
  static void* copy = nullptr;
  static Recorded<int> copied;
  void* const kept = createDXSurface(loop_, 30, 20);
  ASSERT_NE(kept, nullptr);
  copy = kept;
  registerOpenGLControlLoopCallback(loop_, [](unsigned, unsigned, unsigned, void* surface) {
    copyDXSurface(loopHandle, surface, copy);
    copied.add(1);
  });
  const std::size_t before = copied.all().size();
  renderMultOpenGLControlLoop(loop_, 0x102030);
  copied.atLeast(before + 1);
  EXPECT_TRUE(agree(surfacePicture(sharing, kept), patternPicture(0x102030, 30, 20), exact));

  void* const larger = createDXSurface(loop_, 60, 40);
  copyDXSurface(loop_, kept, larger);
  const Picture small = patternPicture(0x102030, 30, 20);
  Picture stretched(60, 40);
  stretched.forEach([&](int x, int y) { std::copy_n(small.pixel(x / 2, y / 2), 4, stretched.pixel(x, y)); });
  EXPECT_TRUE(agree(surfacePicture(sharing, larger), stretched, exact));

  copyDXSurface(loop_, nullptr, kept);
  EXPECT_EQ(pendingError(), "A surface to copy must not be null. ");
  EXPECT_EQ(createDXSurface(loop_, 0, 4), nullptr);
  EXPECT_EQ(pendingError(), "A surface must not be empty. ");
  destroyDXSurface(loop_, larger);
  for (void* const unknown : {larger, static_cast<void*>(nullptr)}) {
    destroyDXSurface(loop_, unknown);
    EXPECT_EQ(pendingError(), "The specified surface is unknown. ");
  }
  deleteOpenGLControlLoop(loop_);
  // The surface outlives the loop that it was made with.
  loop_ = createOpenGLControlLoop();
  EXPECT_TRUE(agree(surfacePicture(sharing, kept), patternPicture(0x102030, 30, 20), exact));
  destroyDXSurface(loop_, kept);
}

TEST_P(ControlLoopApiGLTest, DeletionFromACallbackIsReported) {
  static Recorded<std::string> texts;
  registerOpenGLControlLoopRenderCallback(loop_, [](unsigned id) {
    deleteOpenGLControlLoop(loopHandle);
    texts.add(pendingError());
    drawn->add(id);
  });
  const std::size_t before = texts.all().size();
  renderMultOpenGLControlLoop(loop_, 1);
  drawn_.atLeast(1);
  EXPECT_EQ(texts.atLeast(before + 1).back(),
            std::system_error(std::make_error_code(std::errc::resource_deadlock_would_occur)).what());
  renderMultOpenGLControlLoop(loop_, 2);
  EXPECT_EQ(drawn_.atLeast(2).size(), 2U);  // it goes on
}

TEST_P(ControlLoopApiGLTest, TheEndIsAnnounced) {
  testing::internal::CaptureStdout();
  deleteOpenGLControlLoop(loop_);
  loop_ = nullptr;
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "OpenGL control loop finished. Callbacks can be freed now. \n");
}

TEST_P(ControlLoopApiGLTest, TheTraceTellsEveryRequest) {
  const auto read = [] {
    std::ostringstream text;
    text << std::ifstream(renderTraceFile()).rdbuf();
    return text.str();
  };
  renderOpenGLControlLoop(loop_);
  const std::size_t before = read().size();
  ASSERT_GT(before, 0U) << renderTraceFile();
  renderMultOpenGLControlLoop(loop_, -7);
  renderMultOpenGLControlLoop(loop_, 12);
  renderOpenGLControlLoop(loop_);
  Picture picture(2, 2);
  snapshotOpenGLControlLoop(loop_, 2, 2, picture.bytes.data());
  EXPECT_EQ(read().substr(before), "-7\n12\n0\n0\n");
}

OCT_EVERY_SHARING(ControlLoopApiGLTest);

}  // namespace
}  // namespace oct::test
