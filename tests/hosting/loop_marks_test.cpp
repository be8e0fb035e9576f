// The timing marks of hosting: their names, and which phase lies within which.
#include <algorithm>

#include "oct_rendering/oct_rendering.h"
#include "support/mark_recorder.h"
#include "support/test_loop.h"

namespace oct::test {
namespace {

using Names = MarkRecorder::Marks;

// Whether some thread set these marks in this order, others between them or not.
testing::AssertionResult sets(MarkRecorder& recorder, const Names& expected) {
  std::size_t most = 0;
  for (const auto& [thread, marks] : recorder.all()) {
    std::size_t found = 0;
    for (const std::string& mark : marks) found += found < expected.size() && mark == expected[found];
    most = std::max(most, found);
  }
  if (most == expected.size()) return testing::AssertionSuccess();
  return testing::AssertionFailure() << "no " << expected[most];
}

class LoopMarksGLTest : public LoopGLTest {};

TEST_P(LoopMarksGLTest, OfALoopFromItsStartToItsEnd) {
  const bool direct3d = GetParam() == SurfaceSharing::direct3d;
  MarkRecorder recorder;
  {
    prepareOpenGL();
    OpenGLControlLoop loop(nullptr, Callback([] {}));
    loop.set_image_ready_callback(
        ImageReadyCallback([](std::uint32_t, std::uint32_t, std::uint32_t, void*) {}));
    loop.resize(4, 4);
    loop.set_mode(OpenGLControlLoop::once_each);
    Picture picture(3, 3);
    loop.request(7);
    for (int patience = 0; patience < 1000 && !sets(recorder, {"-Image ready callback"}); ++patience) {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    loop.snapshot(3, 3, picture.bytes.data());
  }
  finishOpenGL();

  // The client's thread.
  EXPECT_TRUE(sets(
      recorder,
      {"+OpenGLControlLoop", "-OpenGLControlLoop", "+OpenGLControlLoop::snap", "+OpenGLControl::snapshot",
       "+OffscreenBuffer::set_output_data", "-OffscreenBuffer::set_output_data", "-OpenGLControl::snapshot",
       "+OpenGLControl::wait_for_snapshot", "+OffscreenBuffer::wait", "-OffscreenBuffer::wait",
       "-OpenGLControl::wait_for_snapshot", "-OpenGLControlLoop::snap", "+Destructing OpenGL Loop",
       "+~OpenGLControlLoop", "-~OpenGLControlLoop", "-Destructing OpenGL Loop",
       "+OfflienRenderingWindows are destroyed. "}));
  // The render thread: a frame, a snapshot, the end.
  EXPECT_TRUE(
      sets(recorder, {"+Rendering Loop", "+OpenGLControl", "-OpenGLControl", "+rendering_loop_it_incl",
                      "+rendering_loop_it_excl", direct3d ? "+dx_buffer_resize_incl" : "+host_buffer_resize",
                      direct3d ? "+resize shared buffer" : "-host_buffer_resize", "+Rendering callback (0)",
                      "+Test image callback", "-Test image callback",
                      direct3d ? "+DXSharedBufferObject: finish" : "+HostBufferObject: finish",
                      "-Rendering callback (0)", "-rendering_loop_it_excl", "-rendering_loop_it_incl"}));
  if (direct3d) {
    EXPECT_TRUE(
        sets(recorder, {"+dx_buffer_resize_incl", "+dx_buffer_resize_excl", "+resize shared buffer"}));
  }
  EXPECT_TRUE(sets(
      recorder,
      {"+Rendering callback (-1)", "+OffscreenBuffer::prepare", "!before_rendering",
       "-OffscreenBuffer::prepare", "+OffscreenBuffer::finish", "-OffscreenBuffer::finish",
       "-Rendering callback (-1)", "+Uninit of specific OpenGL control", "-Uninit of specific OpenGL control",
       direct3d ? "+~DX9SharedBufferObject" : "+~HostBufferObject", "-Rendering Loop"}));
  // The return thread.
  const std::string map = direct3d ? "dxmap_buffer_object" : "host_map_buffer_object";
  EXPECT_TRUE(sets(recorder, {"+Return loop", "+return_loop_it_incl", "+return_loop_it_excl", "+" + map,
                              "-" + map, "+Return buffer callback (0)", "+Image ready callback",
                              "-Image ready callback", "-Return buffer callback (0)", "-return_loop_it_excl",
                              "-return_loop_it_incl", "-Return loop"}));
}

OCT_EVERY_SHARING(LoopMarksGLTest);

}  // namespace
}  // namespace oct::test
