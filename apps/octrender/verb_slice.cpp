// octrender slice: sections of a volume, as pictures or as values.
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <utility>
#include <variant>

#include "command_line/progress.h"
#include "command_line/warning.h"
#include "data/formats/png_writer.h"
#include "data/formats/sample_writer.h"
#include "data/slices.h"
#include "octrender/data_options.h"
#include "octrender/layer_options.h"
#include "octrender/option_values.h"
#include "octrender/output/figure_options.h"
#include "octrender/output/picture_series.h"
#include "octrender/picture_files.h"
#include "octrender/sections.h"
#include "octrender/verbs.h"
#include "octrender/volume_input.h"
#include "scene/slice_scene.h"

namespace oct::app {
namespace slice_verb {
namespace {

constexpr char description_text[] =
    "Draw a section of a volume, or projections of its layers, or a sweep of them";

constexpr char footer_text[] = R"(
A bscan has depth downwards and A-scans to the right, an enface section A-scans to the
right and B-scans downwards, the third section B-scans to the right and depth downwards.
With --surface the position of an enface section counts from the surface on, downwards,
and the section follows it; where it has no depth, there are no values. Layers outside of
the volume do not count.

Samples keep the aspect that --extent gives, else that of the spacing in the file, which
is shown; else they are squares. Without --size a picture has a pixel per sample along the
finer axis; with it the section fits into the picture, --zoom times, and --background shows
beside it. A pixel that covers several samples shows their mean.

An automatic range goes from the 1st to the 99.5th percentile of the section, of a sweep
from those of the volume. In pictures NaN and minus infinity count as the lowest finite
sample of the volume, infinity as the highest; where there are no values is the first colour.

Values: OUT.tif and, with --depth 16, OUT.png hold integers of 16 bits, the --range as 0 to
65535 and what lies beyond as its ends, with spacing in OUT.tif; OUT.npy holds the samples
as floats, and NaN where there are none. Without --size there is one value per sample.

Exit codes: 0 written, 1 rendering failed, 2 wrong command line, 3 input cannot be read or
understood, 4 output cannot be written.

Examples:
  octrender slice skin.npy -o enface.png --axis enface --position 80 --layers 5
  octrender slice retina.nrrd -o below.png --axis enface --surface ilm.npy --position 12
  octrender slice skin.npy -o vessels.tif --axis enface --layers 40 --projection maximum
  octrender slice skin.npy -o third.png --axis third --size 800x600 --zoom 3 --center 0.5 0.2
  octrender slice skin.npy -o walk.apng --axis enface --sweep 20:200:4
)";

struct Options {
  std::string input;
  std::string output;
  DataOptions data;
  bool decibels = false;
  std::vector<double> extent;
  std::string axis = "bscan";
  std::optional<std::ptrdiff_t> position;
  std::size_t layers = 1;
  std::string projection = "mean";
  std::string surface;
  std::string sweep;
  unsigned frames_per_second = 30;
  std::string size;
  double zoom = 1;
  std::vector<double> center{0.5, 0.5};
  unsigned depth = 8;
  std::optional<NumberPair> range;
  std::string colormap = "gray";
  bool reverse = false;
  std::string background = "000000";
  std::string overlay;
  std::optional<double> overlay_threshold;
  LayerColorOptions overlay_colors{{}, "inferno"};
  double overlay_opacity = 0.5;
  FigureOptions figure;
};

// Positions of the first and the last section, and the step between them.
struct Sweep {
  std::ptrdiff_t first = 0;
  std::ptrdiff_t last = 0;
  std::ptrdiff_t step = 1;

  unsigned count() const { return static_cast<unsigned>((last - first) / step + 1); }
};

void add_input_options(CLI::App& verb, Options& options) {
  verb.add_option("IN", options.input, "Volume to read")->type_name("")->required();
  verb.add_option("-o,--output", options.output,
                  "Picture (.png), values (.tif, .npy), or animation of a sweep")
      ->type_name("OUT")
      ->required();
  add_data_options(verb, options.data);
  verb.add_flag("--db", options.decibels,
                "Draw 20 log10 of the samples, for linear data. All\nvalues are then in decibels");
  verb.add_option("--extent", options.extent,
                  "Physical extent in millimetres (default: that of the\nfile's spacing)")
      ->type_name("DEPTH ASCANS BSCANS")
      ->expected(3);
}

void add_section_options(CLI::App& verb, Options& options) {
  verb.add_option("--axis", options.axis, "Which section")
      ->type_name("bscan|enface|third")
      ->check(CLI::IsMember({"bscan", "enface", "third"}).description(""))
      ->capture_default_str();
  auto* position = verb.add_option("--position", options.position,
                                   "B-scan, depth or A-scan of the section, from 0 (default:\n"
                                   "the middle one); with --surface samples below it\n(default: 0)");
  position->type_name("N")->check(CLI::Range(-1'000'000'000, 1'000'000'000).description(""));
  verb.add_option("--layers", options.layers, "Layers around the depth of an enface section")
      ->type_name("N")
      ->check(CLI::Range(1, 1'000'000).description(""))
      ->capture_default_str();
  verb.add_option("--projection", options.projection, "What an enface section shows of its layers")
      ->type_name("mean|maximum")
      ->check(CLI::IsMember({"mean", "maximum"}).description(""))
      ->capture_default_str();
  verb.add_option("--surface", options.surface,
                  "Height map that an enface section follows: depths in\nsamples, one row per B-scan")
      ->type_name("FILE");
  auto* sweep = verb.add_option("--sweep", options.sweep,
                                "A picture for each of these positions: OUT-000.png,\n"
                                "OUT-001.png, ..., or an animation, OUT.apng, and OUT.mp4,\n"
                                "OUT.webm or OUT.gif where there is ffmpeg");
  sweep->type_name("all | FIRST:LAST[:STEP]")->excludes(position);
  verb.add_option("--fps", options.frames_per_second, "Pictures per second of an animation")
      ->type_name("N")
      ->check(CLI::Range(1, 240).description(""))
      ->capture_default_str()
      ->needs(sweep);
}

void add_picture_options(CLI::App& verb, Options& options) {
  auto* size = verb.add_option("--size", options.size, "Size of the picture in pixels");
  size->type_name("WxH");
  verb.add_option("--zoom", options.zoom, "1: the whole section fits; 2: half of it")
      ->check(CLI::Range(1e-3, 1e6).description(""))
      ->capture_default_str()
      ->needs(size);
  verb.add_option("--center", options.center, "Middle of the picture, in parts of the section")
      ->type_name("RIGHT DOWN")
      ->expected(2)
      ->check(CLI::Range(-10.0, 10.0).description(""))
      ->capture_default_str()
      ->needs(size);
  verb.add_option("--depth", options.depth, "Bits of a .png; 16: values without colours")
      ->type_name("8|16")
      ->check(CLI::IsMember({8, 16}).description(""))
      ->capture_default_str();
  verb.add_option("--range", options.range,
                  "Values of the first and the last colour (default:\nauto). LO above HI inverts the map")
      ->type_name("LO HI | auto");
  verb.add_option("--colormap", options.colormap, colormap_names() + "\nor a .csv file")
      ->type_name("MAP")
      ->capture_default_str();
  verb.add_flag("--reverse", options.reverse, "Turn the colour map round");
  verb.add_option("--background", options.background,
                  "Colour beside the section, and behind transparent colours")
      ->type_name("RRGGBB")
      ->capture_default_str();
}

void add_overlay_options(CLI::App& verb, Options& options) {
  auto* overlay = verb.add_option("--overlay", options.overlay, "Second volume of the same size, laid over");
  overlay->type_name("FILE");
  add_layer_color_options(verb, overlay, "the overlay", options.overlay_colors);
  verb.add_option("--overlay-threshold", options.overlay_threshold,
                  "Draw the overlay only where the section is at least\nthis (default: everywhere)")
      ->type_name("T")
      ->needs(overlay);
  verb.add_option("--overlay-opacity", options.overlay_opacity, "0 (invisible) to 1 (opaque)")
      ->type_name("A")
      ->check(CLI::Range(0.0, 1.0).description(""))
      ->capture_default_str()
      ->needs(overlay);
}

bool holds_values(const Options& options, const std::filesystem::path& output) {
  return options.depth == 16 || is_value_file(output);
}

std::filesystem::path output_of(const Options& options) {
  const std::initializer_list<std::string> inputs = {options.input, options.overlay, options.surface};
  const std::filesystem::path output = from_utf8(options.output);
  if (!options.sweep.empty()) {
    if (holds_values(options, output)) throw CommandLineError("--sweep draws pictures of 8 bits, not values");
    if (options.figure.transparent && is_animation(output) && output.extension() != ".apng")
      throw CommandLineError("--transparent: of animations .apng alone has alpha");
    return series_file(options.output, inputs);
  }
  if (is_animation(output)) {
    throw CommandLineError("the output '" + options.output + "' is an animation; it needs --sweep");
  }
  if (options.depth == 16 && output.extension() != ".png") {
    throw CommandLineError("--depth 16 is for .png; .tif always has 16 bits, .npy floats");
  }
  if (holds_values(options, output) && !options.overlay.empty()) {
    throw CommandLineError("--overlay is for pictures of 8 bits; the output holds values");
  }
  if (holds_values(options, output) && (options.figure.figure || options.figure.transparent)) {
    throw CommandLineError("--figure and --transparent are for pictures of 8 bits; the output holds values");
  }
  if (!is_value_file(output)) return picture_file(options.output, inputs);
  return checked_output(options.output, inputs);
}

// "all" gives none.
std::optional<Sweep> parse_sweep(const std::string& text) {
  if (text.empty() || text == "all") return std::nullopt;
  Sweep sweep;
  std::istringstream stream(text);
  char colon = ':';
  bool valid = stream >> sweep.first >> colon >> sweep.last && colon == ':';
  if (valid && stream.peek() == ':') valid = static_cast<bool>(stream.ignore() >> sweep.step);
  constexpr std::ptrdiff_t most = 1'000'000;
  valid = valid && (stream.eof() || stream.peek() == std::istringstream::traits_type::eof());
  valid = valid && sweep.step != 0 && std::abs(sweep.first) <= most && std::abs(sweep.last) <= most &&
          (sweep.last - sweep.first) / sweep.step >= 0 &&
          (sweep.first == sweep.last || (sweep.last > sweep.first) == (sweep.step > 0));
  if (!valid)
    throw CommandLineError("--sweep: '" + text + "' is neither all nor FIRST:LAST or FIRST:LAST:STEP");
  return sweep;
}

void check_section(const Options& options) {
  const bool flat = options.axis != "enface";
  if (flat && (options.layers != 1 || !options.surface.empty())) {
    throw CommandLineError("--layers and --surface are for --axis enface");
  }
}

Sections sections_of(const Options& options, const std::array<std::size_t, 3>& sizes,
                     const std::array<std::size_t, 3>& file_size) {
  EnFace enface;
  enface.layers = options.layers;
  enface.projection = options.projection == "mean" ? Projection::mean : Projection::maximum;
  return {*find_slice_axis(options.axis), enface, options.surface, sizes, file_size};
}

// Positions that were asked for, all of which exist.
Sweep positions_of(const Options& options, const Sections& sections) {
  Sweep sweep{0, sections.count() - 1, 1};
  if (const std::optional<Sweep> given = parse_sweep(options.sweep)) {
    sweep = *given;
  } else if (options.sweep.empty()) {
    sweep.first = sweep.last =
        options.position.value_or(sections.follow_surface() ? 0 : sections.count() / 2);
    if (!options.position && !sections.follow_surface()) {
      note(from_utf8(options.input), "showing position " + std::to_string(sweep.first) + " of 0 to " +
                                         std::to_string(sections.count() - 1) +
                                         "; choose another with --position");
    }
  }
  for (const std::ptrdiff_t position : {sweep.first, sweep.last}) {
    const bool exists = position >= 0 && position < sections.count();
    if (exists || sections.follow_surface()) continue;
    throw ReadError(from_utf8(options.input), "there is no position " + std::to_string(position) +
                                                  " along this axis; they go from 0 to " +
                                                  std::to_string(sections.count() - 1));
  }
  return sweep;
}

// A volume for a sweep, one image for a section by itself.
using Samples = std::variant<VolumeData, Image>;

struct Inputs {
  Sections sections;
  Sweep sweep;
  Samples base;
  std::optional<Samples> overlay;

  Image image_of(const Samples& data, std::ptrdiff_t position) const {
    const auto* const volume = std::get_if<VolumeData>(&data);
    return volume ? sections.of(*volume, position) : std::get<Image>(data);
  }
};

void note_spacing(const Options& options, const VoxelSpacing& spacing) {
  if (options.extent.empty() && spacing.is_known())
    note(from_utf8(options.input), "voxels of " + spacing_text(spacing));
}

void check_overlay(const Options& options, const std::array<std::size_t, 3>& overlay,
                   const std::array<std::size_t, 3>& base) {
  if (overlay != base)
    throw ReadError(from_utf8(options.overlay), "the overlay has another size than the volume");
}

Inputs read_volumes(const Options& options) {
  VolumeData base = read_volume(data_file(options.input, options.data));
  if (options.decibels) to_decibels(base.voxels);
  replace_non_finite(base.voxels);
  take_extent(base, options.extent);
  note_spacing(options, base.spacing);
  Sections sections = sections_of(options, base.sizes(), base.file_size);
  const Sweep sweep = positions_of(options, sections);
  const std::array<std::size_t, 3> size = base.file_size;
  Inputs inputs{std::move(sections), sweep, std::move(base), {}};
  if (options.overlay.empty()) return inputs;
  VolumeData overlay = read_volume(data_file(options.overlay, options.data));
  replace_non_finite(overlay.voxels);
  check_overlay(options, overlay.file_size, size);
  inputs.overlay = std::move(overlay);
  return inputs;
}

Inputs read_section(const Options& options, bool finite) {
  VolumeFile file = open_volume(data_file(options.input, options.data));
  const VoxelSpacing spacing =
      options.extent.empty() ? file.spacing() : spacing_of(options.extent, file.sizes());
  note_spacing(options, spacing);
  const Sections sections = sections_of(options, file.sizes(), file.sizes());
  const Sweep sweep = positions_of(options, sections);
  Image section = sections.of(file, sweep.first, options.decibels, finite);
  section.spacing = section_spacing(spacing, sections.axis());
  Inputs inputs{sections, sweep, std::move(section), {}};
  if (options.overlay.empty()) return inputs;
  VolumeFile overlay = open_volume(data_file(options.overlay, options.data));
  check_overlay(options, overlay.sizes(), file.sizes());
  inputs.overlay = sections.of(overlay, sweep.first, false, true);
  return inputs;
}

PictureSize size_of(const Options& options, const Image& section, bool values) {
  if (!options.size.empty()) return parse_picture_size(options.size);
  const bool known = section.spacing.mm[0] > 0 && section.spacing.mm[1] > 0;
  if (known && !values) {
    return natural_picture_size(section.depth, section.ascans,
                                {section.spacing.mm[0], section.spacing.mm[1]});
  }
  if (!values) return natural_picture_size(section.depth, section.ascans, {});
  return {static_cast<unsigned>(section.ascans), static_cast<unsigned>(section.depth)};
}

SliceArea area_of(const Options& options, const Image& section, PictureSize size) {
  if (options.size.empty()) return whole_area(section);
  return area_of({options.zoom, {options.center[0], options.center[1]}}, section, size);
}

// One value per sample, or those of the window; NaN beside the section.
Image values_of(const Options& options, const Image& section) {
  const PictureSize size = size_of(options, section, true);
  const SliceArea area = area_of(options, section, size);
  const PixelRectangle pixels = visible_pixels(section, area, size);
  const Image inside = sample_area(section, area, size, pixels, {});
  Image values{size.height, size.width, {}, section.spacing};
  values.spacing.mm[0] *= area.height / size.height;
  values.spacing.mm[1] *= area.width / size.width;
  values.samples.assign(values.depth * values.ascans, std::numeric_limits<float>::quiet_NaN());
  for (std::size_t x = 0; x < inside.ascans; ++x) {
    std::copy_n(inside.samples.data() + x * inside.depth, inside.depth,
                &values.samples[(pixels.left + x) * values.depth + pixels.top]);
  }
  return values;
}

// What every picture of a run has.
SliceScene scene_of(const Options& options) {
  SliceScene scene;
  scene.background = parse_color("--background", options.background);
  scene.base.colormap = load_colormap(options.colormap);
  if (options.reverse) std::reverse(scene.base.colormap.begin(), scene.base.colormap.end());
  scene.transparent = options.figure.transparent;
  if (options.overlay.empty()) return scene;
  scene.overlay =
      SliceOverlay{{nullptr, {}, layer_colormap(options.overlay_colors)}, options.overlay_threshold};
  scale_alpha(scene.overlay->layer.colormap, options.overlay_opacity);
  return scene;
}

// The picture as it is, or on paper.
Picture finished(const Options& options, const SliceScene& scene, Picture picture) {
  if (!options.figure.figure) return picture;
  Figure figure{std::move(picture), pixel_mm(scene), {}};
  figure.color_bar = color_bar_of(options.figure, scene.base.colormap, scene.base.range, options.decibels);
  return figure_of(figure, style_of(options.figure));
}

SlicePicture draw(const Options& options, const Inputs& inputs, std::ptrdiff_t position, SliceScene& scene) {
  scene.base.image = std::make_shared<const Image>(inputs.image_of(inputs.base, position));
  if (inputs.overlay)
    scene.overlay->layer.image = std::make_shared<const Image>(inputs.image_of(*inputs.overlay, position));
  scene.size = size_of(options, *scene.base.image, false);
  scene.area = area_of(options, *scene.base.image, scene.size);
  SlicePicture drawn = render_slice(scene);
  drawn.picture = finished(options, scene, std::move(drawn.picture));
  return drawn;
}

void draw_sweep(const Options& options, const Inputs& inputs, SliceScene& scene,
                const std::filesystem::path& output, const PngTexts& texts) {
  const Sweep& sweep = inputs.sweep;
  std::string explanation;
  {
    Progress progress("drawing " + std::to_string(sweep.count()) + " pictures",
                      std::get<VolumeData>(inputs.base).voxels.size());
    const auto series = open_series({output, sweep.count(), options.frames_per_second, texts});
    bool shows = false;
    for (unsigned i = 0; i < sweep.count(); ++i) {
      progress.update(i, sweep.count());
      const SlicePicture drawn =
          draw(options, inputs, sweep.first + static_cast<std::ptrdiff_t>(i) * sweep.step, scene);
      series->add(drawn.picture);
      shows = shows || drawn.explanation.empty();
      explanation = drawn.explanation;
    }
    series->finish();
    if (shows) return;
  }
  warn("octrender", explanation);
}

void run(const Options& options, const PngTexts& texts) {
  // Everything that can be refused by the command line alone comes before the files are read.
  const std::filesystem::path output = output_of(options);
  check_section(options);
  check_extent(options.extent);
  parse_sweep(options.sweep);
  if (!options.size.empty()) parse_picture_size(options.size);
  const std::optional<ValueRange> range = parse_range("--range", options.range);
  const std::optional<ValueRange> overlay_range =
      parse_range("--overlay-range", options.overlay_colors.range);
  data_file(options.input, options.data);
  style_of(options.figure);
  SliceScene scene = scene_of(options);

  const bool alone = options.sweep.empty();
  const Inputs inputs = alone ? read_section(options, !holds_values(options, output)) : read_volumes(options);
  const auto range_of = [&](const std::string& name, const Samples& data,
                            const std::optional<ValueRange>& given) {
    const auto* const volume = std::get_if<VolumeData>(&data);
    return volume_range(name, volume ? volume->voxels : std::get<Image>(data).samples, given, image_shares);
  };
  if (output.extension() != ".npy") scene.base.range = range_of(options.input, inputs.base, range);
  if (inputs.overlay) scene.overlay->layer.range = range_of(options.overlay, *inputs.overlay, overlay_range);
  if (!alone) {
    draw_sweep(options, inputs, scene, output, texts);
  } else if (holds_values(options, output)) {
    write_values(output, values_of(options, inputs.image_of(inputs.base, inputs.sweep.first)),
                 scene.base.range, texts);
  } else {
    const SlicePicture drawn = draw(options, inputs, inputs.sweep.first, scene);
    write_png(output, drawn.picture, texts);
    warn("octrender", drawn.explanation);
  }
}

}  // namespace
}  // namespace slice_verb

void add_slice_verb(CLI::App& program, const PngTexts& texts) {
  using namespace slice_verb;
  CLI::App* verb = program.add_subcommand("slice", description_text);
  const auto options = std::make_shared<Options>();
  add_input_options(*verb, *options);
  add_section_options(*verb, *options);
  add_picture_options(*verb, *options);
  add_overlay_options(*verb, *options);
  add_figure_options(*verb, options->figure, "where samples\nhave a distance in millimetres");
  verb->footer(std::string(data_help) + footer_text);
  verb->callback([options, texts] { run(*options, texts); });
}

}  // namespace oct::app
