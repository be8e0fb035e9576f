// The composed sources of the volume programs, without a GPU.
#include <gtest/gtest.h>

#include <string>
#include "shaders.h"

namespace oct::test {
namespace {

std::size_t count(const std::string& text, const std::string& part) {
  std::size_t found = 0;
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++found;
  return found;
}

bool declares(const std::string& text, const std::string& uniform) {
  for (const char* const type : {"float", "int", "vec2", "sampler1D", "sampler2D", "sampler3D"}) {
    if (text.find("uniform " + std::string(type) + " " + uniform + ";") != std::string::npos) return true;
  }
  return false;
}

const char* const raycasters[] = {shaders::raycasting_frag,
                                  shaders::raycasting_mip_frag,
                                  shaders::raycasting_mean_frag,
                                  shaders::raycasting_overlay_frag,
                                  shaders::raycasting_overlay_mip_frag,
                                  shaders::raycasting_overlay_mean_frag,
                                  shaders::raycasting_dual_coloring_frag};

std::string mainOf(const std::string& text) {
  return text.substr(text.find("void main()"));
}

TEST(VolumeShaderTextTest, SharedPartsComeOnce) {
  for (const std::string text : raycasters) {
    EXPECT_EQ(text.find("#version 330 core\n"), 0U);
    EXPECT_EQ(text.find("#include"), std::string::npos);
    for (const char* const shared :
         {"void main()", "Ray castRay()", "float normalised(", "bool atEnd(", "vec4 colorAt("}) {
      EXPECT_EQ(count(text, shared), 1U) << shared;
    }
    for (const char* const uniform :
         {"volumeTex", "colorTex", "backTex", "lowerValue", "upperValue", "slices", "stepSize"}) {
      EXPECT_TRUE(declares(text, uniform)) << uniform;
    }
  }
}

TEST(VolumeShaderTextTest, VariantsDeclareWhatTheyUse) {
  EXPECT_FALSE(declares(shaders::raycasting_frag, "volumeOverlayTex"));
  EXPECT_TRUE(declares(shaders::raycasting_overlay_frag, "volumeOverlayTex"));
  EXPECT_TRUE(declares(shaders::raycasting_overlay_mip_frag, "colorOverlayTex"));
  EXPECT_TRUE(declares(shaders::raycasting_overlay_mean_frag, "overlayValues"));
  EXPECT_TRUE(declares(shaders::raycasting_dual_coloring_frag, "secondaryTex"));
  EXPECT_FALSE(declares(shaders::raycasting_frag, "secondaryTex"));
  EXPECT_EQ(count(shaders::raycasting_frag, "opaque = 0.9;"), 1U);
  EXPECT_EQ(count(shaders::raycasting_overlay_frag, "opaque = 0.99;"), 1U);
}

// The cache of program binaries tells programs by name and lengths.
TEST(VolumeShaderTextTest, OverlayVariantsOnlyAddDeclarations) {
  const std::string plain = shaders::raycasting_mip_frag;
  const std::string overlay = shaders::raycasting_overlay_mip_frag;
  EXPECT_GT(overlay.size(), plain.size());
  EXPECT_EQ(mainOf(overlay), mainOf(plain));
  EXPECT_EQ(mainOf(shaders::raycasting_overlay_mean_frag), mainOf(shaders::raycasting_mean_frag));
}

}  // namespace
}  // namespace oct::test
