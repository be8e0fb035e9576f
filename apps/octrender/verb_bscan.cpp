// octrender bscan: one B-scan as a PNG picture.
#include <algorithm>
#include <iostream>
#include <limits>
#include <memory>

#include "command_line/progress.h"
#include "command_line/warning.h"
#include "data/formats/png_writer.h"
#include "data/image_reader.h"
#include "octrender/data_options.h"
#include "octrender/layer_options.h"
#include "octrender/option_values.h"
#include "octrender/output/figure_options.h"
#include "octrender/picture_files.h"
#include "octrender/verbs.h"
#include "octrender/volume_input.h"
#include "scene/bscan_scene.h"

namespace oct::app {
namespace bscan_verb {
namespace {

constexpr char description_text[] = "Draw one B-scan as a PNG picture, depth downwards, A-scans to the right";

constexpr char footer_text[] = R"(
Of a volume one B-scan is drawn, --frame. Samples keep their aspect where the file tells
their spacing, or --spacing or --size do.

NaN and infinite samples do not count for an automatic range. NaN and minus infinity are
drawn in the first colour, infinity in the last. An automatic range without extent is
widened to the lowest and highest sample.

A colour map of your own is a .csv file of 2 to 4096 lines r,g,b or r,g,b,a: whole numbers
from 0 to 255, or numbers from 0 to 1 when none in the file is above 1. A first line
without numbers is a header. Alpha of the base map lets the background through, alpha of
the overlay map the base image.

The picture is written under a temporary name and then renamed: a run that fails leaves an
existing file as it was.

OpenGL: the program makes its own context through the library's offscreen target.

Exit codes: 0 written, 1 rendering failed, 2 wrong command line, 3 input cannot be read or
understood, 4 output cannot be written.

Examples:
  octrender bscan skin.npy -o skin.png --spacing 5.75 3.1
  octrender bscan retina_linear.npy -o retina.png --db --range -80 -10
  octrender bscan artery.npy -o artery.png --frame 20 --colormap inferno --blur first
  octrender bscan skin.npy -o skin.png --spacing 3.1 11.7 --spacing-unit um --figure --unit dB
  octrender bscan skin.npy -o flow.png --overlay flow.npy --overlay-threshold 60
)";

struct Options {
  std::string input;
  std::string output;
  std::optional<std::size_t> frame;
  DataOptions data;
  bool decibels = false;
  std::string size;
  std::optional<NumberPair> spacing;
  std::string colormap = "gray";
  bool reverse = false;
  std::optional<NumberPair> range;
  std::string blur;
  bool pepper = false;
  bool flip = false;
  std::string background = "000000";
  std::string overlay;
  std::optional<double> overlay_threshold;
  LayerColorOptions overlay_colors{{}, "inferno"};
  double overlay_opacity = 0.5;
  std::string spacing_unit;
  FigureOptions figure;
};

void add_input_options(CLI::App& verb, Options& options) {
  verb.add_option("IN", options.input, "Image or volume to read")->type_name("")->required();
  add_output_option(verb, options.output)->required();
  verb.add_option("--frame", options.frame, "Frame of a volume, from 0 (default: the middle one)")
      ->type_name("N")
      ->check(CLI::Range(0, std::numeric_limits<int>::max()).description(""));
  add_data_options(verb, options.data);
  verb.add_flag("--db", options.decibels,
                "Draw 20 log10 of the samples, for linear data. --range\n"
                "and --overlay-threshold are then in decibels");
}

void add_display_options(CLI::App& verb, Options& options) {
  auto* size = verb.add_option("--size", options.size,
                               "Size of the picture in pixels (default: one\n"
                               "pixel per sample, at most 4096 a side)");
  size->type_name("WxH");
  auto* spacing = verb.add_option(
      "--spacing", options.spacing,
      "Distance between samples along depth and between\n"
      "A-scans, in one unit: gives the true aspect\n(default: what the file tells, or equal)");
  spacing->type_name("DEPTH LATERAL");
  verb.add_option("--spacing-unit", options.spacing_unit, "That unit, for the scale bar of --figure")
      ->type_name("um|mm")
      ->check(CLI::IsMember({"um", "mm"}).description(""))
      ->needs(spacing);
  verb.add_option("--range", options.range,
                  "Sample values of the first and the last colour\n"
                  "(default: auto, the 1st and the 99.5th\n"
                  "percentile). LO above HI inverts the map")
      ->type_name("LO HI | auto");
  verb.add_option("--colormap", options.colormap, colormap_names() + "\nor a .csv file")
      ->type_name("MAP")
      ->capture_default_str();
  verb.add_flag("--reverse", options.reverse, "Turn the colour map round");
  verb.add_option("--blur", options.blur, "Smooth before (first) or after (second) the\npepper filter")
      ->type_name("first|second|both")
      ->check(CLI::IsMember({"first", "second", "both"}).description(""));
  verb.add_flag("--pepper", options.pepper, "Raise samples darker than their surroundings");
  verb.add_flag("--flip", options.flip, "Depth upwards");
  verb.add_option("--background", options.background, "Colour behind transparent colours of the map")
      ->type_name("RRGGBB")
      ->capture_default_str();
}

void add_overlay_options(CLI::App& verb, Options& options) {
  auto* overlay = verb.add_option("--overlay", options.overlay,
                                  "Second image, stretched over the first; of a\n"
                                  "volume the frame of the first is taken");
  overlay->type_name("FILE");
  verb.add_option("--overlay-threshold", options.overlay_threshold,
                  "Draw the overlay only where the base image is at\n"
                  "least this (default: everywhere)")
      ->type_name("T")
      ->needs(overlay);
  add_layer_color_options(verb, overlay, "the overlay", options.overlay_colors);
  verb.add_option("--overlay-opacity", options.overlay_opacity, "0 (invisible) to 1 (opaque)")
      ->type_name("A")
      ->check(CLI::Range(0.0, 1.0).description(""))
      ->capture_default_str()
      ->needs(overlay);
}

ValueRange finish_range(const std::string& file, const Image& image, const std::optional<ValueRange>& given) {
  if (given) return *given;
  const Progress progress("finding the display range", image.samples.size());
  const std::optional<ValueRange> range = automatic_range(image.samples, image_shares);
  if (!range) throw ReadError(from_utf8(file), "the image holds no finite sample");
  return *range;
}

Layer make_base(const Options& options, LoadedImage& loaded, const std::optional<ValueRange>& given_range) {
  if (loaded.frame_count > 1 && !options.frame) {
    note(from_utf8(options.input), "showing frame " + std::to_string(loaded.frame) + " of 0 to " +
                                       std::to_string(loaded.frame_count - 1) +
                                       "; choose another with --frame");
  }
  Layer layer;
  layer.image = std::move(loaded.image);
  if (options.decibels) to_decibels(layer.image.samples);
  layer.range = finish_range(options.input, layer.image, given_range);
  if (!options.decibels && !given_range && looks_linear(layer.image.samples, layer.range)) {
    note(from_utf8(options.input),
         "most samples are very dark beside the brightest; for linear data try --db");
  }
  replace_non_finite(layer.image.samples, layer.range);
  return layer;
}

Overlay make_overlay(const Options& options, const LoadedImage& base, Colormap colormap,
                     const std::optional<ValueRange>& given_range) {
  FrameChoice frame{options.frame, true};
  if (base.frame_count > 1) frame.number = base.frame;
  const DataFile file = data_file(options.overlay, options.data);
  Overlay overlay;
  overlay.threshold = options.overlay_threshold;
  Layer& layer = overlay.layer;
  layer.image = load_image(file, frame, reading_progress(file.path)).image;
  layer.colormap = std::move(colormap);
  scale_alpha(layer.colormap, options.overlay_opacity);
  layer.range = finish_range(options.overlay, layer.image, given_range);
  replace_non_finite(layer.image.samples, layer.range);
  return overlay;
}

// As the file tells, and where it tells nothing equal.
Spacing spacing_of(const std::filesystem::path& file, const Image& image) {
  const auto [depth, lateral, ignored] = image.spacing.mm;
  if (!(depth > 0 && lateral > 0)) return {};
  note(file, "samples of " + spacing_text(image.spacing));
  return {depth, lateral};
}

// Millimetres, as far as they are known.
VoxelSpacing length_spacing_of(const Options& options, const Image& image) {
  if (!options.spacing) return image.spacing;
  const double mm = options.spacing_unit.empty() ? 0.0 : options.spacing_unit == "mm" ? 1.0 : 0.001;
  return {{options.spacing->first * mm, options.spacing->second * mm, 0.0}, "command line"};
}

Figure figure_of(const Options& options, const BscanScene& scene, Picture picture) {
  Figure figure{std::move(picture), pixel_mm(scene), {}};
  if (!figure.pixel_mm) {
    note(from_utf8(options.input),
         "no scale bar: neither the file nor --spacing with --spacing-unit tells the distance of samples");
  }
  figure.color_bar = color_bar_of(options.figure, scene.base.colormap, scene.base.range, options.decibels);
  return figure;
}

void run(const Options& options, const PngTexts& texts) {
  // Everything that can be refused by the command line alone comes before the files are read.
  const std::filesystem::path output = picture_file(options.output, {options.input, options.overlay});
  const std::optional<ValueRange> range = parse_range("--range", options.range);
  const std::optional<ValueRange> overlay_range =
      parse_range("--overlay-range", options.overlay_colors.range);
  const std::optional<Spacing> spacing = parse_spacing(options.spacing);
  if (spacing && !options.size.empty() && options.spacing_unit.empty()) {
    throw CommandLineError("--spacing: --size tells the aspect; with both, --spacing-unit is needed");
  }
  const DataFile input = data_file(options.input, options.data);
  BscanScene scene;
  if (!options.size.empty()) scene.size = parse_picture_size(options.size);
  scene.transparent = options.figure.transparent;
  const FigureStyle style = style_of(options.figure);
  scene.background = parse_color("--background", options.background);
  Colormap colormap = load_colormap(options.colormap);
  const Colormap overlay_colormap = layer_colormap(options.overlay_colors);
  if (options.reverse) std::reverse(colormap.begin(), colormap.end());

  LoadedImage loaded = load_image(input, {options.frame}, reading_progress(input.path));
  if (options.size.empty()) {
    scene.size = natural_picture_size(loaded.image.depth, loaded.image.ascans,
                                      spacing ? *spacing : spacing_of(input.path, loaded.image));
  }
  scene.base = make_base(options, loaded, range);
  scene.base.image.spacing = length_spacing_of(options, scene.base.image);
  scene.base.colormap = std::move(colormap);
  if (!options.overlay.empty())
    scene.overlay = make_overlay(options, loaded, overlay_colormap, overlay_range);
  scene.first_blur = options.blur == "first" || options.blur == "both";
  scene.second_blur = options.blur == "second" || options.blur == "both";
  scene.pepper_filter = options.pepper;
  scene.flip = options.flip;
  BscanPicture drawn = render_bscan(scene);
  if (options.figure.figure)
    drawn.picture = figure_of(figure_of(options, scene, std::move(drawn.picture)), style);
  write_png(output, drawn.picture, texts);
  warn("octrender", drawn.explanation);
}

}  // namespace
}  // namespace bscan_verb

void add_bscan_verb(CLI::App& program, const PngTexts& texts) {
  using namespace bscan_verb;
  CLI::App* verb = program.add_subcommand("bscan", description_text);
  const auto options = std::make_shared<Options>();
  add_input_options(*verb, *options);
  add_display_options(*verb, *options);
  add_overlay_options(*verb, *options);
  add_figure_options(*verb, options->figure, "where samples\nhave a distance in millimetres");
  verb->footer(std::string(data_help) + footer_text);
  verb->callback([options, texts] { run(*options, texts); });
}

}  // namespace oct::app
