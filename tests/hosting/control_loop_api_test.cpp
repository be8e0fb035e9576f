// Exports of control loops: handles, misuse, the road from request to surface, the trace.
#include <filesystem>
#include <limits>

#include "hosting/loop/render_trace.h"
#include "oct_rendering/oct_rendering.h"
#include "support/test_context.h"
#include "support/test_loop.h"

namespace oct::test {
namespace {

constexpr const char* invalid_handle = "Invalid OpenGLControlLoopHandle specified. ";

TEST(ControlLoopApiTest, NullHandles) {
  expect_null_refused(invalid_handle, deleteOpenGLControlLoop, registerOpenGLControlLoopRenderCallback,
                      registerOpenGLControlLoopCallback, snapshotOpenGLControlLoop, resizeOpenGLControlLoop,
                      OpenGLControlLoopMode, unlockBuffer, createDXSurface, copyDXSurface, destroyDXSurface);
  // Requests come too often to leave errors behind.
  testing::internal::CaptureStderr();
  renderOpenGLControlLoop(nullptr);
  renderMultOpenGLControlLoop(nullptr, 1);
  const std::string line = std::string("An error occured: ") + invalid_handle + "\n";
  EXPECT_EQ(testing::internal::GetCapturedStderr(), line + line);
  EXPECT_EQ(pending_error(), "(none)");
}

// Functions of a client know no object; there is one loop at a time.
OpenGLControlLoopHandle loop = nullptr;
SurfaceSharing sharing;
void* copy = nullptr;  // of what is shown
void* shown = nullptr;
Recorded<std::uint32_t> drawn;
Recorded<Picture> pictures;
Recorded<std::string> errors;

void draw(unsigned id) {
  draw_pattern(id);
  if (id == 4) deleteOpenGLControlLoop(loop);
  drawn.add(id);
}
void show(unsigned, unsigned, unsigned, void* surface) {
  if (copy) {
    copyDXSurface(loop, surface, copy);
    EXPECT_EQ(pending_error(), "(none)");
    destroyDXSurface(loop, surface);
    EXPECT_EQ(pending_error(), "The specified surface is unknown. ") << "a frame is not the client's to free";
  }
  shown = surface;
  pictures.add(surface_picture(sharing, surface));
}

class ControlLoopApiGLTest : public LoopGLTest {
 protected:
  void SetUp() override {
    LoopGLTest::SetUp();
    // The first request of the process opens the trace, if its folder is there.
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path(render_trace_file()).parent_path(), ignored);
    sharing = GetParam();
    drawn.clear();
    pictures.clear();
    errors.clear();
    loop = createOpenGLControlLoopCB(nullptr, nullptr, [](const char* text) { errors.add(text); });
    ASSERT_NE(loop, nullptr);
    registerOpenGLControlLoopRenderCallback(loop, draw);
    registerOpenGLControlLoopCallback(loop, show);
    resizeOpenGLControlLoop(loop, 30, 20);
    OpenGLControlLoopMode(loop, 0);
  }
  void TearDown() override {
    testing::internal::CaptureStdout();
    deleteOpenGLControlLoop(loop);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "OpenGL control loop finished. Callbacks can be freed now. \n");
    EXPECT_EQ(pending_error(), "(none)");
    EXPECT_EQ(errors.all(), std::vector<std::string>{});
  }
};

TEST_P(ControlLoopApiGLTest, FromRequestToSurface) {
  renderOpenGLControlLoop(loop);
  EXPECT_TRUE(agree(pictures.at_least(1).at(0), pattern_picture(0, 30, 20), exact));
  renderMultOpenGLControlLoop(loop, 0x345678);
  EXPECT_TRUE(agree(pictures.at_least(2).at(1), pattern_picture(0x345678, 30, 20), exact));
  // Null keeps the render function and removes the other.
  registerOpenGLControlLoopRenderCallback(loop, nullptr);
  registerOpenGLControlLoopCallback(loop, nullptr);
  for (const int id : {3, 4, 5}) {
    renderMultOpenGLControlLoop(loop, id);
    drawn.at_least(static_cast<std::size_t>(id));
    unlockBuffer(loop);
  }
  EXPECT_EQ(pending_error(),
            std::system_error(std::make_error_code(std::errc::resource_deadlock_would_occur)).what())
      << "deletion from its own thread";
  EXPECT_EQ(drawn.all(), (std::vector<std::uint32_t>{0, 0x345678, 3, 4, 5}));
  EXPECT_EQ(pictures.all().size(), 2U);
}

// Each object of a client hears of its own loop; null keeps the render function and removes the other.
TEST_P(ControlLoopApiGLTest, CallbacksGetTheirPointerBack) {
  const struct User {
    std::unique_ptr<Recorded<std::uint32_t>> drawn = std::make_unique<Recorded<std::uint32_t>>();
    std::unique_ptr<Recorded<std::uint32_t>> shown = std::make_unique<Recorded<std::uint32_t>>();
  } one, other;
  const OpenGLControlLoopHandle second = createOpenGLControlLoop();
  for (const auto& [handle, user] : {std::pair{loop, &one}, std::pair{second, &other}}) {
    void* const pointer = const_cast<User*>(user);
    registerOpenGLControlLoopRenderCallbackWithUser(
        handle, [](unsigned id, void* user) { static_cast<User*>(user)->drawn->add(id); }, pointer);
    registerOpenGLControlLoopRenderCallbackWithUser(handle, nullptr, pointer);
    registerOpenGLControlLoopCallbackWithUser(
        handle,
        [](unsigned index, unsigned, unsigned, void*, void* user) {
          static_cast<User*>(user)->shown->add(index);
        },
        pointer);
    resizeOpenGLControlLoop(handle, 4, 4);
    OpenGLControlLoopMode(handle, 0);
  }
  renderMultOpenGLControlLoop(loop, 7);
  renderMultOpenGLControlLoop(second, 9);
  EXPECT_EQ(one.shown->at_least(1), std::vector<std::uint32_t>{7});
  EXPECT_EQ(other.shown->at_least(1), std::vector<std::uint32_t>{9});
  registerOpenGLControlLoopCallbackWithUser(second, nullptr, nullptr);
  renderMultOpenGLControlLoop(second, 10);
  EXPECT_EQ(other.drawn->at_least(2), (std::vector<std::uint32_t>{9, 10}));
  deleteOpenGLControlLoop(second);
  EXPECT_EQ(one.drawn->all(), std::vector<std::uint32_t>{7});
  EXPECT_EQ(other.shown->all(), std::vector<std::uint32_t>{9});
}

TEST_P(ControlLoopApiGLTest, SnapshotsTheirMisuseAndTheTrace) {
  const auto trace = [] { return text_of(render_trace_file()); };
  renderOpenGLControlLoop(loop);
  const std::size_t before = trace().size();
  ASSERT_GT(before, 0U) << render_trace_file();
  Picture picture(11, 4);
  snapshotOpenGLControlLoop(loop, 11, 4, picture.bytes.data());
  EXPECT_TRUE(agree(picture, pattern_picture(0, 11, 4), exact));
  constexpr int most = std::numeric_limits<int>::max();
  for (const auto& [width, height, data, message] :
       {std::tuple{1, 1, static_cast<void*>(nullptr),
                   "Valid data pointer must be provided to take snapshot. "},
        {-1, 1, &picture, "Snapshot sizes must not be negative. "},
        {1, -1, &picture, "Snapshot sizes must not be negative. "},
        {most, most, &picture, "The snapshot is too large. "}}) {
    snapshotOpenGLControlLoop(loop, width, height, data);
    EXPECT_EQ(pending_error(), message);
  }
  for (const int id : {-7, 12}) renderMultOpenGLControlLoop(loop, id);
  EXPECT_EQ(trace().substr(before), "0\n-7\n12\n");
}

TEST_P(ControlLoopApiGLTest, SurfacesOfTheClient) {
  const auto expect_kept = [&] {
    EXPECT_TRUE(agree(surface_picture(sharing, copy), pattern_picture(0x102030, 30, 20), exact));
  };
  copy = createDXSurface(loop, 30, 20);
  ASSERT_NE(copy, nullptr);
  renderMultOpenGLControlLoop(loop, 0x102030);
  pictures.at_least(1);
  expect_kept();

  void* const larger = createDXSurface(loop, 60, 40);
  copyDXSurface(loop, copy, larger);
  const Picture small = pattern_picture(0x102030, 30, 20);
  Picture stretched(60, 40);
  stretched.for_each([&](int x, int y) { std::copy_n(small.pixel(x / 2, y / 2), 4, stretched.pixel(x, y)); });
  EXPECT_TRUE(agree(surface_picture(sharing, larger), stretched, exact));

  copyDXSurface(loop, nullptr, copy);
  EXPECT_EQ(pending_error(), "A surface to copy must not be null. ");
  // A frame is the client's while it is shown and no longer.
  registerOpenGLControlLoopCallback(loop, nullptr);
  for (void* const unknown : {shown, static_cast<void*>(&sharing)}) {
    for (const bool is_source : {true, false}) {
      copyDXSurface(loop, is_source ? unknown : copy, is_source ? copy : unknown);
      EXPECT_EQ(pending_error(), "The specified surface is unknown. ");
    }
  }
  EXPECT_EQ(createDXSurface(loop, 0, 4), nullptr);
  EXPECT_EQ(pending_error(), "A surface must not be empty. ");
  destroyDXSurface(loop, larger);
  for (void* const unknown : {larger, static_cast<void*>(nullptr)}) {
    destroyDXSurface(loop, unknown);
    EXPECT_EQ(pending_error(), "The specified surface is unknown. ");
  }
  // The surface outlives the loop that it was made with, whose handle still does to free it.
  const OpenGLControlLoopHandle deleted = loop;
  deleteOpenGLControlLoop(loop);
  expect_kept();
  destroyDXSurface(deleted, std::exchange(copy, nullptr));
  EXPECT_EQ(pending_error(), "(none)");
  loop = createOpenGLControlLoop();
}

OCT_EVERY_SHARING(ControlLoopApiGLTest);

}  // namespace
}  // namespace oct::test
