#include "octrender/volume_options.h"

#include <algorithm>
#include <sstream>

namespace oct::app {
namespace {

// The box with its labels, whatever the angles.
constexpr double kPerspectiveZoom = 52;
constexpr double kOrthographicZoom = 30;

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
      throw CommandLineError("--sections: '" + words[i] + "' is neither a position from 0 to 1 nor off");
    }
    sections[i] = position;
  }
  return sections;
}

}  // namespace

void addViewOptions(CLI::App& verb, VolumeOptions& options) {
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
  verb.add_option("--slices", options.slices, "Steps of a ray along the diagonal")
      ->check(CLI::Range(1, 4096).description(""))
      ->capture_default_str();
}

void addColorOptions(CLI::App& verb, VolumeOptions& options, const std::string& defaultColors) {
  verb.add_option("--range", options.range, "Values of the first and the last colour\n(default: auto)")
      ->type_name("LO HI | auto");
  verb.add_option(
          "--colormap", options.colormap,
          colormapNames() + "\nor a .csv file, whose own alpha then counts (default:\n" + defaultColors + ")")
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

void addCutOptions(CLI::App& verb, VolumeOptions& options) {
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
}

void addBoxOptions(CLI::App& verb, VolumeOptions& options) {
  verb.add_flag("--no-edges", options.noEdges, "Without the edges of the box");
  verb.add_flag("--no-labels", options.noLabels, "Without scale marks and labels");
  verb.add_flag("--box", options.box, "With translucent faces of the box");
}

VolumeView viewOf(const VolumeOptions& options) {
  VolumeView view;
  view.look = parseMode(options.mode);
  view.size = parsePictureSize(options.size);
  view.angles = {options.angles[0], options.angles[1]};
  view.zoom = options.zoom.value_or(options.orthographic ? kOrthographicZoom : kPerspectiveZoom);
  view.perspective = !options.orthographic;
  view.slices = options.slices;
  if (options.clip) view.clip = ClipSetting{*options.clip, options.clipOpen, options.clipGhost};
  view.sections = parseSections(options.sections);
  view.edges = !options.noEdges;
  view.scaleMarks = !options.noLabels;
  view.box = options.box;
  view.backgroundBottom = parseColor("--background", options.background[0]);
  view.backgroundTop = parseColor("--background", options.background[1]);
  view.foreground = parseColor("--foreground", options.foreground);
  return view;
}

Colormap volumeColormap(const VolumeOptions& options, VolumeLook look, const std::string& defaultName) {
  const std::string& name = options.colormap.empty() ? defaultName : options.colormap;
  Colormap colors = loadColormap(name);
  if (options.reverse) std::reverse(colors.begin(), colors.end());
  if (look == VolumeLook::Composite && !isOwnColormap(name)) addOpacityRamp(colors, options.opacity);
  return colors;
}

}  // namespace oct::app
