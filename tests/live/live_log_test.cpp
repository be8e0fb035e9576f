// What live rendering writes to the log, line by line.
#include "live/live_renderer_fixture.h"

namespace oct::test {
namespace {

class LiveLogTest : public LiveRendererTest {};

TEST_F(LiveLogTest, OneVolumeFromTheStartToTheEnd) {
  const std::string text = log_of([&] {
    {
      FastOpenGLVolumeRenderer live;
      live.set_size({4, 3, 2});
      live.start();
      live.invalidate();
      live.render();
      live.get_data_ptr();
      live.get_data_ptr();
      live.update();
      live.render();
      live.render();
      live.render();
      live.stop();
      live.render();
      live.render();
    }
  });
  EXPECT_EQ(text, R"(FastOpenGLVolumeRenderer: OpenGLVolumeRenderer constructor called. 
FastOpenGLVolumeRenderer::set_size: 4 x 3 x 2
Start called
Invalidate called, size_z = 2
FastOpenGLVolumeRenderer::close(): ResetEvent
Closing renderer. 
Initializing with sizes: 4 x 3 x 2
FastOpenGLVolumeRenderer::get_data_ptr(): ResetEvent
FastOpenGLVolumeRenderer::get_data_ptr(): WAIT_TIMEOUT on ptr_event
FastOpenGLVolumeRenderer::update()
Rendering: 
FastOpenGLVolumeRenderer::render(): Updating data...  
FastOpenGLVolumeRenderer::render(): ptr invalidated. 
Rendering: 
Invalid Ptr...
Set event succeeded. (render function) 
Rendering: 
Stop called
De-Initializing!
FastOpenGLVolumeRenderer::close(): ResetEvent
Closing renderer. 
~FastOpenGLVolumeRenderer
)");
}

TEST_F(LiveLogTest, Failures) {
  const std::string text = log_of([&] {
    EXPECT_THROW(FastOpenGLVolumeRenderer(nullptr), std::exception);
    run_it();
    produce(1.0F);
    live_.render();
    spy_.fail_next("glMapBuffer");
    failed_maps_ = 1;
    EXPECT_THROW(live_.render(), std::exception);
    script_.refuse_set = true;
    EXPECT_THROW(live_.render(), std::exception);
    live_.start();
    EXPECT_THROW(live_.render(), std::exception);
  });
  std::size_t from = 0;
  for (const char* const line : {"Could not create event.\n", "Invalid Ptr...\nPtr is invalid. \n",
                                 "Invalid Ptr...\nCould not set event. \n",
                                 "FastOpenGLVolumeRenderer::initialize(): SetEvent failed. \n"}) {
    from = text.find(line, from);
    EXPECT_NE(from, std::string::npos) << line << text;
  }
}

}  // namespace
}  // namespace oct::test
