// Frame, translucent box, clip plane border and removed segment on the screen, and what happens when OpenGL
// fails.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "support/gl_spy.h"
#include "support/reference_camera.h"
#include "support/test_context.h"
#include "volume/layout/box_view.h"
#include "volume/layout/clip_plane.h"

namespace oct::test {
namespace {

struct Flags {
  int scaleMarks, edges, box;
};

class SceneElementsTest : public testing::Test {
 protected:
  SceneElementsTest() {
    scene_.range = {1.5F, 2.0F, 2.5F};
    scene_.zoom = 45.0;
    scene_.coloring = {{0x00000000U, 0x00000000U}, 0.0, 1.0};  // nothing is seen of the volume
  }

  Picture draw(Flags flags, const std::function<void(VolumeRendererHandle)>& change = {}) {
    stage_.prepare(scene_);
    setBorder(stage_.renderer, flags.scaleMarks, flags.edges, flags.box);
    if (change) change(stage_.renderer);
    return stage_.frame();
  }

  Picture background() const { return backgroundPicture(scene_); }

  // Gives the scene a clip plane; it faces the viewer.
  ClipPlane clipAt(float value) {
    scene_.clip = true;
    scene_.clipValue = value;
    ClipPlane clip;
    clip.set(true, false, value);
    View view;
    view.angleX = static_cast<float>(scene_.angleX);
    view.angleY = static_cast<float>(scene_.angleY);
    clip.update(view);
    return clip;
  }

  VolumeScene scene_ = sceneOf(testVolume(8, 8, 8), 200, 160, 25.0, -35.0);
  VolumeStage stage_;
};

using Lines = std::vector<std::pair<glm::dvec2, glm::dvec2>>;

Lines projected(const VolumeScene& scene, const std::vector<glm::vec3>& points) {
  const ReferenceCamera camera(scene);
  Lines lines;
  for (std::size_t i = 0; i + 1 < points.size(); i += 2) {
    lines.emplace_back(camera.toWindow(points[i]), camera.toWindow(points[i + 1]));
  }
  return lines;
}

double change(const Picture& picture, const Picture& before, int column, int row) {
  double sum = 0.0;
  for (int c = 0; c < 3; ++c) sum += std::abs(picture.pixel(column, row)[c] - before.pixel(column, row)[c]);
  return sum / 3.0;
}

// The strongest one of the pixels at a place.
double changeAt(const Picture& picture, const Picture& before, const glm::dvec2& place) {
  double strongest = 0.0;
  for (int i = 0; i < 9; ++i) {
    const int column = glm::clamp(static_cast<int>(place.x) + i % 3 - 1, 0, picture.width - 1);
    const int row = glm::clamp(static_cast<int>(place.y) + i / 3 - 1, 0, picture.height - 1);
    strongest = std::max(strongest, change(picture, before, column, row));
  }
  return strongest;
}

double distanceTo(const Lines& lines, int column, int row) {
  double nearest = 1e9;
  for (const auto& [from, to] : lines) {
    nearest = std::min(nearest, distanceToSegment({column + 0.5, row + 0.5}, from, to));
  }
  return nearest;
}

// Lines of the foreground colour (white) where they ought to be, and nothing anywhere else.
void expectLines(const Picture& picture, const Picture& before, const Lines& lines) {
  picture.forEach([&](int column, int row) {
    if (distanceTo(lines, column, row) > 2.0) {
      ASSERT_EQ(change(picture, before, column, row), 0.0) << column << ", " << row;
    }
  });
  for (const auto& [from, to] : lines) {
    for (double t = 0.03; t < 1.0; t += 0.07) {
      const glm::dvec2 at = glm::mix(from, to, t);
      EXPECT_GT(changeAt(picture, before, at), 90.0) << "no line at " << at.x << ", " << at.y;
    }
  }
}

TEST_F(SceneElementsTest, NothingButTheBackgroundWithoutFlags) {
  scene_.clipValue = 0.45F;  // of a plane that is off
  EXPECT_TRUE(agree(draw({0, 0, 0}), background()));
}

TEST_F(SceneElementsTest, TwelveEdges) {
  for (const bool perspective : {true, false}) {
    scene_.perspective = perspective;
    scene_.zoom = perspective ? 45.0 : 32.0;
    const Lines lines = projected(scene_, boxEdges());
    ASSERT_EQ(lines.size(), 12U);
    expectLines(draw({0, 1, 0}), background(), lines);
  }
  EXPECT_EQ(pendingError(), "(none)");
}

TEST_F(SceneElementsTest, AnOpaqueVolumeHidesTheEdgesBehindIt) {
  scene_.coloring = {{0xFF000000U, 0xFF000000U}, -1.0, 2.0};
  const Picture plain = draw({0, 0, 0});
  const Picture framed = draw({0, 1, 0});
  const ReferenceCamera camera(scene_);
  const std::vector<glm::vec3> edges = boxEdges();
  int hidden = 0;
  for (std::size_t i = 0; i < edges.size(); i += 2) {
    // At these angles the faces x = 1, y = -1 and z = 1 face the viewer; edges of the others only are hidden.
    const glm::vec3 middle = 0.5F * (edges[i] + edges[i + 1]);
    const bool visible = middle.x == 1.0F || middle.y == -1.0F || middle.z == 1.0F;
    const double strongest = changeAt(framed, plain, camera.toWindow(middle));
    EXPECT_TRUE(visible ? strongest > 90.0 : strongest == 0.0) << i << ": " << strongest;
    hidden += !visible;
  }
  EXPECT_EQ(hidden, 3);
}

TEST_F(SceneElementsTest, TheBoxIsGlass) {
  const Picture drawn = draw({0, 0, 1});
  Picture expected = background();
  const ReferenceCamera camera(scene_);
  expected.forEach([&](int column, int row) {
    const auto [eye, direction] = camera.modelLine(column, row);
    const glm::dvec3 low = (-1.0 - eye) / direction;
    const glm::dvec3 high = (1.0 - eye) / direction;
    const glm::dvec3 enter = glm::min(low, high);
    const glm::dvec3 leave = glm::max(low, high);
    if (std::max({enter.x, enter.y, enter.z}) >= std::min({leave.x, leave.y, leave.z})) return;
    // A tenth of the foreground (white) on the far side and a hint of it on the near side.
    setPixel(expected, column, row,
             glm::mix(glm::mix(backgroundColor(scene_, row), glm::dvec3(1.0), 0.1), glm::dvec3(1.0), 0.03));
  });
  EXPECT_TRUE(agree(drawn, expected, {2, 0.995, 60}));
}

TEST_F(SceneElementsTest, TheForegroundColoursEverything) {
  scene_.backgroundBottom = scene_.backgroundTop = 0x000000FFU;
  const Picture drawn = draw({1, 1, 1}, [](VolumeRendererHandle h) { setRenderForeground(h, 0xFF0000FFU); });
  int lit = 0;
  drawn.forEach([&](int column, int row) {
    const auto [blue, green, red, alpha] = drawn.bgra(column, row);
    ASSERT_EQ(blue + green, 0);
    ASSERT_EQ(alpha, 255) << "an opaque picture stays opaque";
    lit += red > 100;
  });
  EXPECT_GT(lit, 300);
}

TEST_F(SceneElementsTest, BorderOfTheClipPlane) {
  const ClipPlane clip = clipAt(0.45F);
  expectLines(draw({0, 0, 0}), background(), projected(scene_, clip.border()));
  EXPECT_EQ(pendingError(), "(none)");
}

TEST_F(SceneElementsTest, TheRemovedSegmentIsAGhost) {
  const ClipPlane clip = clipAt(0.45F);
  const Picture without = draw({0, 0, 0});
  const Picture with = draw({0, 0, 0}, [](VolumeRendererHandle h) { setRemoveSegment(h, 1); });
  const ReferenceCamera camera(scene_);
  const Lines border = projected(scene_, clip.border());
  int ghost = 0;
  int panes[3] = {};
  with.forEach([&](int column, int row) {
    if (distanceTo(border, column, row) < 2.0) return;
    const auto [eye, direction] = camera.modelLine(column, row);
    int crossed = 0;  // faces of the removed segment
    for (int axis = 0; axis < 3; ++axis) {
      for (const double side : {-1.0, 1.0}) {
        const glm::dvec3 p = eye + (side - eye[axis]) / direction[axis] * direction;
        const bool onFace = std::max(std::abs(p[(axis + 1) % 3]), std::abs(p[(axis + 2) % 3])) < 1.0;
        crossed += onFace && glm::dot(glm::dvec4(clip.plane()), glm::dvec4(p, 1.0)) < 0.0;
      }
    }
    bool right = true;
    for (int c = 0; c < 3; ++c) {
      double expected = without.pixel(column, row)[c];
      for (int i = 0; i < crossed; ++i) expected = glm::mix(expected, 255.0, 0.1);
      right &= std::abs(with.pixel(column, row)[c] - expected) <= 2.0;
    }
    ghost += !right;
    ++panes[crossed];
  });
  EXPECT_LT(ghost, 60) << "pixels on the rim of a face";
  EXPECT_GT(panes[1], 1000);
  EXPECT_GT(panes[2], 100);
}

TEST_F(SceneElementsTest, LabelsKeepTheirPixelsWhileTheBoxTurns) {
  // A label that shows the same text at another angle consists of the same pixels somewhere else.
  scene_.viewportWidth = 400;
  scene_.viewportHeight = 320;
  scene_.backgroundBottom = scene_.backgroundTop = 0x000000FFU;
  const auto ink = [](const Picture& picture) {
    double sum = 0.0;
    for (std::size_t i = 0; i < picture.bytes.size(); i += 4) sum += picture.bytes[i] / 255.0;
    return sum;
  };
  const double marks = ink(draw({1, 0, 0}));
  EXPECT_GT(marks, 400.0) << "numbers, captions and ticks";
  EXPECT_LT(marks, 6000.0);
  scene_.angleY += 1.0;
  EXPECT_NEAR(ink(draw({1, 0, 0})), marks, 0.2 * marks);
  EXPECT_EQ(pendingError(), "(none)");
}

// Where ticks and labels stand, and that they read well, was looked at. Fonts differ from machine to machine:
// their pixels may differ, what is not text may not.
TEST_F(SceneElementsTest, TheFrameLooksAsAccepted) {
  scene_.viewportWidth = 420;
  scene_.viewportHeight = 320;
  scene_.zoom = 42.0;
  const Picture drawn = draw({1, 1, 1});
  EXPECT_TRUE(looksLike(drawn, "frame_with_scale_marks", {12, 0.97, 255, 3.0}));
  EXPECT_EQ(pendingError(), "(none)");
}

TEST_F(SceneElementsTest, NothingIsLeftBehind) {
  clipAt(0.6F);
  const auto everything = [](VolumeRendererHandle h) { setRemoveSegment(h, 1); };
  const Picture before = draw({1, 1, 1}, everything);
  setRenderingMode(stage_.renderer, 1);
  stage_.frame();
  uninitializeVolumeRenderer(stage_.renderer);
  GlSpy spy;
  initializeVolumeRenderer(stage_.renderer);
  const std::size_t afterInit = spy.liveObjects();
  for (int round = 0; round < 3; ++round) {
    EXPECT_TRUE(agree(draw({1, 1, 1}, everything), before, exact));
    setRenderingMode(stage_.renderer, 1);
    stage_.frame();
    const std::size_t inUse = spy.liveObjects();
    stage_.frame();
    EXPECT_EQ(spy.liveObjects(), inUse) << "a frame like the last one makes no objects";
    EXPECT_GT(inUse, afterInit);
    const std::string text = logOf([&] { uninitializeVolumeRenderer(stage_.renderer); });
    EXPECT_TRUE(contains(text, "Unloading font renderer.\n"));
    initializeVolumeRenderer(stage_.renderer);
  }
}

TEST_F(SceneElementsTest, TextIsRasterisedOnceWhileNothingMoves) {
  draw({1, 1, 1});
  GlSpy spy;
  stage_.frame();
  EXPECT_EQ(spy.calls("glGenTextures"), 0);
  EXPECT_EQ(spy.calls("glTexImage2D"), 0);
}

TEST_F(SceneElementsTest, BuffersThatFailAreReportedAndTheNextFrameWorks) {
  for (const int mode : {0, 1}) {
    const auto inMode = [mode](VolumeRendererHandle h) { setRenderingMode(h, mode); };
    const Picture good = draw({1, 1, 1}, inMode);
    for (int failing = 1; failing < 12; ++failing) {
      stage_.restart();
      apply(scene_, stage_.renderer);
      setBorder(stage_.renderer, 1, 1, 1);
      inMode(stage_.renderer);
      {
        GlSpy spy;
        spy.failNext("glBufferData", failing);
        stage_.frame();
        EXPECT_GE(spy.calls("glBufferData"), 1);
      }
      EXPECT_EQ(pendingError().find("An OpenGL error in "), 0U) << failing;
      clearGLErrors();
      stage_.restart();
      EXPECT_TRUE(agree(draw({1, 1, 1}, inMode), good, exact));
      EXPECT_EQ(pendingError(), "(none)");
    }
  }
}

// Each variant declares only what it uses; what it lacks is noted and nothing more.
TEST_F(SceneElementsTest, MissingUniformsAreNotedAndNoError) {
  const std::string text = logOf([&] { stage_.restart(); });
  for (const char* const uniform :
       {"overlayValues", "secondaryTex", "secondarySlice", "colorTex2", "backTex"}) {
    EXPECT_TRUE(contains(text, std::string("Uniform ") + uniform + " was not found. ")) << uniform;
  }
  // What every variant has is never missing.
  for (const char* const uniform : {"modelview", "projection"}) {
    EXPECT_FALSE(contains(text, std::string("Uniform ") + uniform + " ")) << uniform;
  }
  EXPECT_EQ(pendingError(), "(none)");
}

// A frame that draws writes nothing: the log is for what is wrong.
TEST_F(SceneElementsTest, AFrameIsSilent) {
  stage_.draw(scene_);
  EXPECT_EQ(logOf([&] { stage_.frame(); }), "");
}

}  // namespace
}  // namespace oct::test
