// What a client hears about an OpenGL context.
#include <cstddef>
#include <cstring>

#include "oct_rendering/oct_rendering.h"
#include "support/gl_spy.h"
#include "support/test_context.h"
#include "support/test_loop.h"

namespace oct::test {
namespace {

class RendererInfoGLTest : public testing::TestWithParam<SurfaceSharing> {};

// Asked without a context it is that of one which is gone afterwards; asked in a client's, nothing of that changes.
TEST_P(RendererInfoGLTest, IsThatOfTheContextAndLeavesNothing) {
  const unsigned sharings =
      1U << static_cast<int>(SurfaceSharing::host_memory) | 1U << static_cast<int>(GetParam());
  std::size_t objects = 0;
  OctRendererInfo alone{};
  alone.size = sizeof alone;
  getRendererInfo(&alone);
  EXPECT_FALSE(gl::is_context_current());
  choose_sharing(GetParam());
  const ClientContext client;
  OctRendererInfo info{};
  info.size = sizeof info;
  {
    const GlSpy spy;
    glEnable(GL_TEXTURE);  // an error of the client's own, which stays for the client
    getRendererInfo(&info);
    objects = spy.live_objects();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_ENUM));
  }
  EXPECT_EQ(objects, 0U);
  EXPECT_EQ(gl::current_context(), client.handle());
  EXPECT_EQ(pending_error(), "(none)");
  GLint limits[2] = {};
  glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limits[0]);
  glGetIntegerv(GL_MAX_3D_TEXTURE_SIZE, &limits[1]);
  EXPECT_EQ(info.vendor, gl::opengl_text(GL_VENDOR));
  EXPECT_EQ(info.renderer, gl::opengl_text(GL_RENDERER));
  EXPECT_EQ(info.version, gl::opengl_text(GL_VERSION));
  EXPECT_EQ(info.max_texture_size, static_cast<unsigned>(limits[0]));
  EXPECT_EQ(info.max_3d_texture_size, static_cast<unsigned>(limits[1]));
  EXPECT_EQ(info.sharings, sharings);
  if (sharings == 1U << static_cast<int>(SurfaceSharing::host_memory)) {
    EXPECT_EQ(std::memcmp(&alone, &info, sizeof info), 0);
  }
}

OCT_EVERY_SHARING(RendererInfoGLTest);

TEST(RendererInfoSizeGLTest, FieldsBeyondTheCallersSizeAreLeftAlone) {
  struct {
    OctRendererInfo info;
    unsigned char newer[16];
  } all, before;
  for (const std::size_t size :
       {std::size_t{8}, offsetof(OctRendererInfo, renderer), sizeof all.info, sizeof all}) {
    std::memset(&all, 0x5A, sizeof all);
    all.info.size = static_cast<unsigned>(size);
    before = all;
    getRendererInfo(&all.info);
    EXPECT_EQ(all.info.size, size);
    EXPECT_NE(all.info.sharings, before.info.sharings) << size;
    const std::size_t known = std::min(size, sizeof all.info);
    EXPECT_EQ(std::memcmp(reinterpret_cast<char*>(&all) + known, reinterpret_cast<char*>(&before) + known,
                          sizeof all - known),
              0)
        << size;
    EXPECT_EQ(pending_error(), "(none)");
  }
  OctRendererInfo info{};
  const std::string failure = "The size of the information must be set. ";
  expect_refused({{failure, [] { getRendererInfo(nullptr); }}, {failure, [&] { getRendererInfo(&info); }}});
}

// As the two makers tell it, in kilobytes. A text that is longer than its field is cut.
TEST(RendererInfoSizeGLTest, FreeMemoryAndLongTexts) {
  const TestContext context;
  const auto before = std::pair(__GLEW_NVX_gpu_memory_info, __GLEW_ATI_meminfo);
  GlSpy spy;
  spy.answer(GL_GPU_MEMORY_INFO_CURRENT_AVAILABLE_VIDMEM_NVX, 5'000'000);
  spy.answer(GL_TEXTURE_FREE_MEMORY_ATI, 3);
  spy.answer(GL_VENDOR, std::string(200, 'v'));
  for (const auto& [nvx, ati, bytes] :
       {std::tuple{true, false, 5'120'000'000ULL}, {false, true, 3072ULL}, {false, false, 0ULL}}) {
    __GLEW_NVX_gpu_memory_info = nvx;
    __GLEW_ATI_meminfo = ati;
    OctRendererInfo info{};
    info.size = sizeof info;
    getRendererInfo(&info);
    EXPECT_EQ(info.free_video_memory, bytes);
    EXPECT_EQ(info.vendor, std::string(127, 'v'));
  }
  std::tie(__GLEW_NVX_gpu_memory_info, __GLEW_ATI_meminfo) = before;
  clear_gl_errors();
}

}  // namespace
}  // namespace oct::test
