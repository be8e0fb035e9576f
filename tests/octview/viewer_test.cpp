// The whole viewer, used as a person would: scripts of mouse and keys, and what the window then shows.
#include <array>
#include <cmath>
#include <cstdio>

#include <nlohmann/json.hpp>

#include "apps/program_test.h"
#include "data/volume_reader.h"
#include "octview/program.h"

namespace oct::app::test {
namespace {

using Json = nlohmann::json;

constexpr int depth = 24, a_scans = 30, b_scans = 20;

// Different in every voxel, and brighter with depth.
float value_at(int z, int a, int b) {
  return static_cast<float>(z * 1000 + a * 30 + b);
}

// What the window says of the place under the mouse.
struct Reading {
  float value;
  std::array<int, 3> voxel;  // depth, A-scan, B-scan
};

Reading reading_of(const Json& state) {
  const std::string text = state.at("under_cursor");
  Reading reading{};
  auto& [depth_index, a_scan, b_scan] = reading.voxel;
  if (std::sscanf(text.c_str(), "value %f voxel %d, %d, %d", &reading.value, &depth_index, &a_scan,
                  &b_scan) != 4)
    throw std::runtime_error("no voxel in '" + text + "'");
  return reading;
}

class Viewer : public ProgramTest {
 protected:
  Viewer() : ProgramTest("") {
    std::vector<float> values;
    for (int b = 0; b < b_scans; ++b)
      for (int z = 0; z < depth; ++z)
        for (int a = 0; a < a_scans; ++a) values.push_back(value_at(z, a, b));
    write_npy("ramp.npy", "20, 24, 30", values);
  }

  // Plays the lines on a window of 1024 x 700 points, and returns its state at their end.
  Json play(const std::string& lines, std::vector<std::string> arguments = {"ramp.npy"}) {
    write_file("input.txt", "wait\n" + lines + "\nstate state.json\nquit\n");
    const std::vector<std::string> common{"--script", "input.txt", "--size", "1024x700"};
    arguments.insert(arguments.begin(), common.begin(), common.end());
    if (std::ranges::count(arguments, "--scale") == 0) arguments.insert(arguments.end(), {"--scale", "1"});
    std::filesystem::remove("state.json");
    std::ostringstream error;
    auto* const before = std::cerr.rdbuf(error.rdbuf());
    const int code = run_viewer(arguments);
    std::cerr.rdbuf(before);
    EXPECT_EQ(code, 0) << error.str();
    return code == 0 ? json("state.json") : Json();
  }

  // What the script kept on its way.
  static Json json(const std::string& file) {
    std::ifstream stream(file);
    return Json::parse(stream);
  }
  static Json state(int number) { return json(std::to_string(number) + ".json"); }

  // Handles lie upon what they belong to.
  static bool is_handle_of(const Json& handle, const Json& area) {
    const std::string label = area.at("label");
    if (label != "Histogram" && label != "Opacity curve" && !label.ends_with("##pane")) return false;
    return !handle.at("label").get<std::string>().ends_with("##pane");
  }

  static Json item(const Json& state, const std::string& label) {
    for (const Json& candidate : state.at("items"))
      if (candidate.at("label") == label) return candidate;
    throw std::runtime_error("no item " + label);
  }
};

TEST_F(Viewer, SectionsShowTheirVoxelsUnderOneCrosshair) {
  // Places off the crosshair, the labels and the scale bar.
  const std::vector<std::pair<std::string, std::array<double, 2>>> places{
      {"B-scan##pane", {0.4, 0.3}},  {"B-scan##pane", {0.7, 0.7}},  {"En face##pane", {0.4, 0.4}},
      {"En face##pane", {0.6, 0.6}}, {"Section##pane", {0.4, 0.3}}, {"Section##pane", {0.6, 0.7}}};
  std::string lines;
  for (std::size_t i = 0; i < places.size(); ++i) {
    const auto& [pane, at] = places[i];
    lines += "move \"" + pane + "\" " + std::to_string(at[0]) + " " + std::to_string(at[1]) +
             "\nframes 2\nstate " + std::to_string(i) + ".json\n";
  }
  const Json last = play(lines + "move 5 5\nframes 2\ncapture out.png");
  const Picture shown = read_picture("out.png");
  for (std::size_t i = 0; i < places.size(); ++i) {
    SCOPED_TRACE(places[i].first + " " + std::to_string(i));
    const auto [value, voxel] = reading_of(state(static_cast<int>(i)));
    EXPECT_FLOAT_EQ(value, value_at(voxel[0], voxel[1], voxel[2]));
    const Json pane = item(last, places[i].first);
    const double x = pane["from"][0].get<double>() +
                     places[i].second[0] * (pane["to"][0].get<double>() - pane["from"][0].get<double>());
    const double y = pane["from"][1].get<double>() +
                     places[i].second[1] * (pane["to"][1].get<double>() - pane["from"][1].get<double>());
    const double gray = 255 * (value - last["range"][0].get<double>()) /
                        (last["range"][1].get<double>() - last["range"][0].get<double>());
    // The mouse may be on the edge of a voxel, within its pixel.
    double nearest = 255;
    for (const auto& [right, down] : {std::pair(0, 0), {-1, 0}, {1, 0}, {0, -1}, {0, 1}}) {
      const std::size_t pixel =
          (static_cast<std::size_t>(y) + down) * shown.size.width + static_cast<std::size_t>(x) + right;
      nearest = std::min(nearest, std::abs(shown.pixels[pixel * 3] - std::clamp(gray, 0.0, 255.0)));
    }
    EXPECT_LE(nearest, 2);
  }
}

TEST_F(Viewer, CrosshairIsLinkedAndSectionsStepAndGrow) {
  const Json last = play(
      "hold Shift\nmove \"B-scan\" 0.35 0.3\nmove \"B-scan\" 0.4 0.3\nframes 1\nlet Shift\nframes 2\nstate "
      "0.json\n"
      "key Right\nkey Right\nkey PageDown\nframes 2\nstate 1.json\n"
      "double Section\nframes 3\nstate 2.json\ndouble Section\nframes 3");
  const Json moved = state(0);
  const Reading reading = reading_of(moved);
  EXPECT_EQ(std::lround(moved["cursor"][0].get<double>()), reading.voxel[0]);
  EXPECT_EQ(std::lround(moved["cursor"][1].get<double>()), reading.voxel[1]);
  EXPECT_EQ(moved["cursor"][2], b_scans / 2);
  EXPECT_EQ(state(1)["cursor"][2], b_scans - 1) << "two and ten further, but there is a last one";
  EXPECT_EQ(reading_of(state(1)).voxel,
            (std::array<int, 3>{reading.voxel[0], reading.voxel[1], b_scans - 1}));
  EXPECT_EQ(state(2)["large"], "Section");
  EXPECT_EQ(last["large"], "");
}

TEST_F(Viewer, SectionsZoomTowardsTheCursorAndMove) {
  const std::string at = "move \"B-scan\" 0.3 0.35\nframes 2\n";
  const Json fitted =
      play(at + "state 0.json\nwheel 3\nframes 2\nstate 1.json\n" +
           "drag \"B-scan\" 0.3 0.35 \"B-scan\" 0.5 0.6\nframes 2\nstate 2.json\nkey F\n" + at);
  const std::array<int, 3> voxel = reading_of(state(0)).voxel;
  EXPECT_EQ(reading_of(state(1)).voxel, voxel);
  EXPECT_EQ(reading_of(state(2)).voxel, voxel) << "what was under the mouse goes with it";
  EXPECT_EQ(reading_of(fitted).voxel, voxel);
}

TEST_F(Viewer, LooksAreSetByHandAndComeBackWithASession) {
  const Json set = play(
      "state 0.json\ndrag \"Upper end\" Histogram 0.6 0.5\nclick Curve\nframes 3\nclick \"Opacity curve\" "
      "0.37 0.9\nframes "
      "2\n"
      "drag \"Point 3\" \"Opacity curve\" 0.4 0.2\nclick Opacity\nclick \"Values and colours\"\n"
      "click \"View of the volume\"\nframes 3\nclick Session\nframes 2\nclick \"Copy as octrender command\"\n"
      "click \"Save ...\"\nframes 3\ntype look.json\nframes 2\nkey Enter\nframes 3");
  const Json start = state(0);
  EXPECT_EQ(set["range"][0], start["range"][0]);
  EXPECT_LT(set["range"][1], start["range"][1]);
  EXPECT_GT(set["range"][1].get<double>(), 0.4 * start["range"][1].get<double>());
  ASSERT_EQ(set["opacity_points"].size(), 6U);
  EXPECT_NEAR(set["opacity_points"][2][0].get<double>(), 0.4, 0.02);
  EXPECT_NEAR(set["opacity_points"][2][1].get<double>(), 0.8, 0.02);
  std::string command = set["clipboard"];
  std::erase_if(command, [](char letter) { return letter == '"' || letter == '\''; });  // no word has blanks
  ASSERT_EQ(command.find("octrender volume ramp.npy -o picture.png "), 0U) << command;
  EXPECT_EQ(run_bare(command.substr(command.find(' ') + 1)), 0) << error_text_;

  const Json preset = play("state 0.json\nclick Needle\nwait", {"look.json"});
  std::ifstream second("0.json");
  const Json again = Json::parse(second);
  for (const char* const what : {"title", "range", "opacity_points", "angles", "cursor"})
    EXPECT_EQ(again[what], set[what]);
  EXPECT_EQ(preset["mode"], 1);
  EXPECT_EQ(preset["angles"], start["angles"]);
}

TEST_F(Viewer, VolumeTurnsUprightAndTakesItsKeys) {
  std::string lines =
      "move Volume\nkey R\nwait\nstate 0.json\n"
      "drag Volume 0.5 0.5 Volume 0.75 0.5\nwait\nstate 1.json\n"
      "drag Volume 0.5 0.1 Volume 0.5 0.9\ndrag Volume 0.5 0.1 Volume 0.5 0.9\nwait\nstate 2.json\n"
      "wheel 2\nwait\nstate 3.json\nkey R\nwait\nstate 4.json\n";
  for (const char* const mode : {"1", "2", "3", "4"})
    lines += std::string("key ") + mode + "\nframes 2\nstate mode" + mode + ".json\n";
  play(lines);
  const Json start = state(0);
  EXPECT_EQ(state(1)["angles"][0], start["angles"][0]) << "a drag to the side leaves depth upright";
  EXPECT_GT(std::abs(state(1)["angles"][1].get<double>() - start["angles"][1].get<double>()), 20);
  EXPECT_LE(std::abs(state(2)["angles"][0].get<double>()), 90);
  EXPECT_LT(state(3)["zoom"], start["zoom"]);
  EXPECT_EQ(state(4)["angles"], start["angles"]);
  EXPECT_EQ(state(4)["zoom"], start["zoom"]);
  for (int mode = 0; mode < 4; ++mode)
    EXPECT_EQ(json("mode" + std::to_string(mode + 1) + ".json")["mode"], mode);
}

// The crosshair goes where the volume is seen, and its sections with it.
TEST_F(Viewer, VolumeTellsWhatIsSeenInItAndTakesTheCrosshairThere) {
  const Json last = play(
      "move Volume\nkey 4\nwait\nmove Volume 0.02 0.02\nframes 2\nstate 0.json\n"
      "hold Shift\nmove Volume 0.45 0.5\nmove Volume 0.46 0.5\nlet Shift\nwait\n"
      "move Volume 0.5 0.5\nmove Volume 0.46 0.5\nframes 2\nstate 1.json\n"
      "click Measure##B-scan\nframes 2\nclick \"Distance between two points\"\nframes 2\n"
      "click Volume 0.46 0.5\nframes 2\nclick Volume 0.38 0.42\nframes 30\nstate 2.json\n"
      "drag Volume 0.38 0.42 Volume 0.55 0.6\nwait\nmove Volume 0.5 0.6\nmove Volume 0.55 0.6\nframes 2");
  const Json shown = state(1);
  const Reading reading = reading_of(shown);
  // Half floats, and places between voxels.
  EXPECT_NEAR(reading.value, value_at(reading.voxel[0], reading.voxel[1], reading.voxel[2]), 560);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(shown["cursor"][i].get<double>(), reading.voxel[i], 1);
  EXPECT_EQ(state(0)["under_cursor"], "") << "beside the box";

  // A measured point is taken along the faces that are seen.
  ASSERT_EQ(state(2)["measured_points"].size(), 1U);
  const Json before = state(2)["measured_points"][0], after = last["measured_points"][0];
  for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(before[0][i].get<double>(), reading.voxel[i], 0.51);
  EXPECT_EQ(after[0], before[0]);
  EXPECT_NE(after[1], before[1]);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(after[1][i].get<double>(), reading_of(last).voxel[i], 0.51);
  EXPECT_EQ(last["angles"], shown["angles"]) << "the volume stays";
}

std::string comment_of(const std::string& png) {
  const std::string key = std::string("Comment") + '\0';
  const std::size_t at = png.find(key);
  if (at == std::string::npos) return {};
  std::uint32_t size = 0;
  for (std::size_t i = at - 8; i < at - 4; ++i) size = size << 8 | static_cast<std::uint8_t>(png[i]);
  return png.substr(at + key.size(), size - key.size());
}

std::string bytes_of(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

TEST_F(Viewer, SavedPicturesAreThoseOfOctrender) {
  const std::string save = "key Ctrl+S\nframes 2\ntype saved.png\nframes 2\nclick Save\nwait";
  for (const auto& [view, words] : std::vector<std::pair<std::string, std::vector<std::string>>>{
           {"drag Volume 0.5 0.5 Volume 0.7 0.6\nkey C\nframes 2\n"
            "drag \"Clip handle\" 0.5 0.5 \"Clip handle\" 0.5 4\nmove Volume\n",
            {"volume", "--mode composite", "--clip 0."}},
           {"move Volume\nkey 4\nhold Shift\nmove Volume 0.45 0.5\nmove Volume 0.46 0.5\nlet Shift\n",
            {"volume", "--mode sections"}},
           {"move \"En face##pane\"\nwheel 2\n", {"slice", "--axis enface"}}}) {
    const Json state = play(view + save);
    expect_in("saved.png", state["message"].get<std::string>());
    const std::string saved = bytes_of("saved.png"), comment = comment_of(saved);
    for (const std::string& word : words) expect_in(word, comment);
    EXPECT_EQ(comment.find("--clip 0.5 "), std::string::npos) << "the handle was dragged";
    std::filesystem::remove("saved.png");
    ASSERT_TRUE(comment.starts_with("octrender "));
    EXPECT_EQ(run_bare(comment.substr(10)), 0) << error_text_;
    EXPECT_TRUE(bytes_of("saved.png") == saved) << comment;
  }
}

// Radii from the catheter to the wall, clicked where a person sees the wall: at half of its brightness.
TEST_F(Viewer, TheLumenOfARecordedArteryHasItsDiameter) {
  const std::filesystem::path folder = OCT_SHARED_DATA;
  const std::filesystem::path file = folder / "volume_artery.npy";
  if (!std::filesystem::exists(file))
    GTEST_SKIP() << "no recorded artery: set OCT_SHARED_DATA to the folder that holds it";
  std::filesystem::copy_file(file, "artery.npy");
  const VolumeData artery = load_volume({file, {}, {}});
  const LateralMap outline = load_lateral_map({folder / "volume_artery_lumen.npy", {}, {}});
  const std::size_t bscan = artery.bscans / 2;  // which is shown first
  const auto wall = [&](std::size_t a_scan) {
    std::vector<double> mean(artery.depth);
    for (std::size_t z = 2; z + 2 < mean.size(); ++z)
      for (std::size_t i = 0; i < 25; ++i)
        mean[z] += artery.voxels[(bscan * artery.ascans + a_scan + i / 5 - 2) * artery.depth + z + i % 5 - 2];
    std::size_t z = 52;  // behind the rings of the catheter
    const double half = *std::max_element(mean.begin() + 52, mean.end()) / 2;
    while (mean[z] < half) ++z;
    return static_cast<double>(z) - (mean[z] - half) / (mean[z] - mean[z - 1]);
  };
  const Json pane = item(play(""), "B-scan##pane");
  const double width = pane["to"][0].get<double>() - pane["from"][0].get<double>();
  const double height = pane["to"][1].get<double>() - pane["from"][1].get<double>();
  const double voxel =
      std::min(width / static_cast<double>(artery.ascans), height / static_cast<double>(artery.depth));
  const auto click = [&](std::size_t a_scan, double depth_index) {
    const double right =
        0.5 + (static_cast<double>(a_scan) + 0.5 - static_cast<double>(artery.ascans) / 2) * voxel / width;
    const double down = 0.5 + (depth_index + 0.5 - static_cast<double>(artery.depth) / 2) * voxel / height;
    return "click \"B-scan##pane\" " + std::to_string(right) + " " + std::to_string(down) + "\nframes 2\n";
  };
  const std::array<std::size_t, 3> a_scans_measured{24, 40, 64};
  std::string lines =
      "click Opacity\nclick \"Values and colours\"\nclick \"View of the volume\"\nframes 3\n"
      "click \"Measurements (0)###Measurements\"\nframes 2\n";
  for (const std::size_t a_scan : a_scans_measured)
    for (const std::size_t side : {a_scan, a_scan + 128})
      lines += "click Distance\nframes 2\n" + click(side, 0) + click(side, wall(side));
  play(lines + "click \"Export CSV ...\"\nframes 3\ntype radii.csv\nframes 2\nkey Enter\nframes 3",
       {"artery.npy"});
  std::ifstream table("radii.csv");
  std::string row;
  std::getline(table, row);
  for (const std::size_t a_scan : a_scans_measured) {
    double diameter = 0;
    for (int side = 0; side < 2; ++side) {
      ASSERT_TRUE(std::getline(table, row));
      diameter += std::stod(row.substr(row.find(',', row.find(',') + 1) + 1));
    }
    const float* const drawn = &outline.values[bscan * outline.ascans];
    const double expected = static_cast<double>(drawn[a_scan]) + static_cast<double>(drawn[a_scan + 128]);
    EXPECT_NEAR(diameter, expected, 0.02 * expected) << a_scan;
  }
}

TEST_F(Viewer, AFileThatCannotBeReadLeavesTheOldOne) {
  write_file("broken.npy", npy_array("<f4", "20, 24, 30", "too short"));
  const Json state = play("open broken.npy\nwait\nmove \"B-scan\" 0.4 0.3\nframes 2");
  EXPECT_EQ(state["title"], "ramp.npy");
  expect_in("broken.npy", state["message"].get<std::string>());
  EXPECT_FLOAT_EQ(reading_of(state).value,
                  value_at(reading_of(state).voxel[0], reading_of(state).voxel[1], b_scans / 2));
}

TEST_F(Viewer, NothingOverlapsAtItsSmallestSize) {
  const std::pair<std::string, std::string> screens[]{{"1", "dark"}, {"2", "light"}};
  for (const auto& [scale, theme] : screens) {
    SCOPED_TRACE(scale + " " + theme);
    const Json state =
        play("click Data\nclick \"Values and colours\"\nclick Layers\nframes 3\ncapture out.png",
             {"ramp.npy", "--scale", scale, "--theme", theme});
    const Picture shown = read_picture("out.png");
    const auto factor = static_cast<unsigned>(scale[0] - '0');
    EXPECT_EQ(std::pair(shown.size.width, shown.size.height), std::pair(1024 * factor, 700 * factor));
    const Json& items = state.at("items");
    for (std::size_t i = 0; i < items.size(); ++i) {
      const auto from = items[i]["from"].get<std::array<double, 2>>();
      const auto to = items[i]["to"].get<std::array<double, 2>>();
      EXPECT_TRUE(from[0] >= 0 && from[1] >= 0 && to[0] <= 1024 && to[1] <= 700) << items[i];
      for (std::size_t j = 0; j < i; ++j) {
        const auto other = items[j]["from"].get<std::array<double, 2>>();
        const auto end = items[j]["to"].get<std::array<double, 2>>();
        const bool overlap =
            from[0] + 1 < end[0] && other[0] + 1 < to[0] && from[1] + 1 < end[1] && other[1] + 1 < to[1];
        EXPECT_FALSE(overlap && !is_handle_of(items[i], items[j]) && !is_handle_of(items[j], items[i]))
            << items[i] << items[j];
      }
    }
  }
}

TEST_F(Viewer, ShowsTheSimulatedDeviceLive) {
  const Json state = play("frames 10\nclick Stop##live\nwait\nmove \"B-scan\" 0.5 0.4\nframes 3", {});
  expect_in("live", state["title"].get<std::string>());
  EXPECT_FALSE(state["message_is_error"].get<bool>()) << state["message"];
  EXPECT_GT(reading_of(state).value, 0) << "what came last stays";
}

}  // namespace
}  // namespace oct::app::test
