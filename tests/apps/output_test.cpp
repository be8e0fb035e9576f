// What pictures are made into: texts, animations, videos, tiles, transparency, figures, surfaces.
#include <cmath>
#include <cstring>
#include <random>

#include <nlohmann/json.hpp>

#include "apps/decoded_png.h"
#include "apps/program_test.h"
#include "command_line/shell_words.h"
#include "data/figure/figure.h"
#include "data/formats/png_reader.h"
#include "data/formats/png_writer.h"
#include "data/opacity.h"
#include "library/dynamic_library.h"
#include "scene/bscan_scene.h"
#include "scene/volume_scene.h"

namespace oct::app::test {
namespace {

using PixelBytes = std::vector<std::uint8_t>;

// Smooth in parts and noise in others, so that every filter has rows that suit it.
PixelBytes some_bytes(std::size_t count, std::size_t row) {
  std::mt19937 random(7);
  PixelBytes bytes;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t y = i / row;
    bytes.push_back(static_cast<std::uint8_t>(y % 5 == 0 ? random() : y % 5 * i / 3 + y * y));
  }
  return bytes;
}

TEST(PngWriter, KeepsEveryPixelAndText) {
  const TemporaryFolder folder;
  for (const auto& [width, height, channels, bits] : std::vector<std::array<unsigned, 4>>{
           {1, 1, 3, 8}, {7, 31, 1, 8}, {13, 20, 4, 8}, {5, 40, 1, 16}, {400, 300, 3, 8}}) {
    SCOPED_TRACE(std::to_string(width) + " " + std::to_string(channels) + " " + std::to_string(bits));
    const std::size_t row = std::size_t{width} * channels * bits / 8;
    const PixelBytes bytes = some_bytes(row * height, row);
    write_png(folder / "a.png", {{width, height}, channels, bits, bytes},
              {{"Software", "x"},
               {"Comment",
                "Gr\xC3\xB6\xC3\x9F"
                "e"},
               {"Title", "\xE7\x9A\xAE"}});
    const DecodedPng read = decoded_png(folder / "a.png");
    EXPECT_EQ((std::array{read.size.width, read.size.height, read.channels, read.sample_bits}),
              (std::array{width, height, channels, bits}));
    ASSERT_EQ(read.frames.size(), 1U);
    EXPECT_TRUE(read.frames[0] == bytes);
    EXPECT_EQ(read.texts, (std::map<std::string, std::string>{{"Software", "x"},
                                                              {"Comment",
                                                               "Gr\xF6\xDF"
                                                               "e"},
                                                              {"Title (UTF-8)", "\xE7\x9A\xAE"}}));
    EXPECT_TRUE(channels < 3 || read_png_picture(folder / "a.png").pixels == bytes);
  }
  EXPECT_EQ(folder.file_count(), 1);
}

TEST(ShellWords, AreTheWordsAgain) {
  EXPECT_EQ(
      shell_words({"octrender", "--range", "-1.5", "a b.npy", "", "it's", "$HOME", "h\xC3\xA4ut", "a*"}),
      "octrender --range -1.5 'a b.npy' '' 'it'\\''s' '$HOME' 'h\xC3\xA4ut' 'a*'");
}

class Output : public ProgramTest {
 protected:
  Output() : ProgramTest("volume in.npy -o out.png --size 80x60") {
    write_npy("in.npy", "5, 6, 4", volume_where(6, 4, 5, [](int z, int a, int) { return z < 3 && a > 0; }));
  }
};

TEST_F(Output, ATurntableIsOneAnimation) {
  ASSERT_EQ(run("--turntable 5 --mode maximum"), 0) << error_text_;
  ASSERT_EQ(run_bare("volume in.npy -o out.apng --size 80x60 --turntable 5 --fps 24 --mode maximum"), 0)
      << error_text_;
  const DecodedPng animation = decoded_png("out.apng");
  ASSERT_EQ(animation.frames.size(), 5U);
  EXPECT_EQ(animation.repetitions, 0U);
  EXPECT_EQ(animation.delays, std::vector<double>(5, 1.0 / 24));
  EXPECT_EQ(animation.texts.at("Comment"),
            "octrender volume in.npy -o out.apng --size 80x60 --turntable 5 --fps 24 --mode maximum");
  expect_in("octrender " + std::string(getRendererVersion()), animation.texts.at("Software"));
  for (unsigned i = 0; i < 5; ++i) {
    EXPECT_TRUE(animation.frames[i] == read_picture("out-00" + std::to_string(i) + ".png").pixels) << i;
  }
  EXPECT_FALSE(animation.frames[0] == animation.frames[1]);
}

TEST_F(Output, VideosAreWhatFfmpegMakesOfThePictures) {
  const std::string film = "volume in.npy -o out.mp4 --size 33x21 --turntable 3 --fps 12";
  const char* const path = std::getenv("PATH");
  const std::string before = path ? path : "";
  const auto restored = std::shared_ptr<void>(nullptr, [&](void*) {
    oct::test::set_environment("PATH", before.c_str());
    oct::test::set_environment("OCT_STAND_IN", "");
  });
  oct::test::set_environment("PATH", "nowhere");
  EXPECT_EQ(run_bare(film), 4);
  expect_in("out.mp4: ffmpeg, which writes .mp4 files, was not found on PATH", error_text_);

  oct::test::set_environment("PATH", OCT_STAND_IN_FOLDER);
  const auto files = [] { return std::distance(std::filesystem::directory_iterator("."), {}); };
  const auto count_before = files();
  write_file("out.mp4", "older");
  for (const auto& [behaviour, words] :
       {std::pair{"fails", "out.mp4: ffmpeg failed (exit code 3): Unknown encoder 'libx264'"},
        {"writes nothing", "out.mp4: ffmpeg ended early: "}}) {
    oct::test::set_environment("OCT_STAND_IN", behaviour);
    EXPECT_EQ(run_bare(film), 4);
    expect_in(words, error_text_);
    EXPECT_EQ(InputFile("out.mp4").whole(), "older");
  }
  oct::test::set_environment("OCT_STAND_IN", "");
  ASSERT_EQ(run_bare(film), 0) << error_text_;
  EXPECT_EQ(files(), count_before + 1);
  const std::string got = InputFile("out.mp4").whole();
  const std::size_t end = got.find("\n\n");
  const std::string arguments = "\n" + got.substr(0, end + 1);
  for (const char* const words : {"\nrawvideo\n", "\nrgb24\n", "\n33x21\n", "\n12\n", "\npipe:0\n"}) {
    expect_in(words, arguments);
  }
  expect_in("pad=34:22,fillborders=right=1:bottom=1:mode=smear,", arguments);
  expect_in("\ncomment=octrender " + film + "\n", arguments);
  std::string wanted;
  ASSERT_EQ(run_bare("volume in.npy -o out.png --size 33x21 --turntable 3"), 0);
  for (const char* const name : {"out-000.png", "out-001.png", "out-002.png"})
    wanted += bytes_of(read_picture(name).pixels);
  EXPECT_TRUE(got.substr(end + 2) == wanted);
  EXPECT_EQ(run_bare(film + " --transparent"), 2);
  EXPECT_EQ(run_bare("volume in.npy -o out.gif"), 2);
  expect_in("it needs --turntable N", error_text_);
}

// A scene with everything that is laid out for a picture as a whole.
VolumeScene full_scene(PictureSize size) {
  VolumeScene scene;
  VolumeData data;
  data.depth = 12, data.ascans = 10, data.bscans = 9;
  data.file_size = {12, 10, 9};
  std::mt19937 random(3);
  for (int i = 0; i < 12 * 10 * 9; ++i) data.voxels.push_back(static_cast<float>(random() % 1000) / 1000);
  scene.base.data = std::make_shared<const VolumeData>(std::move(data));
  scene.base.colormap = *find_colormap("inferno");
  set_opacity(scene.base.colormap, {0.3, 0, {}});
  HeightMap surface;
  surface.depths = std::make_shared<const std::vector<float>>(90, 8.0F);
  surface.range = {0, 12};
  surface.colormap = *find_colormap("viridis");
  scene.surface = surface;
  scene.extent = {3, 4, 5};
  scene.size = size;
  scene.angles = {25, -35};
  scene.zoom = 45;
  scene.jitter = true;
  scene.box = true;
  scene.slices = 60;
  scene.clip = ClipSetting{0.6, false, true};
  return scene;
}

Picture drawn(const VolumeScene& scene, unsigned tile = largest_tile) {
  Picture result;
  EXPECT_EQ(render_volume(
                scene, 1, [&](unsigned, const Picture& picture) { result = picture; }, tile),
            "");
  return result;
}

struct Difference {
  int worst = 0;
  double share = 0;  // of the samples that differ by more than three levels
};
Difference difference(const PixelBytes& a, const PixelBytes& b) {
  Difference result;
  if (a.size() != b.size()) return {999, 1};
  for (std::size_t i = 0; i < a.size(); ++i) {
    const int levels = std::abs(a[i] - b[i]);
    result.worst = std::max(result.worst, levels);
    result.share += levels > 3 ? 1.0 / static_cast<double>(a.size()) : 0.0;
  }
  return result;
}

// What is cut at the edge of a frame is rounded elsewhere: the edges of lines, and the rays that the rim of a face just
// lets pass.
TEST(Tiles, OfAVolumeFitWithoutSeams) {
  for (const bool perspective : {true, false}) {
    VolumeScene scene = full_scene({331, 247});
    scene.perspective = perspective;
    scene.zoom = perspective ? 45 : 26;
    const Picture whole = drawn(scene);
    for (const unsigned tile : {64U, 200U}) {
      const auto [worst, share] = difference(drawn(scene, tile).pixels, whole.pixels);
      EXPECT_LE(worst, 64) << tile << " " << perspective;
      EXPECT_LT(share, 0.01) << tile << " " << perspective;
    }
  }
}

Layer some_layer(std::size_t depth, std::size_t a_scans, const char* colormap) {
  Layer layer;
  layer.image.depth = depth;
  layer.image.ascans = a_scans;
  std::mt19937 random(5);
  for (std::size_t i = 0; i < depth * a_scans; ++i)
    layer.image.samples.push_back(static_cast<float>(random() % 100) / 100);
  layer.colormap = *find_colormap(colormap);
  return layer;
}

TEST(Tiles, OfABscanShowTheSameSamples) {
  BscanScene scene;
  scene.base = some_layer(50, 40, "viridis");
  scene.overlay.emplace();
  scene.overlay->layer = some_layer(25, 20, "gray");
  scene.overlay->threshold = 0.7;
  scale_alpha(scene.overlay->layer.colormap, 0.5);
  for (const auto& [width, height] :
       std::vector<std::pair<unsigned, unsigned>>{{157, 203}, {16, 9}, {33, 300}}) {
    scene.size = {width, height};
    for (const bool flip : {false, true}) {
      scene.flip = scene.pepper_filter = flip;
      EXPECT_TRUE(render_bscan(scene, 48).picture.pixels == render_bscan(scene).picture.pixels) << width;
    }
  }
}

// Laid over black and over white it gives the pictures that are drawn on them.
TEST(TransparentPictures, ShowWhatIsDrawnOnAnyBackground) {
  VolumeScene scene = full_scene({160, 120});
  scene.jitter = false;
  scene.transparent = true;
  const Picture clear = drawn(scene);
  ASSERT_EQ(clear.channels, 4U);
  scene.transparent = false;
  for (const int level : {0, 255}) {
    scene.background_bottom = scene.background_top = level == 0 ? 0x000000 : 0xFFFFFF;
    PixelBytes laid;
    for (std::size_t i = 0; i < clear.pixels.size(); ++i) {
      if (i % 4 == 3) continue;
      const int alpha = clear.pixels[i / 4 * 4 + 3];
      laid.push_back(
          static_cast<std::uint8_t>((clear.pixels[i] * alpha + level * (255 - alpha) + 127) / 255));
    }
    EXPECT_LE(difference(laid, drawn(scene).pixels).worst, 3) << level;  // each layer was rounded on its way
  }
  std::size_t half = 0;
  for (std::size_t i = 3; i < clear.pixels.size(); i += 4)
    half += clear.pixels[i] > 0 && clear.pixels[i] < 255;
  EXPECT_GT(half, 100U);
  EXPECT_EQ(clear.pixels[3], 0);  // a corner
}

TEST_F(Output, TransparentColoursOfABscanHaveAlpha) {
  write_npy("in.npy", "1, 3", {0, 1, 2});
  write_file("map.csv", "255,0,0,0\n0,200,0,102\n0,0,255,255\n");
  ASSERT_EQ(run_bare("bscan in.npy -o out.png --colormap map.csv --range 0 2 --transparent"), 0)
      << error_text_;
  const DecodedPng png = decoded_png("out.png");
  EXPECT_EQ(png.channels, 4U);
  EXPECT_EQ(png.frames[0], (PixelBytes{0, 0, 0, 0, 0, 200, 0, 102, 0, 0, 255, 255}));
}

class Figures : public ProgramTest {
 protected:
  Figures() : ProgramTest("bscan in.npy -o out.png") {}

  static std::array<int, 3> pixel(const Picture& picture, unsigned x, unsigned y) {
    const std::uint8_t* const at = &picture.pixels[(std::size_t{y} * picture.size.width + x) * 3];
    return {at[0], at[1], at[2]};
  }
  // The longest run of the colour in a row or a column.
  static unsigned run_of(const Picture& picture, std::array<int, 3> color, bool down) {
    unsigned longest = 0;
    const auto [width, height] = picture.size;
    for (unsigned line = 0; line < (down ? width : height); ++line) {
      unsigned length = 0;
      for (unsigned i = 0; i < (down ? height : width); ++i) {
        length = pixel(picture, down ? line : i, down ? i : line) == color ? length + 1 : 0;
        longest = std::max(longest, length);
      }
    }
    return longest;
  }
};

TEST_F(Figures, HaveBarsOfTheLengthThatTheyTell) {
  write_npy("in.npy", "100, 200", std::vector<float>(20000, 1.5F));
  // A third of 1 mm of 200 A-scans is 0.2 mm, or 40 pixels; of 0.5 mm of depth 0.1 mm, where rows lie apart twice as far.
  write_file("map.csv", "0,0,255\n255,0,0\n0,200,0\n");
  const std::string options = "--figure --colormap map.csv --range 0 3 --text-size 10 ";
  ASSERT_EQ(run(options + "--spacing 5 5 --spacing-unit um"), 0) << error_text_;
  const Picture square = read_picture("out.png");
  EXPECT_EQ(run_of(square, {0, 0, 0}, false), 40U);
  ASSERT_EQ(run_bare("bscan in.npy -o out.png --paper 102030 --size 200x200 " + options), 0);
  expect_in("no scale bar", error_text_);
  write_file("in.nrrd",
             "NRRD0004\ntype: uchar\ndimension: 2\nsizes: 200 100\nencoding: raw\nspacings: 0.005 0.005\n"
             "units: \"mm\" \"mm\"\n\n" +
                 std::string(20000, '\1'));
  ASSERT_EQ(run_bare("bscan in.nrrd -o out.png --paper 102030 --size 200x200 " + options), 0) << error_text_;
  const Picture stretched = read_picture("out.png");
  EXPECT_EQ(pixel(stretched, 0, 0), (std::array{16, 32, 48}));
  EXPECT_EQ(run_of(stretched, {255, 255, 255}, false), 40U);
  EXPECT_EQ(run_of(stretched, {255, 255, 255}, true), 40U);
  // The picture itself, all of one value, and the colour bar with the three colours in equal parts.
  EXPECT_EQ(run_of(square, {255, 0, 0}, false), 200U);
  EXPECT_NEAR(run_of(square, {0, 0, 255}, true), 33, 1);
  EXPECT_NEAR(run_of(square, {0, 200, 0}, true), 33, 1);
}

// The box without perspective is as wide as the scale says.
TEST(FigureScale, OfAVolumeHoldsWhereThereIsNoPerspective) {
  VolumeScene scene = full_scene({400, 300});
  EXPECT_FALSE(pixel_mm(scene));
  scene.perspective = false;
  scene.zoom = 30;
  scene.angles = {0, 0};
  scene.jitter = scene.box = scene.edges = scene.scale_marks = false;
  scene.clip.reset();
  scene.surface.reset();
  scene.look = VolumeLook::maximum;
  VolumeData bright = *scene.base.data;
  bright.voxels.assign(bright.voxels.size(), 1.0F);
  scene.base.data = std::make_shared<const VolumeData>(std::move(bright));
  scene.background_bottom = scene.background_top = 0;
  const Picture picture = drawn(scene);
  const auto is_lit = [&](std::size_t x, std::size_t y) { return picture.pixels[(y * 400 + x) * 3] > 0; };
  double width = 0, height = 0;
  for (std::size_t x = 0; x < 400; ++x) width += is_lit(x, 150);
  for (std::size_t y = 0; y < 300; ++y) height += is_lit(200, y);
  EXPECT_NEAR(width * *pixel_mm(scene), 4.0, *pixel_mm(scene));
  EXPECT_NEAR(height * *pixel_mm(scene), 3.0, *pixel_mm(scene));
}

TEST_F(Figures, PanelsKeepTheirPictures) {
  for (const auto& [name, size, level] :
       {std::tuple{"a.png", PictureSize{60, 40}, 250}, {"b.png", {50, 70}, 120}, {"c.png", {30, 30}, 60}}) {
    const Picture picture{
        size, PixelBytes(std::size_t{size.width} * size.height * 3, static_cast<std::uint8_t>(level))};
    write_png(name, picture);
  }
  ASSERT_EQ(run_bare("panels a.png b.png c.png -o out.png --text-size 12 --paper 808080"), 0) << error_text_;
  const Picture figure = read_picture("out.png");
  for (const auto& [level, width, height] : {std::array{250, 60, 40}, {120, 50, 70}, {60, 30, 30}}) {
    const std::array color{level, level, level};
    EXPECT_EQ(run_of(figure, color, false), static_cast<unsigned>(width));
    EXPECT_EQ(run_of(figure, color, true), static_cast<unsigned>(height));
  }
  EXPECT_EQ(figure.size.width, 6U + 60 + 6 + 50 + 6);  // two columns, half a line apart
  EXPECT_EQ(run_bare("panels a.png b.png -o out.png --labels x"), 2);
  EXPECT_EQ(run_bare("panels a.png a.png -o a.png"), 2);
  EXPECT_EQ(run_bare("panels a.png none.png -o out.png"), 3);
}

class Surfaces : public ProgramTest {
 protected:
  Surfaces() : ProgramTest("surface in.npy") {}

  template <class T>
  static T at(const std::string& bytes, std::size_t place) {
    T value{};
    if (place + sizeof value > bytes.size()) throw std::runtime_error("the file is too short");
    std::memcpy(&value, &bytes[place], sizeof value);
    return value;
  }
};

// Depth grows along the A-scans, two to one; one depth is missing, at the edge.
TEST_F(Surfaces, AreTrianglesWithAHoleWhereADepthIsMissing) {
  const float gap = std::numeric_limits<float>::quiet_NaN();
  write_npy("in.npy", "3, 3", {0, 2, 4, 0, 2, gap, 0, 2, 4});
  const std::string size = "--spacing 0.5 1 3";
  ASSERT_EQ(run("-o out.stl " + size), 0) << error_text_;
  const std::string stl = InputFile("out.stl").whole();
  const auto count = at<std::uint32_t>(stl, 80);
  // Two squares are whole, two have three corners.
  EXPECT_EQ(count, 6U);
  ASSERT_EQ(stl.size(), 84 + std::size_t{count} * 50);
  double area = 0;
  for (std::size_t i = 0; i < count; ++i) {
    std::array<float, 12> facet{};
    for (std::size_t j = 0; j < 12; ++j) facet[j] = at<float>(stl, 84 + i * 50 + j * 4);
    EXPECT_NEAR(facet[0], std::sqrt(0.5), 1e-6);  // it falls by 1 mm per mm along x
    EXPECT_NEAR(facet[1], 0, 1e-6);
    EXPECT_NEAR(facet[2], std::sqrt(0.5), 1e-6);
    const double ax = facet[6] - facet[3], ay = facet[7] - facet[4], bx = facet[9] - facet[3],
                 by = facet[10] - facet[4];
    EXPECT_GT(ax * by - ay * bx, 0);  // counterclockwise, seen from above
    area += (ax * by - ay * bx) / 2;
    for (std::size_t corner = 3; corner < 12; corner += 3)
      EXPECT_NEAR(facet[corner + 2], -facet[corner], 1e-6);
  }
  EXPECT_NEAR(area, 3.0 * 3, 1e-5);

  write_file("map.csv", "0,0,0\n255,128,0\n");
  ASSERT_EQ(run("-o out.glb --extent 4 3 9 --depth 8 --colormap map.csv --range 0 2"), 0) << error_text_;
  const std::string glb = InputFile("out.glb").whole();
  EXPECT_EQ(glb.substr(0, 4), "glTF");
  EXPECT_EQ(at<std::uint32_t>(glb, 4), 2U);
  EXPECT_EQ(at<std::uint32_t>(glb, 8), glb.size());
  const auto text_length = at<std::uint32_t>(glb, 12);
  EXPECT_EQ(glb.substr(16, 4), "JSON");
  const auto scene = nlohmann::json::parse(glb.substr(20, text_length));
  const std::size_t binary = 20 + text_length;
  EXPECT_EQ(glb.substr(binary + 4, 4), std::string("BIN\0", 4));
  EXPECT_EQ(at<std::uint32_t>(glb, binary), glb.size() - binary - 8);
  EXPECT_EQ(scene["buffers"][0]["byteLength"], at<std::uint32_t>(glb, binary));
  const auto& primitive = scene["meshes"][0]["primitives"][0];
  const auto start_of = [&](const nlohmann::json& accessor) {
    return binary + 8 +
           scene["bufferViews"][accessor["bufferView"].get<std::size_t>()]["byteOffset"].get<std::size_t>();
  };
  const auto& indices = scene["accessors"][primitive["indices"].get<std::size_t>()];
  EXPECT_EQ(indices["count"], 18);
  const auto attribute = [&](const char* name) -> const nlohmann::json& {
    return scene["accessors"][primitive["attributes"][name].get<std::size_t>()];
  };
  const auto& positions = attribute("POSITION");
  EXPECT_EQ(positions["count"], 8);  // of nine
  for (std::size_t axis = 0; axis < 3; ++axis) {
    EXPECT_NEAR(positions["max"][axis].get<double>(), (std::array{0.002, 0.0, 0.006}[axis]), 1e-9);
    EXPECT_NEAR(positions["min"][axis].get<double>(), (std::array{0.0, -0.002, 0.0}[axis]), 1e-9);
  }
  for (std::size_t i = 0; i < 18; ++i) EXPECT_LT(at<std::uint32_t>(glb, start_of(indices) + i * 4), 8U);
  EXPECT_NEAR(at<float>(glb, start_of(attribute("NORMAL")) + 4), std::sqrt(0.5), 1e-6);
  // Half the light of a screen is 128 of 255 to the power of 2.2.
  const std::size_t colors = start_of(attribute("COLOR_0"));
  EXPECT_EQ(at<std::uint16_t>(glb, colors), 0);
  EXPECT_EQ(at<std::uint16_t>(glb, colors + 8), 65535);
  EXPECT_NEAR(at<std::uint16_t>(glb, colors + 10), 65535 * std::pow(128 / 255.0, 2.2), 400);
  EXPECT_EQ(at<std::uint16_t>(glb, colors + 14), 65535);

  for (const char* const wrong : {"-o out.png --spacing 1 1 1", "-o out.stl", "-o out.stl --extent 1 1 1",
                                  "-o out.stl --spacing 0 1 1"}) {
    EXPECT_EQ(run(wrong), 2) << wrong;
  }
  write_npy("in.npy", "2, 2", {gap, 1, gap, 1});
  EXPECT_EQ(run("-o out.glb " + size), 3);
  expect_in("there is no surface", error_text_);
}

}  // namespace
}  // namespace oct::app::test
