#include "octrender/volume_options.h"

#include <algorithm>
#include <sstream>

namespace oct::app {
namespace {

// The box with its labels, whatever the angles.
constexpr double perspective_zoom = 52;
constexpr double orthographic_zoom = 30;

VolumeLook parse_mode(const std::string& mode) {
  if (mode == "maximum") return VolumeLook::maximum;
  if (mode == "mean") return VolumeLook::mean;
  return mode == "sections" ? VolumeLook::sections : VolumeLook::composite;
}

std::array<std::optional<float>, 3> parse_sections(const std::vector<std::string>& words) {
  std::array<std::optional<float>, 3> sections{0.5F, 0.5F, 0.5F};
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (words[i] == "off") {
      sections[i].reset();
      continue;
    }
    std::istringstream stream(words[i]);
    float position = 0;
    if (!(stream >> position) || !stream.eof() || !(position >= 0 && position <= 1)) {
      throw CommandLineError("--sections: '" + words[i] + "' is neither a position from 0 to 1 nor off");
    }
    sections[i] = position;
  }
  return sections;
}

}  // namespace

void add_view_options(CLI::App& verb, VolumeOptions& options) {
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
  verb.add_option(
          "--translate", options.translation,
          "Move the volume to the right, upwards, and towards the\nviewer; the box's half diagonal is 2")
      ->type_name("X Y Z")
      ->expected(3)
      ->check(CLI::Range(-1e6, 1e6).description(""))
      ->capture_default_str();
  verb.add_option("--zoom", options.zoom,
                  "Smaller is closer: the field of view less 5 degrees,\nor, orthographic, five times the "
                  "visible width, the\n"
                  "box's half diagonal being 2 (default: the whole box)")
      ->check(CLI::Range(0.1, 170.0).description(""));
  verb.add_flag("--orthographic", options.orthographic, "No perspective");
  verb.add_option("--slices", options.slices, "Steps of a ray along the diagonal")
      ->check(CLI::Range(1, 4096).description(""))
      ->capture_default_str();
  verb.add_option(
          "--light", options.light,
          "Light composites from the eye, in three shares: light\nfrom everywhere, from the front, and "
          "white highlights;\n0.3 0.7 0.2 is a good start")
      ->type_name("A D S")
      ->expected(3)
      ->check(CLI::Range(0.0, 1e6).description(""));
  verb.add_flag("--jitter", options.jitter, "Grain in place of the rings that few slices draw");
}

void add_color_options(CLI::App& verb, VolumeOptions& options, const std::string& default_colors) {
  auto* range =
      verb.add_option("--range", options.range, "Values of the first and the last colour\n(default: auto)");
  range->type_name("LO HI | auto");
  verb.add_option("--percentiles", options.percentiles,
                  "Ends of an automatic range: percents of the samples\nthat lie below")
      ->type_name("LO HI")
      ->excludes(range);
  verb.add_option("--colormap", options.colormap,
                  colormap_names() + "\nor a .csv file, whose own alpha then counts (default:\n" +
                      default_colors + ")")
      ->type_name("MAP");
  verb.add_flag("--reverse", options.reverse, "Turn the colours of the map round, not its opacity");
  verb.add_option("--opacity", options.opacity.highest, "Highest opacity of one step of a ray, 0 to 1")
      ->check(CLI::Range(0.0, 1.0).description(""))
      ->capture_default_str();
  verb.add_option("--opacity-shift", options.opacity.shift,
                  "Move the curve of opacities along the map, by this\npart of it; above 0 less is opaque")
      ->check(CLI::Range(-1.0, 1.0).description(""))
      ->capture_default_str();
  verb.add_option(
          "--opacity-points", options.opacity_points,
          "The curve in place of the square of the value: places\non the map with parts of the highest "
          "opacity, both 0 to\n1, such as 0:0,0.4:0.1,1:1; linear in between")
      ->type_name("PLACE:PART,...");
  verb.add_option(
          "--opacity-length", options.opacity_length,
          "Make it the opacity of so many millimetres of tissue\n(of voxels, where they count as cubes)")
      ->type_name("MM")
      ->check(CLI::Range(0.0, 1e6).description(""));
  verb.add_option("--background", options.background, "Colours at the bottom and at the top")
      ->type_name("RRGGBB RRGGBB")
      ->expected(2)
      ->capture_default_str();
  verb.add_option("--foreground", options.foreground, "Colour of lines and labels")
      ->type_name("RRGGBB")
      ->capture_default_str();
}

void add_cut_options(CLI::App& verb, VolumeOptions& options) {
  auto* clip =
      verb.add_option("--clip", options.clip,
                      "Cut by a plane that faces the viewer: 0 leaves\nalmost nothing, 1 almost everything");
  clip->check(CLI::Range(0.0, 1.0).description(""));
  verb.add_flag("--clip-open", options.clip_open, "Leave the cut open")->needs(clip);
  verb.add_flag("--clip-ghost", options.clip_ghost, "Show where the part that is cut away was")->needs(clip);
  verb.add_option("--sections", options.sections,
                  "Positions of the slices across A-scans, depth and\nB-scans, 0 to 1 or off")
      ->type_name("A D B")
      ->expected(3);
}

void add_box_options(CLI::App& verb, VolumeOptions& options) {
  verb.add_flag("--no-edges", options.no_edges, "Without the edges of the box");
  verb.add_flag("--no-labels", options.no_labels, "Without scale marks and labels");
  verb.add_flag("--box", options.box, "With translucent faces of the box");
}

VolumeView view_of(const VolumeOptions& options) {
  VolumeView view;
  view.look = parse_mode(options.mode);
  view.size = parse_picture_size(options.size);
  view.angles = {options.angles[0], options.angles[1]};
  std::ranges::copy(options.translation, view.translation.begin());
  view.zoom = options.zoom.value_or(options.orthographic ? orthographic_zoom : perspective_zoom);
  view.perspective = !options.orthographic;
  view.slices = options.slices;
  for (std::size_t i = 0; i < options.light.size(); ++i) view.lighting[i] = options.light[i];
  view.jitter = options.jitter;
  view.opacity_length = options.opacity_length;
  if (options.clip) view.clip = ClipSetting{*options.clip, options.clip_open, options.clip_ghost};
  view.sections = parse_sections(options.sections);
  view.edges = !options.no_edges;
  view.scale_marks = !options.no_labels;
  view.box = options.box;
  view.background_bottom = parse_color("--background", options.background[0]);
  view.background_top = parse_color("--background", options.background[1]);
  view.foreground = parse_color("--foreground", options.foreground);
  return view;
}

Shares shares_of(const VolumeOptions& options, VolumeLook look) {
  return parse_percentiles(options.percentiles).value_or(range_shares(look));
}

Colormap volume_colormap(const VolumeOptions& options, VolumeLook look, const std::string& default_name) {
  const std::string& name = options.colormap.empty() ? default_name : options.colormap;
  Colormap colors = load_colormap(name);
  if (options.reverse) std::reverse(colors.begin(), colors.end());
  OpacityRule opacity = options.opacity;
  if (!options.opacity_points.empty()) opacity.points = parse_opacity_points(options.opacity_points);
  if (look == VolumeLook::composite && !is_own_colormap(name)) set_opacity(colors, opacity);
  return colors;
}

}  // namespace oct::app
