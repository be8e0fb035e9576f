#include "gl/gl_names.h"

#include "support/gl_spy.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

class NamesGLTest : public GLTest {};

TEST_F(NamesGLTest, EveryKindIsDeletedOnce) {
  GlSpy spy;
  {
    gl::Texture a = gl::Texture::create();
    const GLuint name = a.get();
    gl::Texture b = std::move(a);
    EXPECT_FALSE(a);
    EXPECT_EQ(b.get(), name);
    b = gl::Texture::create();
    EXPECT_EQ(spy.live_objects(), 1U);
    gl::Texture& self = b;
    b = std::move(self);
    EXPECT_TRUE(b);
    const auto buffer = gl::Buffer::create();
    const auto vertex_array = gl::VertexArray::create();
    const auto framebuffer = gl::Framebuffer::create();
    const auto renderbuffer = gl::Renderbuffer::create();
    const auto shader = gl::ShaderObject::create(GL_VERTEX_SHADER);
    const auto program = gl::Program::create();
    EXPECT_EQ(spy.live_objects(), 7U);
    b.reset();
    b.reset();
    EXPECT_EQ(spy.live_objects(), 6U);
  }
  EXPECT_EQ(spy.live_objects(), 0U);
  EXPECT_EQ(spy.calls("glDeleteTextures"), 2);
}

}  // namespace
}  // namespace oct::test
