// Sections of volumes, and pictures of parts of them.
#include "data/slices.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>

#include <gtest/gtest.h>

#include "apps/program_test.h"
#include "scene/slice_scene.h"
#include "support/reference/display_reference.h"

namespace oct::app::test {
namespace {

constexpr float no_value = std::numeric_limits<float>::quiet_NaN();
constexpr float endless = std::numeric_limits<float>::infinity();

VolumeData odd_volume(std::size_t depth, std::size_t ascans, std::size_t bscans) {
  VolumeData volume{
      depth, ascans, bscans, std::vector<float>(depth * ascans * bscans), {{0.5, 2, 3}, "test"}};
  std::mt19937 generator(7);
  for (float& voxel : volume.voxels) {
    voxel = static_cast<float>(generator() % 1000) - 500;
    const unsigned chance = generator() % 20;
    if (chance == 0) voxel = no_value;
    if (chance == 1) voxel = generator() % 2 ? endless : -endless;
  }
  return volume;
}

// One voxel at a time, by the words of the interface.
float one_projected(const VolumeData& volume, std::ptrdiff_t first, const EnFace& enface, std::size_t a,
                    std::size_t b) {
  double sum = 0;
  float highest = no_value, only = no_value;
  int count = 0, inside = 0;
  for (std::ptrdiff_t z = first; z < first + static_cast<std::ptrdiff_t>(enface.layers); ++z) {
    if (z < 0 || z >= static_cast<std::ptrdiff_t>(volume.depth)) continue;
    only = volume.voxels[(b * volume.ascans + a) * volume.depth + static_cast<std::size_t>(z)];
    ++inside;
    if (!std::isnan(only) && !(only <= highest)) highest = only;
    if (!std::isfinite(only)) continue;
    sum += only;
    ++count;
  }
  if (inside == 1) return only;
  if (enface.projection == Projection::maximum) return highest;
  return count ? static_cast<float>(sum / count) : no_value;
}

bool same_value(float a, float b) {
  return a == b || (std::isnan(a) && std::isnan(b)) || std::abs(a - b) < 1e-3F;
}

TEST(Slices, AreTheVoxelsOfTheirPlanesAndProjectionsOfLayers) {
  VolumeData volume = odd_volume(37, 45, 33);
  LateralMap surface{45, 33, {}};
  for (int i = 0; i < 45 * 33; ++i)
    surface.values.push_back(i % 11 ? static_cast<float>(i % 47) - 4.4F : no_value);
  for (const std::ptrdiff_t position : {-1, 0, 7, 32, 36, 44, 45}) {
    const Image bscan = slice_of(volume, SliceAxis::bscan, position);
    const Image third = slice_of(volume, SliceAxis::third, position);
    ASSERT_EQ(std::pair(bscan.depth, bscan.ascans), std::pair(volume.depth, volume.ascans));
    ASSERT_EQ(std::pair(third.depth, third.ascans), std::pair(volume.depth, volume.bscans));
    for (std::size_t z = 0; z < volume.depth; ++z) {
      const auto voxel = [&](std::ptrdiff_t a, std::ptrdiff_t b) {
        if (a < 0 || a >= 45 || b < 0 || b >= 33) return no_value;
        return volume.voxels[static_cast<std::size_t>((b * 45 + a) * 37) + z];
      };
      for (std::size_t x = 0; x < 45; ++x)
        ASSERT_PRED2(same_value, bscan.samples[x * 37 + z], voxel(static_cast<std::ptrdiff_t>(x), position));
      for (std::size_t x = 0; x < 33; ++x)
        ASSERT_PRED2(same_value, third.samples[x * 37 + z], voxel(position, static_cast<std::ptrdiff_t>(x)));
    }
    for (const std::size_t layers : {1, 2, 5, 24, 37, 200}) {
      for (const Projection projection : {Projection::mean, Projection::maximum}) {
        for (const bool along : {false, true}) {
          const EnFace enface{layers, projection, along};
          const Image image = slice_of(volume, SliceAxis::enface, position, enface, &surface);
          ASSERT_EQ(std::pair(image.depth, image.ascans), std::pair(volume.bscans, volume.ascans));
          for (std::size_t i = 0; i < image.samples.size(); ++i) {
            const std::size_t a = i / 33, b = i % 33;
            const float depth = along ? surface.values[b * 45 + a] : 0.0F;
            const auto centre = std::isnan(depth) ? 0 : static_cast<std::ptrdiff_t>(std::floor(depth + 0.5F));
            const auto first = centre + position - static_cast<std::ptrdiff_t>(layers) / 2;
            const float wanted = std::isnan(depth) ? no_value : one_projected(volume, first, enface, a, b);
            ASSERT_PRED2(same_value, image.samples[i], wanted)
                << layers << " layers at " << position << ", " << a << " " << b;
          }
        }
      }
    }
  }
}

TEST(Slices, KnowTheirSpacingAndFindTheSurfaceOfAFileThatWasReduced) {
  VolumeData volume{4, 2, 1, {0, 1, 2, 3, 10, 11, 12, 13}, {{0.5, 2, 3}, "test"}, {2, 3, 1}, {8, 6, 1}};
  EXPECT_EQ(slice_of(volume, SliceAxis::bscan, 0).spacing.mm, (std::array{1.0, 6.0, 3.0}));
  EXPECT_EQ(slice_of(volume, SliceAxis::third, 0).spacing.mm, (std::array{1.0, 3.0, 6.0}));
  EXPECT_EQ(slice_of(volume, SliceAxis::enface, 0).spacing.mm, (std::array{3.0, 6.0, 1.0}));
  const LateralMap surface{6, 1, {0, 5, 0, 0, 2, 0}};  // voxels 2 and 1
  const Image image = slice_of(volume, SliceAxis::enface, 1, {1, Projection::mean, true}, &surface);
  EXPECT_EQ(image.samples, (std::vector<float>{3, 12}));
}

// A window's picture is cut out of that of the whole slice at the same scale.
struct Cut {
  const char* what;
  int depth, ascans;              // samples
  int whole_height, whole_width;  // pixels of the whole slice
  int left, top, width, height;   // pixels of the window in it
};

class SlicePictures : public testing::TestWithParam<Cut> {};

TEST_P(SlicePictures, AreThoseOfTheDisplayAtAnyZoom) {
  const Cut cut = GetParam();
  oct::test::Scene wanted;
  wanted.image = oct::test::test_image(cut.depth, cut.ascans);
  wanted.width = cut.whole_width;
  wanted.height = cut.whole_height;
  wanted.colormap = {0xFF401020U, 0xFF10C080U, 0xFFFFF0E0U};
  wanted.lower = -0.1;
  wanted.upper = 1.2;
  wanted.overlay_image = oct::test::test_image(cut.depth / 2, cut.ascans / 3, 5);
  wanted.overlays = {{{0x000000FFU, 0xC0FF0000U}, 0.0, 1.0}};
  wanted.threshold = -10;
  const oct::test::Picture whole = oct::test::reference_picture(wanted);

  const auto layer = [](const oct::test::Image& image, double lower, double upper, Colormap colors) {
    return SliceLayer{std::make_shared<const Image>(Image{static_cast<std::size_t>(image.depth),
                                                          static_cast<std::size_t>(image.a_scans),
                                                          image.samples,
                                                          {}}),
                      {lower, upper},
                      std::move(colors)};
  };
  SliceScene scene;
  scene.base = layer(wanted.image, -0.1, 1.2,
                     {{0x20, 0x10, 0x40, 255}, {0x80, 0xC0, 0x10, 255}, {0xE0, 0xF0, 0xFF, 255}});
  scene.overlay = SliceOverlay{layer(wanted.overlay_image, 0, 1, {{255, 0, 0, 0}, {0, 0, 255, 0xC0}}), {}};
  scene.background = 0x1060A0;
  scene.size = {static_cast<unsigned>(cut.width), static_cast<unsigned>(cut.height)};
  const double column = static_cast<double>(cut.ascans) / cut.whole_width;  // samples
  const double row = static_cast<double>(cut.depth) / cut.whole_height;
  scene.area = {cut.left * column, cut.top * row, cut.width * column, cut.height * row};
  const SlicePicture drawn = render_slice(scene);
  EXPECT_EQ(drawn.explanation, "");

  int far = 0;
  for (int y = 0; y < cut.height; ++y) {
    for (int x = 0; x < cut.width; ++x) {
      const int wx = x + cut.left, wy = y + cut.top;
      const bool inside = wx >= 0 && wx < cut.whole_width && wy >= 0 && wy < cut.whole_height;
      std::array<int, 4> bgra{0xA0, 0x60, 0x10, 255};
      if (inside) bgra = whole.bgra(wx, cut.whole_height - 1 - wy);
      const std::uint8_t* const pixel =
          &drawn.picture.pixels[static_cast<std::size_t>(y * cut.width + x) * 3];
      for (int channel = 0; channel < 3; ++channel) {
        const int difference = std::abs(pixel[channel] - bgra[static_cast<std::size_t>(2 - channel)]);
        far += difference > 1;
        ASSERT_LE(difference, inside ? 3 : 0) << x << ", " << y;
      }
    }
  }
  EXPECT_LE(far, cut.width * cut.height * 3 / 1000);
}

INSTANTIATE_TEST_SUITE_P(Cuts, SlicePictures,
                         testing::Values(Cut{"whole", 64, 96, 64, 96, 0, 0, 96, 64},
                                         Cut{"enlarged", 64, 96, 224, 336, 101, 57, 120, 90},
                                         Cut{"odd", 61, 83, 173, 211, 17, 31, 150, 120},
                                         Cut{"reduced", 240, 360, 80, 60, 5, 9, 50, 60},
                                         Cut{"beside", 64, 96, 96, 120, -30, -20, 190, 130},
                                         Cut{"in_tiles", 40, 40, 30, 5000, 400, 10, 4200, 12}),
                         [](const auto& info) { return info.param.what; });

TEST(SliceWindows, FitTheSliceAndKeepItsAspectAndWhatIsNotFiniteShowsTheEndsOfTheRange) {
  Image slice{200, 100, std::vector<float>(20'000), {{0.01, 0.04, 1}, "test"}};  // 2 mm deep, 4 mm wide
  EXPECT_EQ(area_of({}, slice, {400, 300}), (SliceArea{0, -50, 100, 300}));
  EXPECT_EQ(area_of({2, {0.25, 0.5}}, slice, {400, 100}), (SliceArea{-25, 50, 100, 100}));
  slice.spacing.mm = {0, 0.04, 1};  // squares
  EXPECT_EQ(area_of({}, slice, {400, 400}), (SliceArea{-50, 0, 200, 200}));
  EXPECT_EQ(visible_pixels(slice, area_of({}, slice, {400, 400}), {400, 400}),
            (PixelRectangle{100, 0, 200, 400}));
  EXPECT_TRUE(visible_pixels(slice, {500, 0, 10, 10}, {40, 40}).is_empty());

  const Image odd{2, 2, {no_value, endless, -endless, 3}, {}};
  const PixelRectangle all{0, 0, 2, 2};
  EXPECT_EQ(sample_area(odd, whole_area(odd), {2, 2}, all, ValueRange{1, 5}).samples,
            (std::vector<float>{1, 5, 1, 3}));
  const Image mean = sample_area(odd, whole_area(odd), {1, 1}, {0, 0, 1, 1}, ValueRange{1, 5});
  EXPECT_EQ(mean.samples, std::vector<float>{3});  // the box begins at the last sample
}

// "octrender slice": two B-scans of two samples of depth and three A-scans.
class Slice : public ProgramTest {
 protected:
  Slice() : ProgramTest("slice in.npy -o out.png --range 0 255") {
    write_npy("in.npy", "2, 2, 3", {0, 20, 40, 60, 80, 100, 120, 140, 160, 180, 200, 220});
    write_npy("heights.npy", "2, 3", {0, 1, no_value, 0, 0, 1});
  }

  Image written(const std::string& further, const std::string& output) {
    EXPECT_EQ(run_bare("slice in.npy -o " + output + " --range 0 220 " + further), 0) << error_text_;
    return load_image({output, {}, {}}, {}).image;
  }
};

TEST_F(Slice, ShowsSectionsAndProjections) {
  expect_picture("--position 1", 3, 2, {120, 140, 160, 180, 200, 220});
  EXPECT_EQ(error_text_, "");
  expect_picture("--axis enface --position 1", 3, 2, {60, 80, 100, 180, 200, 220});
  expect_picture("--axis third", 2, 2, {20, 140, 80, 200});
  expect_in("in.npy: showing position 1 of 0 to 2; choose another with --position", error_text_);
  expect_picture("--axis enface --position 1 --layers 2", 3, 2, {30, 50, 70, 150, 170, 190});
  expect_picture("--axis enface --position 0 --layers 3 --projection maximum", 3, 2,
                 {60, 80, 100, 180, 200, 220});
  expect_picture("--axis enface --surface heights.npy", 3, 2, {0, 80, 0, 120, 140, 220});
  expect_picture("--axis enface --surface heights.npy --position -1", 3, 2, {0, 20, 0, 0, 0, 160});
  expect_picture("--axis third --position 2 --size 4x2 --background 0A0A0A", 4, 2,
                 {10, 40, 160, 10, 10, 100, 220, 10});
  expect_picture("--axis third --position 2 --size 2x2 --zoom 2 --center 0.75 0.25", 2, 2,
                 {160, 160, 160, 160});
  expect_picture("--position 0 --extent 4 3 2", 3, 4, {0, 20, 40, 0, 20, 40, 60, 80, 100, 60, 80, 100});
  expect_picture(
      "--position 1 --overlay in.npy --overlay-colormap gray --overlay-opacity 1 --overlay-range 220 0 "
      "--overlay-threshold 190",
      3, 2, {120, 140, 160, 180, 23, 0});
}

// A sweep reads the whole volume, a section by itself no more than it shows. What is not finite takes the volume's ends all the
// same.
TEST_F(Slice, ReadsOfOneSectionWhatItShows) {
  const VolumeData volume = odd_volume(9, 7, 8);
  std::vector<float> rising = volume.voxels;
  std::iota(rising.begin(), rising.end(), 1.0F);
  write_npy("odd.npy", "8, 7, 9", volume.voxels);
  write_npy("rising.npy", "8, 7, 9", rising);
  std::vector<float> heights;
  for (int i = 0; i < 8 * 7; ++i) heights.push_back(i % 5 ? static_cast<float>(i % 11) - 2.2F : no_value);
  write_npy("bad.npy", "8, 7", heights);
  write_npy("abd.npy", "7, 8", heights);
  const std::string data = "slice odd.npy --range -500 600 --axes ";
  for (const std::string section :
       {"bscan", "third", "enface", "enface --layers 4", "enface --layers 5 --projection maximum",
        "enface --surface", "enface --layers 30 --surface"}) {
    for (const std::string order : {"bad", "dab", "abd"}) {
      const bool follows = section.ends_with("--surface");
      if (follows && order == "dab") continue;
      for (const std::string further : {"", " --db", " --overlay rising.npy --overlay-range 1 504"}) {
        if (order != "bad" && !further.empty()) continue;
        const std::string words =
            data + order + " --axis " + section + (follows ? " " + order + ".npy" : "") + further;
        SCOPED_TRACE(words);
        ASSERT_EQ(run_bare(words + " -o all.png --sweep 5:5"), 0) << error_text_;
        ASSERT_EQ(run_bare(words + " -o out.png --position 5"), 0) << error_text_;
        EXPECT_EQ(read_picture("out.png").pixels, read_picture("all-000.png").pixels);
      }
    }
  }
  std::filesystem::remove("out.png");
  expect_error(3, "--overlay odd.npy", "odd.npy: the overlay has another size than the volume");
}

TEST_F(Slice, SweepsInOneRange) {
  EXPECT_EQ(run_bare("slice in.npy -o turn.png --axis third --sweep 2:0:-2"), 0) << error_text_;
  EXPECT_FALSE(std::filesystem::exists("turn-002.png"));
  EXPECT_EQ(run_bare("slice in.npy -o out.png --axis third --position 0 --range 2.2 218.9"), 0)
      << error_text_;
  EXPECT_EQ(read_picture("turn-001.png").pixels, read_picture("out.png").pixels);
  EXPECT_EQ(run_bare("slice in.npy -o out.apng --axis enface --sweep all --range 0 255"), 0) << error_text_;
  EXPECT_EQ(read_picture("out.apng").pixels, draw("--axis enface --position 0"));
}

TEST_F(Slice, WritesValues) {
  const Image png = written("--depth 16 --position 0", "out.png");
  EXPECT_EQ(png.samples, (std::vector<float>{0, 17873, 5958, 23831, 11915, 29789}));
  const Image tiff = written("--axis third --position 1 --extent 0.01 3 0.5", "out.tif");
  EXPECT_EQ(tiff.samples, (std::vector<float>{5958, 23831, 41704, 59577}));
  EXPECT_NEAR(tiff.spacing.mm[0], 0.005, 1e-9);
  EXPECT_NEAR(tiff.spacing.mm[1], 0.25, 1e-7);
  const Image npy = written("--axis enface --surface heights.npy --position 1", "out.npy");
  ASSERT_EQ(npy.samples.size(), 6U);
  const std::vector<float> wanted{60, 180, no_value, 200, no_value, no_value};
  for (std::size_t i = 0; i < 6; ++i) EXPECT_PRED2(same_value, npy.samples[i], wanted[i]) << i;
  EXPECT_EQ(written("--position 1 --size 6x4", "out.npy").samples.size(), 24U);
}

TEST_F(Slice, RefusesWhatMakesNoSense) {
  expect_wrong("--axis", {"depth"});
  expect_wrong("--layers", {"0", "2", "2 --axis third"});
  expect_wrong("--surface", {"heights.npy"});
  expect_wrong("--projection", {"median"});
  expect_wrong("--zoom", {"2", "0 --size 2x2"});
  expect_wrong("--depth", {"12"});
  expect_error(2, "--depth 16 --overlay in.npy", "--overlay is for pictures of 8 bits");
  expect_error(2, "--depth 16 --sweep all", "--sweep draws pictures of 8 bits");
  expect_wrong("--sweep", {"", "1", "1:", "0:1:0", "0:1:-1", "1:0", "0:1:1:1", "a:b", "0:1 --position 1"});
  expect_wrong("--extent", {"1 2", "0 1 1", "1 1 nan"});
  expect_error(3, "--position 2", "in.npy: there is no position 2 along this axis; they go from 0 to 1");
  expect_error(3, "--axis third --sweep 0:3", "there is no position 3");
  EXPECT_EQ(run_bare("slice in.npy -o out.tif --depth 16"), 2);
  EXPECT_EQ(run_bare("slice in.npy -o out.apng"), 2);
  EXPECT_EQ(run_bare("slice in.npy -o in.npy"), 2);
  EXPECT_EQ(run_bare("slice in.npy -o none/out.tif"), 4);
  EXPECT_EQ(run_bare("slice in.npy -o none/out.npy"), 4);
  EXPECT_EQ(run_bare("slice in.npy -o out.txt"), 2);
}

}  // namespace
}  // namespace oct::app::test
