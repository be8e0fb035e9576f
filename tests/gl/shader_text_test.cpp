// The embedded sources, without a GPU.
#include <gtest/gtest.h>

#include <string>

#include "shaders.h"

namespace oct::test {
namespace {

TEST(ShaderTextTest, IncludesAreExpanded) {
  for (const char* const source :
       {shaders::display_vert, shaders::display_frag, shaders::overlay_frag, shaders::filter_vert,
        shaders::gaussian_x_frag, shaders::gaussian_y_frag, shaders::pepper_frag}) {
    const std::string text(source);
    EXPECT_EQ(text.find("#version 330 core\n"), 0U);
    EXPECT_EQ(text.find("#include"), std::string::npos);
    EXPECT_NE(text.find("void main()"), std::string::npos);
    EXPECT_EQ(text.find("#version", 1), std::string::npos);
  }
  for (const char* const source : {shaders::display_frag, shaders::overlay_frag}) {
    const std::string text(source);
    for (const char* const shared : {"ivec2 texelAt(", "vec4 colorOf("}) {
      const auto at = text.find(shared);
      ASSERT_NE(at, std::string::npos);
      EXPECT_EQ(text.find(shared, at + 1), std::string::npos) << "included twice";
    }
  }
}

}  // namespace
}  // namespace oct::test
