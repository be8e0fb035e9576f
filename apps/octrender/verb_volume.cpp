// octrender volume: pictures of a volume.
#include <cmath>
#include <memory>

#include "command_line/progress.h"
#include "command_line/warning.h"
#include "data/formats/png_writer.h"
#include "octrender/data_options.h"
#include "octrender/layer_options.h"
#include "octrender/option_values.h"
#include "octrender/output/figure_options.h"
#include "octrender/output/picture_series.h"
#include "octrender/picture_files.h"
#include "octrender/verbs.h"
#include "octrender/volume_input.h"
#include "octrender/volume_options.h"
#include "scene/volume_scene.h"

namespace oct::app {
namespace volume_verb {
namespace {

constexpr char description_text[] = "Draw a volume as a PNG picture, or as a series that turns it once round";

constexpr char footer_text[] = R"(
The volume keeps the proportions that --extent gives, else those of the spacing in its
file, which is shown; else its voxels are cubes. A volume past what the driver draws
or the memory holds is reduced by whole numbers, and the factors are shown.

Modes: composite shows voxels with the opacity of the ramp, maximum and mean what a ray
meets on its way, sections three slices. The opacity of a composite rises with the square
of the value, or goes through --opacity-points, up to --opacity per step of a ray, or per
--opacity-length, whatever the number of --slices. --light shows its shapes: it shades where values change.

An automatic range starts where most voxels are noise or air: at the 60th percentile for
a composite, at the 1st otherwise; it ends at the 99.8th, of a mean at the 98th.

A turntable's animation repeats for ever. Its pictures are written as they are drawn; when
one fails there is no file, and one that was there before stays.

Exit codes: 0 written, 1 rendering failed, 2 wrong command line, 3 input cannot be read or
understood, 4 output cannot be written.

Examples:
  octrender volume skin.npy -o skin.png --extent 2.5 6 6
  octrender volume skin.npy -o skin.png --extent 2.5 6 6 --clip 0.4 --colormap inferno
  octrender volume skin.npy -o skin.png --extent 2.5 6 6 --light 0.3 0.7 0.2 --opacity-length 0.05
  octrender volume skin.npy -o skin.png --mode sections --sections 0.5 off 0.5
  octrender volume scan.raw -o scan.png --raw 512x400x300:u2be+128 --mode maximum
  octrender volume slices/ -o scan.png --mode maximum
  octrender volume skin.npy -o turn.png --turntable 72
  octrender volume skin.npy -o turn.apng --turntable 72 --fps 24 --size 640x480
)";

struct Options : VolumeOptions {
  std::string input;
  std::string output;
  DataOptions data;
  bool decibels = false;
  std::vector<double> extent;
  std::string surface;
  LayerColorOptions surface_colors{{}, "viridis"};
  bool surface_only = false;
  std::string overlay;
  LayerColorOptions overlay_colors{{}, "inferno"};
  std::string secondary;
  LayerColorOptions secondary_colors{{}, "viridis"};
  unsigned turntable = 0;
  unsigned frames_per_second = 30;
  FigureOptions figure;
};

void add_input_options(CLI::App& verb, Options& options) {
  verb.add_option("IN", options.input, "Volume to read")->type_name("")->required();
  add_output_option(verb, options.output)->required();
  add_data_options(verb, options.data);
  verb.add_flag("--db", options.decibels, "Draw 20 log10 of the samples, for linear data");
}

void add_placing_options(CLI::App& verb, Options& options) {
  verb.add_option("--extent", options.extent,
                  "Physical extent in millimetres (default: that of the\nfile's spacing; without one voxels "
                  "count as cubes and\nthere are no scale marks)")
      ->type_name("DEPTH ASCANS BSCANS")
      ->expected(3);
  auto* turntable = verb.add_option("--turntable", options.turntable,
                                    "Draw N pictures, one turn about the depth axis: OUT-000.png,\n"
                                    "OUT-001.png, ..., or an animation, OUT.apng, and OUT.mp4,\n"
                                    "OUT.webm or OUT.gif where there is ffmpeg");
  turntable->type_name("N")->check(CLI::Range(2, 3600).description(""));
  verb.add_option("--fps", options.frames_per_second, "Pictures per second of an animation")
      ->type_name("N")
      ->check(CLI::Range(1, 240).description(""))
      ->capture_default_str()
      ->needs(turntable);
}

void add_layer_options(CLI::App& verb, Options& options) {
  auto* surface =
      verb.add_option("--surface", options.surface, "Height map of depths in samples, one row per B-scan");
  surface->type_name("FILE");
  add_layer_color_options(verb, surface, "the surface", options.surface_colors);
  verb.add_flag("--surface-only", options.surface_only, "Draw the surface without the volume")
      ->needs(surface);
  auto* overlay = verb.add_option("--overlay", options.overlay, "Second volume of the same size, laid over");
  overlay->type_name("FILE");
  add_layer_color_options(verb, overlay, "the overlay", options.overlay_colors);
  auto* secondary = verb.add_option(
      "--secondary", options.secondary,
      "Map of a second quantity over the lateral axes, one row\nper B-scan, that colours a composite");
  secondary->type_name("FILE")->excludes(overlay);
  add_layer_color_options(verb, secondary, "the map", options.secondary_colors);
}

// From the command line, else from the file. Says where the spacing came from.
std::array<float, 3> extent_of(const Options& options, VolumeData& volume) {
  take_extent(volume, options.extent);
  if (options.extent.empty() && volume.spacing.is_known()) {
    note(from_utf8(options.input), "voxels of " + spacing_text(volume.spacing));
  }
  std::array<float, 3> result{};
  for (std::size_t i = 0; i < 3; ++i) {
    result[i] = static_cast<float>(static_cast<double>(volume.file_size[i]) *
                                   (volume.spacing.is_known() ? volume.spacing.mm[i] : 1.0));
  }
  return result;
}

// Settings that the command line alone decides and can refuse.
VolumeScene scene_of(const Options& options) {
  VolumeScene scene;
  static_cast<VolumeView&>(scene) = view_of(options);
  check_extent(options.extent);
  scene.show_volume = !options.surface_only;
  scene.transparent = options.figure.transparent;
  if (!options.secondary.empty() && scene.look != VolumeLook::composite) {
    throw CommandLineError("--secondary colours composites only; it needs --mode composite");
  }
  scene.secondary_colors = !options.secondary.empty();
  const bool plain = scene.look == VolumeLook::sections || scene.secondary_colors;
  scene.base.colormap = volume_colormap(options, scene.look, plain ? "gray" : "inferno");
  return scene;
}

void load_base(const Options& options, const DataFile& file, const std::optional<ValueRange>& range,
               const Shares& shares, VolumeScene& scene) {
  VolumeData data = read_drawable_volume(file);
  if (options.decibels) to_decibels(data.voxels);
  scene.base.range = volume_range(options.input, data.voxels, range, shares);
  replace_non_finite(data.voxels);
  scene.extent = extent_of(options, data);
  scene.scale_marks = scene.scale_marks && data.spacing.is_known();
  scene.base.data = std::make_shared<const VolumeData>(std::move(data));
}

void load_overlay(const Options& options, const std::optional<ValueRange>& range, Colormap colormap,
                  VolumeScene& scene) {
  VolumeLayer overlay;
  VolumeData data = read_drawable_volume(data_file(options.overlay, options.data));
  if (data.file_size != scene.base.data->file_size) {
    throw ReadError(from_utf8(options.overlay), "the overlay has another size than the volume");
  }
  overlay.range = volume_range(options.overlay, data.voxels, range, {0.6, 0.998});
  replace_non_finite(data.voxels);
  overlay.data = std::make_shared<const VolumeData>(std::move(data));
  overlay.colormap = std::move(colormap);
  scene.overlay = std::move(overlay);
}

void load_surface(const Options& options, const std::optional<ValueRange>& range, Colormap colormap,
                  VolumeScene& scene) {
  HeightMap surface;
  std::vector<float> depths =
      load_height_map({from_utf8(options.surface), {}, {}}, scene.base.data->file_size).values;
  surface.range = volume_range(options.surface, depths, range, {0.01, 0.99});
  replace_non_finite(depths);
  surface.depths = std::make_shared<const std::vector<float>>(std::move(depths));
  surface.colormap = std::move(colormap);
  scene.surface = std::move(surface);
}

void load_secondary(const Options& options, const std::optional<ValueRange>& range, Colormap colormap,
                    VolumeScene& scene) {
  SecondaryColoring secondary;
  LateralMap map = load_lateral_map({from_utf8(options.secondary), {}, {}});
  secondary.range = volume_range(options.secondary, map.values, range, {0.01, 0.99});
  replace_non_finite(map.values);
  secondary.map = std::make_shared<const LateralMap>(std::move(map));
  secondary.colormap = std::move(colormap);
  scene.secondary = std::move(secondary);
}

// Of one picture nothing but the PNG.
std::filesystem::path output_of(const Options& options) {
  const std::initializer_list<std::string> inputs = {options.input, options.overlay, options.surface,
                                                     options.secondary};
  if (options.turntable > 0) {
    const std::filesystem::path output = series_file(options.output, inputs);
    if (options.figure.transparent && is_animation(output) && output.extension() != ".apng")
      throw CommandLineError("--transparent: of animations .apng alone has alpha");
    return output;
  }
  if (is_animation(from_utf8(options.output))) {
    throw CommandLineError("the output '" + options.output + "' is an animation; it needs --turntable N");
  }
  return picture_file(options.output, inputs);
}

// Of the data whose colours are seen.
ColorBar color_bar(const VolumeScene& scene, const Options& options) {
  if (scene.secondary)
    return color_bar_of(options.figure, scene.secondary->colormap, scene.secondary->range, false);
  if (scene.surface && !scene.show_volume)
    return color_bar_of(options.figure, scene.surface->colormap, scene.surface->range, false);
  return color_bar_of(options.figure, scene.base.colormap, scene.base.range, options.decibels);
}

// The picture as it is, or on paper.
class Finish {
 public:
  Finish(const VolumeScene& scene, const Options& options) : style_(style_of(options.figure)) {
    if (!options.figure.figure) return;
    frame_.emplace();
    frame_->color_bar = color_bar(scene, options);
    const std::optional<double> mm = scene.base.data->spacing.is_known() ? pixel_mm(scene) : std::nullopt;
    if (mm) frame_->pixel_mm = {*mm, *mm};
  }

  // Valid until the next call, or the picture's end.
  const Picture& operator()(const Picture& picture) {
    if (!frame_) return picture;
    frame_->picture = picture;
    return finished_ = figure_of(*frame_, style_);
  }

 private:
  const FigureStyle style_;
  std::optional<Figure> frame_;
  Picture finished_;
};

void draw(const VolumeScene& scene, const std::filesystem::path& output, const Options& options,
          const PngTexts& texts) {
  Finish finish(scene, options);
  std::string explanation;
  if (options.turntable == 0) {
    explanation = render_volume(
        scene, 1, [&](unsigned, const Picture& picture) { write_png(output, finish(picture), texts); });
  } else {
    const unsigned count = options.turntable;
    Progress progress("drawing " + std::to_string(count) + " pictures",
                      std::size_t{count} * scene.size.width * scene.size.height);
    const auto series = open_series({output, count, options.frames_per_second, texts});
    explanation = render_volume(scene, count, [&](unsigned number, const Picture& picture) {
      progress.update(number, count);
      series->add(finish(picture));
    });
    series->finish();
  }
  warn("octrender", explanation);
}

void run(const Options& options, const PngTexts& texts) {
  // Everything that can be refused by the command line alone comes before the files are read.
  const std::filesystem::path output = output_of(options);
  const std::optional<ValueRange> range = parse_range("--range", options.range);
  const std::optional<ValueRange> overlay_range =
      parse_range("--overlay-range", options.overlay_colors.range);
  const std::optional<ValueRange> surface_range =
      parse_range("--surface-range", options.surface_colors.range);
  const std::optional<ValueRange> secondary_range =
      parse_range("--secondary-range", options.secondary_colors.range);
  const DataFile file = data_file(options.input, options.data);
  style_of(options.figure);
  VolumeScene scene = scene_of(options);
  const Shares shares = shares_of(options, scene.look);
  Colormap overlay_colormap = layer_colormap(options.overlay_colors);
  if (!is_own_colormap(options.overlay_colors.colormap))
    set_opacity(overlay_colormap, {.highest = 1, .shift = 0, .points = {}});
  const Colormap surface_colormap = layer_colormap(options.surface_colors);
  const Colormap secondary_colormap = layer_colormap(options.secondary_colors);

  load_base(options, file, range, shares, scene);
  if (!options.overlay.empty()) load_overlay(options, overlay_range, std::move(overlay_colormap), scene);
  if (!options.surface.empty()) load_surface(options, surface_range, surface_colormap, scene);
  if (!options.secondary.empty()) load_secondary(options, secondary_range, secondary_colormap, scene);
  draw(scene, output, options, texts);
}

}  // namespace
}  // namespace volume_verb

void add_volume_verb(CLI::App& program, const PngTexts& texts) {
  using namespace volume_verb;
  CLI::App* verb = program.add_subcommand("volume", description_text);
  const auto options = std::make_shared<Options>();
  add_input_options(*verb, *options);
  add_view_options(*verb, *options);
  add_placing_options(*verb, *options);
  add_color_options(*verb, *options, "inferno; gray for sections and below --secondary");
  add_cut_options(*verb, *options);
  add_layer_options(*verb, *options);
  add_box_options(*verb, *options);
  add_figure_options(*verb, options->figure,
                     "without perspective, whose lengths differ from\nplace to place");
  verb->footer(std::string(data_help) + footer_text);
  verb->callback([options, texts] { run(*options, texts); });
}

}  // namespace oct::app
