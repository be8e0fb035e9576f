// octrender volume: pictures of a volume.
#include <algorithm>
#include <cmath>
#include <iomanip>
#include <iostream>
#include <memory>
#include <sstream>

#include "failure.h"
#include "option_values.h"
#include "png_writer.h"
#include "progress.h"
#include "verbs.h"
#include "volume_scene.h"

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

// The box with its labels, whatever the angles.
constexpr double kPerspectiveZoom = 52;
constexpr double kOrthographicZoom = 30;

struct Options {
  std::string input;
  std::string output;
  std::string raw;
  bool transpose = false;
  bool decibels = false;
  std::string mode = "composite";
  std::string size = "1024x768";
  std::vector<double> angles{25, -35};
  std::optional<double> zoom;
  bool orthographic = false;
  std::vector<double> extent;
  int slices = 256;
  std::optional<NumberPair> range;
  std::string colormap;
  bool reverse = false;
  double opacity = 0.25;
  std::optional<double> clip;
  bool clipOpen = false;
  bool clipGhost = false;
  std::vector<std::string> sections;
  std::string surface;
  std::string surfaceColormap = "viridis";
  bool surfaceOnly = false;
  std::string overlay;
  std::optional<NumberPair> overlayRange;
  std::string overlayColormap = "inferno";
  std::string secondary;
  std::optional<NumberPair> secondaryRange;
  std::string secondaryColormap = "viridis";
  bool noEdges = false;
  bool noLabels = false;
  bool box = false;
  std::vector<std::string> background{"000066", "000019"};
  std::string foreground = "FFFFFF";
  unsigned turntable = 0;
};

void addInputOptions(CLI::App& verb, Options& options) {
  verb.add_option("IN", options.input, "Volume to read")->type_name("")->required();
  verb.add_option("-o,--output", options.output, "Picture to write; must end in .png")
      ->type_name("OUT.png")
      ->required();
  verb.add_option("--raw", options.raw, "Read samples without a header; types f4, u1, u2")
      ->type_name("DEPTHxASCANSxBSCANS:TYPE");
  verb.add_flag("--transpose", options.transpose, "The array's axes are B-scan, A-scan, depth");
  verb.add_flag("--db", options.decibels, "Draw 20 log10 of the samples, for linear data");
}

void addViewOptions(CLI::App& verb, Options& options) {
  verb.add_option("--mode", options.mode, "How the volume is shown")
      ->type_name("composite|maximum|mean|sections")
      ->check(CLI::IsMember({"composite", "maximum", "mean", "sections"}).description(""))
      ->capture_default_str();
  verb.add_option("--size", options.size, "Size of the picture in pixels")
      ->type_name("WxH")
      ->capture_default_str();
  verb.add_option("--angles", options.angles,
                  "Turn about the horizontal axis and the depth axis,\nin degrees")
      ->type_name("X Y")
      ->expected(2)
      ->capture_default_str();
  verb.add_option("--zoom", options.zoom,
                  "Smaller is closer: the field of view less 5 degrees,\nor, orthographic, five times the "
                  "visible width, the\n"
                  "box's half diagonal being 2 (default: the whole box)")
      ->check(CLI::Range(0.1, 170.0).description(""));
  verb.add_flag("--orthographic", options.orthographic, "No perspective");
  verb.add_option(
          "--extent", options.extent,
          "Physical extent in millimetres; without it voxels\ncount as cubes and there are no scale marks")
      ->type_name("DEPTH ASCANS BSCANS")
      ->expected(3);
  verb.add_option("--slices", options.slices, "Steps of a ray along the diagonal")
      ->check(CLI::Range(1, 4096).description(""))
      ->capture_default_str();
  verb.add_option("--turntable", options.turntable, "Draw N pictures, one turn about the depth axis")
      ->type_name("N")
      ->check(CLI::Range(2, 3600).description(""));
}

void addColorOptions(CLI::App& verb, Options& options) {
  verb.add_option("--range", options.range, "Values of the first and the last colour\n(default: auto)")
      ->type_name("LO HI | auto");
  verb.add_option("--colormap", options.colormap,
                  colormapNames() +
                      "\nor a .csv file, whose own alpha then counts (default:\ninferno; gray "
                      "for sections and below --secondary)")
      ->type_name("MAP");
  verb.add_flag("--reverse", options.reverse, "Turn the colours of the map round, not its opacity");
  verb.add_option("--opacity", options.opacity, "Highest opacity of one step of a ray, 0 to 1")
      ->check(CLI::Range(0.0, 1.0).description(""))
      ->capture_default_str();
  verb.add_option("--background", options.background, "Colours at the bottom and at the top")
      ->type_name("RRGGBB RRGGBB")
      ->expected(2)
      ->capture_default_str();
  verb.add_option("--foreground", options.foreground, "Colour of lines and labels")
      ->type_name("RRGGBB")
      ->capture_default_str();
}

void addSceneOptions(CLI::App& verb, Options& options) {
  auto* clip =
      verb.add_option("--clip", options.clip,
                      "Cut by a plane that faces the viewer: 0 leaves\nalmost nothing, 1 almost everything");
  clip->check(CLI::Range(0.0, 1.0).description(""));
  verb.add_flag("--clip-open", options.clipOpen, "Leave the cut open")->needs(clip);
  verb.add_flag("--clip-ghost", options.clipGhost, "Show where the part that is cut away was")->needs(clip);
  verb.add_option("--sections", options.sections,
                  "Positions of the slices across A-scans, depth and\nB-scans, 0 to 1 or off")
      ->type_name("A D B")
      ->expected(3);
  auto* surface =
      verb.add_option("--surface", options.surface, "Height map of depths in samples, one row per B-scan");
  surface->type_name("FILE");
  verb.add_option("--surface-colormap", options.surfaceColormap, "As --colormap, for the surface")
      ->type_name("MAP")
      ->capture_default_str()
      ->needs(surface);
  verb.add_flag("--surface-only", options.surfaceOnly, "Draw the surface without the volume")->needs(surface);
  auto* overlay = verb.add_option("--overlay", options.overlay, "Second volume of the same size, laid over");
  overlay->type_name("FILE");
  verb.add_option("--overlay-range", options.overlayRange, "As --range, for the overlay")
      ->type_name("LO HI | auto")
      ->needs(overlay);
  verb.add_option("--overlay-colormap", options.overlayColormap, "As --colormap, for the overlay")
      ->type_name("MAP")
      ->capture_default_str()
      ->needs(overlay);
  auto* secondary = verb.add_option(
      "--secondary", options.secondary,
      "Map of a second quantity over the lateral axes, one row\nper B-scan, that colours a composite");
  secondary->type_name("FILE")->excludes(overlay);
  verb.add_option("--secondary-range", options.secondaryRange, "As --range, for the map")
      ->type_name("LO HI | auto")
      ->needs(secondary);
  verb.add_option("--secondary-colormap", options.secondaryColormap, "As --colormap, for the map")
      ->type_name("MAP")
      ->capture_default_str()
      ->needs(secondary);
  verb.add_flag("--no-edges", options.noEdges, "Without the edges of the box");
  verb.add_flag("--no-labels", options.noLabels, "Without scale marks and labels");
  verb.add_flag("--box", options.box, "With translucent faces of the box");
}

struct Shares {
  double lower;
  double upper;
};

// In a volume most voxels are air or noise; seen through, they would veil the rest.
Shares sharesOf(VolumeLook look) {
  if (look == VolumeLook::Composite) return {0.6, 0.998};
  if (look == VolumeLook::Mean) return {0.01, 0.98};
  return {0.01, 0.998};
}

ValueRange rangeOf(const std::string& file, const std::vector<float>& voxels,
                   const std::optional<ValueRange>& given, Shares shares) {
  if (given) return *given;
  const Progress progress("finding the display range", voxels.size());
  // Every nth voxel is enough for a percentile; a prime keeps out of step with the axes.
  constexpr std::size_t kEnough = 4'000'003;
  const std::size_t stride = voxels.size() / kEnough + 1;
  std::vector<float> finite;
  for (std::size_t i = 0; i < voxels.size(); i += stride) {
    if (std::isfinite(voxels[i])) finite.push_back(voxels[i]);
  }
  if (finite.empty()) throw inputFailure(fromUtf8(file), "the volume holds no finite sample");
  ValueRange range{quantile(finite, shares.lower), quantile(finite, shares.upper)};
  if (range.lower == range.upper) {
    const auto [lowest, highest] = std::minmax_element(finite.begin(), finite.end());
    range = {*lowest, *highest};
  }
  if (range.lower == range.upper) range.upper = range.lower + 1;
  return range;
}

bool isOwnFile(const std::string& nameOrFile) {
  return fromUtf8(nameOrFile).extension() == ".csv";
}

void addOpacityRamp(Colormap& colors, double opacity) {
  for (std::size_t i = 0; i < colors.size(); ++i) {
    const double t = static_cast<double>(i) / static_cast<double>(colors.size() - 1);
    colors[i][3] = static_cast<std::uint8_t>(std::lround(255 * opacity * t * t));
  }
}

Colormap baseColormap(const Options& options, VolumeLook look) {
  const bool plain = look == VolumeLook::Sections || !options.secondary.empty();
  const std::string name = options.colormap.empty() ? (plain ? "gray" : "inferno") : options.colormap;
  Colormap colors = loadColormap(name);
  if (options.reverse) std::reverse(colors.begin(), colors.end());
  if (look == VolumeLook::Composite && !isOwnFile(name)) addOpacityRamp(colors, options.opacity);
  return colors;
}

VolumeLook parseMode(const std::string& mode) {
  if (mode == "maximum") return VolumeLook::Maximum;
  if (mode == "mean") return VolumeLook::Mean;
  return mode == "sections" ? VolumeLook::Sections : VolumeLook::Composite;
}

std::array<std::optional<float>, 3> parseSections(const std::vector<std::string>& words) {
  std::array<std::optional<float>, 3> sections{0.5f, 0.5f, 0.5f};
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (words[i] == "off") {
      sections[i].reset();
      continue;
    }
    std::istringstream stream(words[i]);
    float position = 0;
    if (!(stream >> position) || !stream.eof() || !(position >= 0 && position <= 1)) {
      throw badCommandLine("--sections: '" + words[i] + "' is neither a position from 0 to 1 nor off");
    }
    sections[i] = position;
  }
  return sections;
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
      throw badCommandLine("--extent: each extent must be from 0.000001 to 1000000 millimetres");
    }
  }
}

std::filesystem::path outputPath(const Options& options) {
  const std::filesystem::path output = fromUtf8(options.output);
  if (output.extension() != ".png")
    throw badCommandLine("the output '" + options.output + "' must end in .png");
  for (const std::string& input : {options.input, options.overlay, options.surface, options.secondary}) {
    std::error_code ignored;
    if (!input.empty() && std::filesystem::equivalent(fromUtf8(input), output, ignored)) {
      throw badCommandLine("the output would overwrite the input '" + input + "'");
    }
  }
  return output;
}

std::filesystem::path numbered(const std::filesystem::path& output, unsigned number) {
  std::ostringstream suffix;
  suffix << '-' << std::setw(3) << std::setfill('0') << number << ".png";
  std::filesystem::path path = output;
  path.replace_extension();
  path += suffix.str();
  return path;
}

// Settings that the command line alone decides and can refuse.
VolumeScene sceneOf(const Options& options) {
  VolumeScene scene;
  scene.look = parseMode(options.mode);
  scene.size = parsePictureSize(options.size);
  scene.angles = {options.angles[0], options.angles[1]};
  scene.zoom = options.zoom.value_or(options.orthographic ? kOrthographicZoom : kPerspectiveZoom);
  scene.perspective = !options.orthographic;
  scene.slices = options.slices;
  if (options.clip) scene.clip = ClipSetting{*options.clip, options.clipOpen, options.clipGhost};
  scene.sections = parseSections(options.sections);
  checkExtent(options.extent);
  scene.edges = !options.noEdges;
  scene.scaleMarks = !options.noLabels && !options.extent.empty();
  scene.box = options.box;
  scene.backgroundBottom = parseColor("--background", options.background[0]);
  scene.backgroundTop = parseColor("--background", options.background[1]);
  scene.foreground = parseColor("--foreground", options.foreground);
  scene.showVolume = !options.surfaceOnly;
  if (!options.secondary.empty() && scene.look != VolumeLook::Composite) {
    throw badCommandLine("--secondary colours composites only; it needs --mode composite");
  }
  scene.base.colormap = baseColormap(options, scene.look);
  return scene;
}

void loadBase(const Options& options, const std::optional<RawLayout>& raw,
              const std::optional<ValueRange>& range, VolumeScene& scene) {
  VolumeLayer& base = scene.base;
  base.data = loadVolume(fromUtf8(options.input), options.transpose, raw);
  if (options.decibels) toDecibels(base.data.voxels);
  base.range = rangeOf(options.input, base.data.voxels, range, sharesOf(scene.look));
  replaceNonFinite(base.data.voxels, base.range);
  scene.extent = parseExtent(options.extent, base.data);
}

void loadOverlay(const Options& options, const std::optional<RawLayout>& raw,
                 const std::optional<ValueRange>& range, Colormap colormap, VolumeScene& scene) {
  VolumeLayer overlay;
  overlay.data = loadVolume(fromUtf8(options.overlay), options.transpose, raw);
  const VolumeData& base = scene.base.data;
  if (overlay.data.depth != base.depth || overlay.data.ascans != base.ascans ||
      overlay.data.bscans != base.bscans) {
    throw inputFailure(fromUtf8(options.overlay), "the overlay has another size than the volume");
  }
  overlay.range = rangeOf(options.overlay, overlay.data.voxels, range, {0.6, 0.998});
  replaceNonFinite(overlay.data.voxels, overlay.range);
  overlay.colormap = std::move(colormap);
  scene.overlay = std::move(overlay);
}

void loadSurface(const Options& options, Colormap colormap, VolumeScene& scene) {
  HeightMap surface;
  surface.depths = loadHeightMap(fromUtf8(options.surface), scene.base.data);
  surface.range = rangeOf(options.surface, surface.depths, {}, {0.01, 0.99});
  replaceNonFinite(surface.depths, surface.range);
  surface.colormap = std::move(colormap);
  scene.surface = std::move(surface);
}

void loadSecondary(const Options& options, const std::optional<ValueRange>& range, Colormap colormap,
                   VolumeScene& scene) {
  SecondaryColoring secondary;
  secondary.map = loadLateralMap(fromUtf8(options.secondary));
  secondary.range = rangeOf(options.secondary, secondary.map.values, range, {0.01, 0.99});
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
  const std::filesystem::path output = outputPath(options);
  const std::optional<ValueRange> range = parseRange("--range", options.range);
  const std::optional<ValueRange> overlayRange = parseRange("--overlay-range", options.overlayRange);
  const std::optional<ValueRange> secondaryRange = parseRange("--secondary-range", options.secondaryRange);
  const std::optional<RawLayout> raw =
      options.raw.empty() ? std::optional<RawLayout>() : parseRawLayout(options.raw);
  VolumeScene scene = sceneOf(options);
  Colormap overlayColormap = loadColormap(options.overlayColormap);
  if (!isOwnFile(options.overlayColormap)) addOpacityRamp(overlayColormap, 1.0);
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
  addColorOptions(*verb, *options);
  addSceneOptions(*verb, *options);
  verb->footer(kFooter);
  verb->callback([options] { run(*options); });
}

}  // namespace oct::app
