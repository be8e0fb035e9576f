// octrender volume: pictures of a volume.
#include <cmath>
#include <memory>

#include "command_line/progress.h"
#include "data/formats/png_writer.h"
#include "octrender/layer_options.h"
#include "octrender/option_values.h"
#include "octrender/picture_files.h"
#include "octrender/verbs.h"
#include "octrender/volume_input.h"
#include "octrender/volume_options.h"
#include "scene/volume_scene.h"

namespace oct::app {
namespace {

constexpr char kDescription[] = "Draw a volume as a PNG picture, or as a series that turns it once round";

constexpr char kFooter[] = R"(
Input: a .npy array of three axes (B-scan, depth, A-scan), in the Linux build a TIFF file
of several gray pages (one B-scan each), or with --raw a file of samples without a header,
depth fastest and B-scans slowest. Samples keep their values.

Modes: composite shows voxels with the opacity of the ramp, maximum and mean what a ray
meets on its way, sections three slices. The opacity of a composite rises with the square
of the value, up to --opacity per step of a ray.

An automatic range starts where most voxels are noise or air: at the 60th percentile for
a composite, at the 1st otherwise; it ends at the 99.8th, of a mean at the 98th.

With --turntable N the pictures are OUT-000.png, OUT-001.png, ...

Exit codes: 0 written, 1 rendering failed, 2 wrong command line, 3 input cannot be read or
understood, 4 output cannot be written.

Examples:
  octrender volume skin.npy -o skin.png --extent 2.5 6 6
  octrender volume skin.npy -o skin.png --extent 2.5 6 6 --clip 0.4 --colormap inferno
  octrender volume skin.npy -o skin.png --mode sections --sections 0.5 off 0.5
  octrender volume scan.raw -o scan.png --raw 512x400x300:u2 --mode maximum
  octrender volume skin.npy -o turn.png --turntable 72
)";

struct Options : VolumeOptions {
  std::string input;
  std::string output;
  std::string raw;
  bool transpose = false;
  bool decibels = false;
  std::vector<double> extent;
  std::string surface;
  std::string surfaceColormap = "viridis";
  bool surfaceOnly = false;
  std::string overlay;
  std::optional<NumberPair> overlayRange;
  std::string overlayColormap = "inferno";
  std::string secondary;
  std::optional<NumberPair> secondaryRange;
  std::string secondaryColormap = "viridis";
  unsigned turntable = 0;
};

void addInputOptions(CLI::App& verb, Options& options) {
  verb.add_option("IN", options.input, "Volume to read")->type_name("")->required();
  addOutputOption(verb, options.output)->required();
  verb.add_option("--raw", options.raw, "Read samples without a header; types f4, u1, u2")
      ->type_name("DEPTHxASCANSxBSCANS:TYPE");
  verb.add_flag("--transpose", options.transpose, "The array's axes are B-scan, A-scan, depth");
  verb.add_flag("--db", options.decibels, "Draw 20 log10 of the samples, for linear data");
}

void addPlacingOptions(CLI::App& verb, Options& options) {
  verb.add_option(
          "--extent", options.extent,
          "Physical extent in millimetres; without it voxels\ncount as cubes and there are no scale marks")
      ->type_name("DEPTH ASCANS BSCANS")
      ->expected(3);
  verb.add_option("--turntable", options.turntable, "Draw N pictures, one turn about the depth axis")
      ->type_name("N")
      ->check(CLI::Range(2, 3600).description(""));
}

void addDataOptions(CLI::App& verb, Options& options) {
  auto* surface =
      verb.add_option("--surface", options.surface, "Height map of depths in samples, one row per B-scan");
  surface->type_name("FILE");
  addLayerColormapOption(verb, surface, "the surface", options.surfaceColormap);
  verb.add_flag("--surface-only", options.surfaceOnly, "Draw the surface without the volume")->needs(surface);
  auto* overlay = verb.add_option("--overlay", options.overlay, "Second volume of the same size, laid over");
  overlay->type_name("FILE");
  addLayerColorOptions(verb, overlay, "the overlay", options.overlayRange, options.overlayColormap);
  auto* secondary = verb.add_option(
      "--secondary", options.secondary,
      "Map of a second quantity over the lateral axes, one row\nper B-scan, that colours a composite");
  secondary->type_name("FILE")->excludes(overlay);
  addLayerColorOptions(verb, secondary, "the map", options.secondaryRange, options.secondaryColormap);
}

std::array<float, 3> parseExtent(const std::vector<double>& numbers, const VolumeData& volume) {
  if (numbers.empty()) {
    return {static_cast<float>(volume.depth), static_cast<float>(volume.ascans),
            static_cast<float>(volume.bscans)};
  }
  std::array<float, 3> extent{};
  for (std::size_t i = 0; i < 3; ++i) extent[i] = static_cast<float>(numbers[i]);
  return extent;
}

void checkExtent(const std::vector<double>& numbers) {
  for (const double number : numbers) {
    if (!(std::isfinite(number) && number >= 1e-6 && number <= 1e6)) {
      throw CommandLineError("--extent: each extent must be from 0.000001 to 1000000 millimetres");
    }
  }
}

// Settings that the command line alone decides and can refuse.
VolumeScene sceneOf(const Options& options) {
  VolumeScene scene;
  static_cast<VolumeView&>(scene) = viewOf(options);
  checkExtent(options.extent);
  scene.scaleMarks = scene.scaleMarks && !options.extent.empty();
  scene.showVolume = !options.surfaceOnly;
  if (!options.secondary.empty() && scene.look != VolumeLook::Composite) {
    throw CommandLineError("--secondary colours composites only; it needs --mode composite");
  }
  scene.secondaryColors = !options.secondary.empty();
  const bool plain = scene.look == VolumeLook::Sections || scene.secondaryColors;
  scene.base.colormap = volumeColormap(options, scene.look, plain ? "gray" : "inferno");
  return scene;
}

void loadBase(const Options& options, const std::optional<RawLayout>& raw,
              const std::optional<ValueRange>& range, VolumeScene& scene) {
  VolumeLayer& base = scene.base;
  base.data = readVolume({options.input, raw, options.transpose});
  if (options.decibels) toDecibels(base.data.voxels);
  base.range = volumeRange(options.input, base.data.voxels, range, rangeShares(scene.look));
  replaceNonFinite(base.data.voxels, base.range);
  scene.extent = parseExtent(options.extent, base.data);
}

void loadOverlay(const Options& options, const std::optional<RawLayout>& raw,
                 const std::optional<ValueRange>& range, Colormap colormap, VolumeScene& scene) {
  VolumeLayer overlay;
  overlay.data = readVolume({options.overlay, raw, options.transpose});
  const VolumeData& base = scene.base.data;
  if (overlay.data.depth != base.depth || overlay.data.ascans != base.ascans ||
      overlay.data.bscans != base.bscans) {
    throw ReadError(fromUtf8(options.overlay), "the overlay has another size than the volume");
  }
  overlay.range = volumeRange(options.overlay, overlay.data.voxels, range, {0.6, 0.998});
  replaceNonFinite(overlay.data.voxels, overlay.range);
  overlay.colormap = std::move(colormap);
  scene.overlay = std::move(overlay);
}

void loadSurface(const Options& options, Colormap colormap, VolumeScene& scene) {
  HeightMap surface;
  surface.depths = loadHeightMap(fromUtf8(options.surface), scene.base.data);
  surface.range = volumeRange(options.surface, surface.depths, {}, {0.01, 0.99});
  replaceNonFinite(surface.depths, surface.range);
  surface.colormap = std::move(colormap);
  scene.surface = std::move(surface);
}

void loadSecondary(const Options& options, const std::optional<ValueRange>& range, Colormap colormap,
                   VolumeScene& scene) {
  SecondaryColoring secondary;
  secondary.map = loadLateralMap(fromUtf8(options.secondary));
  secondary.range = volumeRange(options.secondary, secondary.map.values, range, {0.01, 0.99});
  replaceNonFinite(secondary.map.values, secondary.range);
  secondary.colormap = std::move(colormap);
  scene.secondary = std::move(secondary);
}

void draw(const VolumeScene& scene, const std::filesystem::path& output, unsigned turntable) {
  if (turntable == 0) {
    renderVolume(scene, 1, [&](unsigned, const Picture& picture) { writePng(output, picture); });
    return;
  }
  const std::size_t samples = std::size_t{turntable} * scene.size.width * scene.size.height;
  Progress progress("drawing " + std::to_string(turntable) + " pictures", samples);
  renderVolume(scene, turntable, [&](unsigned number, const Picture& picture) {
    progress.update(number, turntable);
    writePng(numbered(output, number), picture);
  });
}

void run(const Options& options) {
  // Everything that can be refused by the command line alone comes before the files are read.
  const std::filesystem::path output =
      pictureFile(options.output, {options.input, options.overlay, options.surface, options.secondary});
  const std::optional<ValueRange> range = parseRange("--range", options.range);
  const std::optional<ValueRange> overlayRange = parseRange("--overlay-range", options.overlayRange);
  const std::optional<ValueRange> secondaryRange = parseRange("--secondary-range", options.secondaryRange);
  const std::optional<RawLayout> raw =
      options.raw.empty() ? std::optional<RawLayout>() : parseRawLayout(options.raw);
  VolumeScene scene = sceneOf(options);
  Colormap overlayColormap = loadColormap(options.overlayColormap);
  if (!isOwnColormap(options.overlayColormap)) addOpacityRamp(overlayColormap, 1.0);
  const Colormap surfaceColormap = loadColormap(options.surfaceColormap);
  const Colormap secondaryColormap = loadColormap(options.secondaryColormap);

  loadBase(options, raw, range, scene);
  if (!options.overlay.empty()) loadOverlay(options, raw, overlayRange, std::move(overlayColormap), scene);
  if (!options.surface.empty()) loadSurface(options, surfaceColormap, scene);
  if (!options.secondary.empty()) loadSecondary(options, secondaryRange, secondaryColormap, scene);
  draw(scene, output, options.turntable);
}

}  // namespace

void addVolumeVerb(CLI::App& program) {
  CLI::App* verb = program.add_subcommand("volume", kDescription);
  const auto options = std::make_shared<Options>();
  addInputOptions(*verb, *options);
  addViewOptions(*verb, *options);
  addPlacingOptions(*verb, *options);
  addColorOptions(*verb, *options, "inferno; gray for sections and below --secondary");
  addCutOptions(*verb, *options);
  addDataOptions(*verb, *options);
  addBoxOptions(*verb, *options);
  verb->footer(kFooter);
  verb->callback([options] { run(*options); });
}

}  // namespace oct::app
