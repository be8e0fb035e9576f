// octrender surface: a height map as a file for other programs.
#include <array>
#include <cmath>
#include <memory>
#include <optional>

#include "data/file_errors.h"
#include "data/meshes/mesh_writers.h"
#include "data/volume_reader.h"
#include "octrender/option_values.h"
#include "octrender/picture_files.h"
#include "octrender/verbs.h"
#include "octrender/volume_input.h"

namespace oct::app {
namespace surface_verb {
namespace {

constexpr char description_text[] = "Write a height map as a surface, binary STL or glTF";

constexpr char footer_text[] = R"(
The map holds depths in samples, one row per B-scan and one column per A-scan, as octrender
volume --surface takes it. NaN and infinite depths leave holes.

STL has millimetres and z upwards: A-scans run along x, B-scans along -y. glTF has metres
and y upwards: A-scans run along x, B-scans along z; vertices have the colours of --colormap.
Depth 0 lies at height 0, the first A-scan of the first B-scan at 0.

Exit codes: 0 written, 2 wrong command line, 3 input cannot be read or understood, 4 output
cannot be written.

Examples:
  octrender surface heights.npy -o skin.stl --spacing 0.0031 0.0117 0.0117
  octrender surface heights.npy -o skin.glb --extent 2.5 6 6 --depth 800 --colormap inferno
)";

struct Options {
  std::string input;
  std::string output;
  std::vector<double> spacing;
  std::vector<double> extent;
  unsigned depth = 0;
  std::optional<NumberPair> range;
  std::string colormap = "viridis";
  bool reverse = false;
};

void check_lengths(const std::string& option, const std::vector<double>& numbers) {
  for (const double number : numbers) {
    if (!(std::isfinite(number) && number >= 1e-6 && number <= 1e6)) {
      throw CommandLineError(option + ": each length must be from 0.000001 to 1000000 millimetres");
    }
  }
}

std::array<double, 3> spacing_of(const Options& options, const LateralMap& map) {
  if (!options.spacing.empty()) return {options.spacing[0], options.spacing[1], options.spacing[2]};
  return {options.extent[0] / options.depth, options.extent[1] / static_cast<double>(map.ascans),
          options.extent[2] / static_cast<double>(map.bscans)};
}

std::filesystem::path surface_file(const Options& options) {
  const std::filesystem::path path = from_utf8(options.output);
  if (path.extension() != ".stl" && path.extension() != ".glb") {
    throw CommandLineError("the output '" + options.output + "' must end in .stl or .glb");
  }
  refuse_inputs(path, {options.input});
  return path;
}

void run(const Options& options, const PngTexts& texts) {
  const std::filesystem::path output = surface_file(options);
  if (options.spacing.empty() && options.extent.empty()) {
    throw CommandLineError("how large the surface is has to be told: --spacing, or --extent with --depth");
  }
  check_lengths("--spacing", options.spacing);
  check_lengths("--extent", options.extent);
  const std::optional<ValueRange> range = parse_range("--range", options.range);
  Colormap colors = load_colormap(options.colormap);
  if (options.reverse) std::reverse(colors.begin(), colors.end());

  const LateralMap map = load_lateral_map({from_utf8(options.input), {}, {}});
  const DepthMesh mesh = mesh_of(map, spacing_of(options, map));
  if (mesh.triangles.empty()) {
    throw ReadError(from_utf8(options.input), "no three neighbouring depths are finite: there is no surface");
  }
  if (output.extension() == ".stl") {
    write_stl(output, mesh);
    return;
  }
  const ValueRange shown = volume_range(options.input, map.values, range, {0.01, 0.99});
  std::string generator;
  for (const PngText& text : texts) generator += (generator.empty() ? "" : ": ") + text.text;
  write_glb(output, mesh, {std::move(colors), shown}, generator);
}

}  // namespace
}  // namespace surface_verb

void add_surface_verb(CLI::App& program, const PngTexts& texts) {
  using namespace surface_verb;
  CLI::App* verb = program.add_subcommand("surface", description_text);
  const auto options = std::make_shared<Options>();
  verb->add_option("IN", options->input, "Height map to read")->type_name("")->required();
  verb->add_option("-o,--output", options->output, "File to write; must end in .stl or .glb")
      ->type_name("OUT.stl|OUT.glb")
      ->required();
  auto* spacing = verb->add_option("--spacing", options->spacing, "Millimetres between samples");
  spacing->type_name("DEPTH ASCANS BSCANS")->expected(3);
  auto* extent =
      verb->add_option("--extent", options->extent, "Millimetres of the volume that the map is of");
  extent->type_name("DEPTH ASCANS BSCANS")->expected(3)->excludes(spacing);
  auto* depth = verb->add_option("--depth", options->depth, "Depth samples of that volume");
  depth->type_name("N")->check(CLI::Range(1, 1 << 20).description(""))->needs(extent);
  extent->needs(depth);
  verb->add_option("--range", options->range,
                   "Depths in samples of the first and the last colour\n(default: auto, the 1st and the 99th "
                   "percentile)")
      ->type_name("LO HI | auto");
  verb->add_option("--colormap", options->colormap, colormap_names() + "\nor a .csv file")
      ->type_name("MAP")
      ->capture_default_str();
  verb->add_flag("--reverse", options->reverse, "Turn the colour map round");
  verb->footer(footer_text);
  verb->callback([options, texts] { run(*options, texts); });
}

}  // namespace oct::app
