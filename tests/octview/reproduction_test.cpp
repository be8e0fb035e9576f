// What brings a view back: the command line that octrender takes, and sessions.
#include <cmath>
#include <functional>
#include <random>

#include "apps/program_test.h"
#include "command_line/shell_words.h"
#include "octview/model/octrender_command.h"
#include "octview/model/session_file.h"
#include "octview/model/slice_picture.h"
#include "octview/model/slice_position.h"
#include "octview/model/volume_picture.h"
#include "octview/model/workspace.h"

namespace oct::app::test {
namespace {

constexpr PictureSize size{72, 54};

class Reproduction : public ProgramTest {
 protected:
  Reproduction() : ProgramTest("") {
    std::mt19937 random(3);
    std::vector<float> values = volume_where(6, 4, 5, [](int z, int a, int b) { return z * z + 3 * a + b; });
    for (float& value : values) value += static_cast<float>(random() % 1000) / 999;
    values[7] = std::numeric_limits<float>::quiet_NaN();
    values[9] = -std::numeric_limits<float>::infinity();
    write_npy("the volume's.npy", "5, 6, 4", values);
    write_file("raw.bin", "head" + bytes_of(values));
    write_npy("heights.npy", "5, 4", {1, 2, 3, 4, 1, 2, 3, 4, 2, 2, NAN, 4, 1, 2, 3, 4, 1, 2, 3, 5});
    write_npy("map.npy", "1, 2", {3.0F, 7.0F});
    write_file("own.csv", "0,0,0,0\n0,90,255,20\n255,0,0,200\n");
  }

  static std::vector<std::uint8_t> drawn_by(const std::vector<std::string>& command) {
    std::filesystem::remove("out.png");
    std::ostringstream error;
    auto* const before = std::cerr.rdbuf(error.rdbuf());
    const int code = run_program(command);
    std::cerr.rdbuf(before);
    EXPECT_EQ(code, 0) << error.str();
    return code == 0 ? read_picture("out.png").pixels : std::vector<std::uint8_t>();
  }

  static std::vector<std::uint8_t> drawn(const Document& document, const ViewState& state) {
    std::vector<std::uint8_t> pixels;
    render_volume(volume_scene(document, state, size), 1,
                  [&](unsigned, const Picture& picture) { pixels = picture.pixels; });
    return pixels;
  }
};

SessionFiles opened(const std::string& name) {
  SessionFiles files;
  files.base.path = name;
  return files;
}

// What a user may have set; each with the others where they go together.
const std::vector<std::function<void(SessionFiles&, ViewState&)>> changes{
    [](SessionFiles&, ViewState&) {},
    [](SessionFiles& files, ViewState& state) {
      files.extent = {1.1, 2.0 / 3, 1e-2 * std::sqrt(2)};
      state.volume.angles = {std::nextafter(-17.1, 0), 1.0 / 3};
      state.volume.translation = {0.1, -1e-7, 0.3};
      state.volume.zoom = 33.3;
      state.volume.perspective = false;
    },
    [](SessionFiles& files, ViewState& state) {
      files.decibels = true;
      state.base.range = {-3.3, 1.0F / 3};
      state.base.opacity = {0.7, 0.15, {{0, 0.05}, {1.0 / 3, 0.1}, {0.9, 1}}};
      state.volume.opacity_length = 0.7;
      state.volume.lighting = {0.3, 0.7, 0.2};
      state.volume.jitter = true;
      state.volume.slices = 77;
    },
    [](SessionFiles&, ViewState& state) {
      state.volume.look = VolumeLook::sections;
      state.volume.sections = {0.1F, std::nullopt, 2.0F / 3};
      state.base.colormap = "viridis";
      state.base.reverse = true;
      state.volume.background_bottom = 0x0A0B0C;
      state.volume.foreground = 0x00FF00;
    },
    [](SessionFiles& files, ViewState& state) {
      state.volume.look = VolumeLook::mean;
      files.extent = {2, 2, 2};
      state.volume.scale_marks = false;
      state.volume.edges = false;
      state.volume.box = true;
      state.volume.clip = ClipSetting{1.0 / 7, true, true};
    },
    [](SessionFiles& files, ViewState& state) {
      files.surface.path = "heights.npy";
      state.base.visible = false;
      state.surface.range = {0.5, 5.5};
      state.surface.colormap = "cividis";
      state.surface.reverse = true;
      state.base.colormap = "own.csv";
    },
    [](SessionFiles& files, ViewState& state) {
      files.overlay.path = "the volume's.npy";
      state.overlay.range = {20, 44};
      state.overlay.colormap = "magma";
      state.base.colormap = "own.csv";
    },
    [](SessionFiles& files, ViewState& state) {
      files.secondary.path = "map.npy";
      files.overlay.path = "the volume's.npy";  // gives way
      state.volume.secondary_colors = true;
      state.secondary.range = {2, 8};
      state.secondary.colormap = "viridis";
      state.secondary.reverse = true;
    },
    [](SessionFiles& files, ViewState&) {
      RawLayout raw{6, 4, 5, {SampleType::float32, false}, 4, {}};
      files.base = {"raw.bin", raw, picture_order};
    }};

TEST_F(Reproduction, CommandsDrawWhatIsShownByteForByte) {
  std::vector<std::vector<std::uint8_t>> pictures;
  for (std::size_t i = 0; i < changes.size(); ++i) {
    SCOPED_TRACE(i);
    SessionFiles files = opened("the volume's.npy");
    ViewState changed;
    changes[i](files, changed);
    const Document document = load_document(files, no_progress);
    ViewState state = start_state(document);
    changes[i](files, state);
    const std::vector<std::uint8_t> shown = drawn(document, state);
    EXPECT_TRUE(drawn_by(volume_command(files, state, size, "out.png")) == shown);
    // By way of a session, too.
    write_session("a.json", {files, state});
    const Session session = read_session("a.json");
    EXPECT_TRUE(drawn(load_document(session.files, no_progress), session.state) == shown);
    if (i + 1 < changes.size()) {  // the raw file is the first one
      EXPECT_EQ(std::ranges::count(pictures, shown), 0);
    }
    pictures.push_back(shown);
  }
  EXPECT_TRUE(pictures.back() == pictures.front());
  SessionFiles other = opened("raw.bin");
  other.overlay = {"raw.bin", RawLayout{6, 4, 5, {}, 4, {}}, {}};
  EXPECT_NE(
      error_of<std::runtime_error>([&] { volume_command(other, {}, size, "out.png"); }).find("the overlay"),
      std::string::npos);
}

TEST_F(Reproduction, CommandsOfSectionsDrawWhatIsShownByteForByte) {
  SessionFiles files = opened("the volume's.npy");
  files.surface.path = "heights.npy";
  files.overlay.path = "the volume's.npy";
  const Document document = load_document(files, no_progress);
  ViewState state = start_state(document);
  state.overlay.range = {20, 44};
  state.overlay.opacity.highest = 1.0 / 3;
  std::vector<std::vector<std::uint8_t>> pictures;
  for (const bool changed : {false, true}) {
    if (changed) {
      state.enface = {3, Projection::maximum, true};
      state.below_surface = -1;
      state.cursor = {2, 3, 1};
      state.windows = {SliceWindow{3.7, {0.4, 1.0 / 3}}, {0.5, {0.9, 0.1}}, {2.2, {0.1, 0.5}}};
      state.base.colormap = "own.csv";
      state.overlay.visible = false;
    }
    for (const SliceAxis axis : {SliceAxis::bscan, SliceAxis::enface, SliceAxis::third}) {
      const SliceScene scene = slice_scene(state, axis, slice_images(document, state, axis), size);
      const std::vector<std::uint8_t> shown = render_slice(scene).picture.pixels;
      const std::ptrdiff_t position = slice_position(document, state, axis).position;
      EXPECT_EQ(run_program(slice_command(files, state, axis, position, size, "out.png")), 0);
      EXPECT_TRUE(read_picture("out.png").pixels == shown);
      EXPECT_EQ(std::ranges::count(pictures, shown), 0);
      pictures.push_back(shown);
    }
  }
  files.base.path.clear();  // live
  EXPECT_THROW(slice_command(files, state, SliceAxis::bscan, 0, size, "out.png"), std::runtime_error);
}

// What the driver cannot draw as it is comes reduced, as octrender reduces it; sections keep every voxel.
TEST_F(Reproduction, LargeVolumesAreDrawnReducedAndCutWhole) {
  VolumeLimits drawable;
  drawable.voxels_per_axis = 3;
  DocumentLimits limits{{}, drawable};
  write_npy("finite.npy", "5, 6, 4",
            volume_where(6, 4, 5, [](int z, int a, int b) { return z * z + 3 * a * b; }));
  SessionFiles files = opened("finite.npy");
  files.overlay.path = "finite.npy";
  const Document document = load_document(files, no_progress, {}, limits);
  const VolumeData reduced = load_volume(files.base, drawable);
  ASSERT_TRUE(document.drawn_volume);
  EXPECT_EQ(document.drawn_volume->reduction, (std::array<std::size_t, 3>{2, 2, 2}));
  EXPECT_EQ(document.drawn_volume->depth, reduced.depth);
  EXPECT_EQ(document.drawn_overlay->ascans, reduced.ascans);
  EXPECT_EQ(document.drawn_volume->voxels, reduced.voxels);
  EXPECT_EQ(document.volume->depth, 6U);
  EXPECT_EQ(document.extent(), (std::array<double, 3>{6, 4, 5})) << "the box stays that of the whole volume";

  // What memory does not hold is reduced while it is read, and once more where the driver draws less.
  limits.memory.voxels_per_axis = 5;
  const Document less = load_document(files, no_progress, {}, limits);
  EXPECT_EQ(less.volume->voxels, load_volume(files.base, limits.memory).voxels);
  EXPECT_EQ(less.volume->reduction, (std::array<std::size_t, 3>{2, 1, 1}));
  EXPECT_EQ(less.drawn_volume->reduction, (std::array<std::size_t, 3>{2, 2, 2}));
  EXPECT_EQ(less.extent(), document.extent());
}

TEST(ShellWords, AreTakenApartAgain) {
  const std::vector<std::string> words{"it's",    "",          "two words",   "a\"b\\",
                                       "c:\\d\\", "plain-1.5", "$HOME `x` !", "h\xC3\xA4ut"};
  EXPECT_EQ(shell_words(words),
            "'it'\\''s' '' 'two words' 'a\"b\\' 'c:\\d\\' plain-1.5 '$HOME `x` !' 'h\xC3\xA4ut'");
  EXPECT_EQ(windows_shell_words(words),
            "\"it's\" \"\" \"two words\" \"a\\\"b\\\\\" c:\\d\\ plain-1.5 \"$HOME `x` !\" \"h\xC3\xA4ut\"");
}

TEST_F(Reproduction, SessionsKeepEverythingAndMoveWithTheirFiles) {
  std::filesystem::create_directories("one/data");
  std::filesystem::rename("the volume's.npy", "one/data/h\xC3\xA4ut.npy");
  SessionFiles files = opened("one/data/h\xC3\xA4ut.npy");
  files.surface.path = std::filesystem::absolute("heights.npy");
  ViewState state;
  for (const auto& change : changes) {
    SessionFiles ignored;
    change(ignored, state);
  }
  state.cursor = {1, 2.5, 3};
  state.enface = {7, Projection::maximum, true};
  state.below_surface = -2.5;
  state.windows[1] = {3.5, {0.1, 0.9}};
  state.large = Pane::third;
  state.crosshair = false;
  state.base.shares = Shares{0.6, 0.998};
  state.measurements = {{MeasurementKind::angle, "wall", {{1, 2, 3}, {0.1, 0, 0}, {4, 4, 4}}}};
  write_session("one/s.json", {files, state});
  std::filesystem::rename("one", "two");
  const Session session = read_session("two/s.json");
  EXPECT_EQ(session.files.base.path, std::filesystem::absolute("two/data/h\xC3\xA4ut.npy"));
  EXPECT_EQ(session.files.surface.path, files.surface.path);
  EXPECT_EQ(session.state.volume, state.volume);
  for (LayerLook ViewState::*look :
       {&ViewState::base, &ViewState::overlay, &ViewState::surface, &ViewState::secondary})
    EXPECT_EQ(session.state.*look, state.*look);
  EXPECT_EQ(session.state.below_surface, state.below_surface);
  EXPECT_EQ(session.state.windows, state.windows);
  EXPECT_EQ(session.state.enface, state.enface);
  EXPECT_EQ(session.state.cursor, state.cursor);
  EXPECT_EQ(session.state.large, state.large);
  EXPECT_EQ(session.state.crosshair, state.crosshair);
  EXPECT_EQ(session.state.measurements, state.measurements);
  EXPECT_TRUE(is_session("two/s.json"));
  EXPECT_FALSE(is_session("two/data/h\xC3\xA4ut.npy"));
  EXPECT_EQ(error_of<WriteError>([&] {
              write_session("two/s.json", {opened("-"), state});
            }).find("two/s.json: the standard input"),
            0U);
  EXPECT_TRUE(is_session("two/s.json"));  // as it was
}

TEST_F(Reproduction, SessionsThatAreWrongNameTheField) {
  const std::string head = R"({"octview_session": 1, "files": {"volume": {"path": "a.npy")";
  const auto refused = [&](const std::string& text) {
    write_file("s.json", text);
    return error_of<ReadError>([] { read_session("s.json"); });
  };
  for (const auto& [text, words] : std::vector<std::pair<std::string, std::string>>{
           {"", "the file is empty"},
           {"[1]", "this is no session of octview"},
           {head, "this is no session of octview, or was cut off"},
           {R"({"octview_session": 2})", "the session has version 2; this octview reads version 1"},
           {R"({"octview_session": 1})", "files.volume.path is missing"},
           {head + R"(}, "extent_mm": [1, 2]}})", "files.extent_mm must be a list of 3 values"},
           {head + R"(, "raw": {"depth": 1e99}}}})",
            "files.volume.raw.depth must be a whole number from 1 to 65536"},
           {head + R"(, "raw": {"depth": 2}}}})", "files.volume.raw: sizes must be 1 or more"},
           {head + R"(, "axes": ["depth", "width", "bscan"]}}})",
            "files.volume.axes[1] must be one of depth, ascan, bscan"},
           {head + R"(}}, "state": 4})", "state must be an object"},
           {head + R"(}}, "state": {"volume_view": {"zoom": "40"}}})",
            "state.volume_view.zoom must be a number from 0.1 to 170"},
           {head + R"(}}, "state": {"volume_view": {"steps": 1.5}}})",
            "state.volume_view.steps must be a whole number from 1 to 4096"},
           {head + R"(}}, "state": {"volume": {"range": {"lower": 2, "upper": 2}}}})",
            "state.volume.range: lower and upper must differ"},
           {head + R"(}}, "state": {"overlay": {"colormap": "pink"}}})",
            "state.overlay.colormap: there is no colour map 'pink'"},
           {head + R"(}}, "state": {"volume": {"opacity": {"points": [[0.5, 0], [0.4, 1]]}}}})",
            "state.volume.opacity.points must be places in rising order"},
           {head + R"(}}, "state": {"measurements": [{"kind": "angle", "points": [[0, 0, 0]]}]}})",
            "state.measurements[0].points must be 3 points"}}) {
    EXPECT_EQ(refused(text).find("s.json: " + words), 0U) << refused(text);
  }
  // Fields of later versions are passed over, and what is missing keeps its default.
  write_file(
      "s.json",
      head +
          R"(, "colour": {}}, "decibels": true}, "later": [null], "state": {"volume": {"reverse": true}}})");
  const Session session = read_session("s.json");
  EXPECT_TRUE(session.files.decibels);
  EXPECT_TRUE(session.state.base.reverse);
  EXPECT_EQ(session.state.base.colormap, "gray");
}

}  // namespace
}  // namespace oct::app::test
