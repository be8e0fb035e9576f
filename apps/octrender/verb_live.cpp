// octrender live: volumes of a device as they come.
#include <algorithm>
#include <cmath>
#include <iomanip>
#include <iostream>
#include <limits>
#include <map>
#include <memory>

#include "client/checked.h"
#include "command_line/progress.h"
#include "command_line/scan_options.h"
#include "command_line/warning.h"
#include "data/formats/png_writer.h"
#include "octrender/layer_options.h"
#include "octrender/option_values.h"
#include "octrender/picture_files.h"
#include "octrender/verbs.h"
#include "octrender/volume_input.h"
#include "octrender/volume_options.h"
#include "scene/live_view.h"

namespace oct::app {
namespace live_verb {
namespace {

constexpr char description_text[] = "Draw the volumes of a device as they come, and measure how they do";

constexpr char footer_text[] = R"(
The device is the simulated one, which looks at a phantom or plays a volume back. Another
device library must export the simulated device's functions that make a device, a
processing and a scan pattern (createSimulatedDevice, ...); docs/live.md lists them.

The time begins with the first volume on the screen. Latency goes from the end of a volume's
processing to the end of the frame that shows it, over the last 1,000 volumes. A volume is
dropped when no frame makes a buffer free for it within 100 ms.

An automatic range is found from one volume that is measured beforehand, by percentiles as
octrender volume does it; retardation, axis, DOPU and Stokes parameters have theirs.

With --snapshots N the pictures are OUT-000.png, OUT-001.png, ...

Exit codes: 0 done, 1 rendering failed, 2 wrong command line, 3 input cannot be read or
understood, 4 output cannot be written, 5 the device failed.

Examples:
  octrender live -o finger.png --motion drift
  octrender live -o finger.png --surface --rate 200000 --seconds 20 --snapshots 10
  octrender live -o retina.png --phantom retina --width 6 --length 6
  octrender live -o target.png --phantom target --ps retardation --mode sections
  octrender live -o again.png --playback skin.npy --depth 2.5 --noise 2
)";

struct Options : VolumeOptions {
  std::string output;
  double seconds = 5;
  unsigned snapshots = 1;
  double frames_per_second = 60;
  bool json = false;
  std::string library = "oct_device";
  int phantom = OCT_PHANTOM_FINGER_PAD;
  std::string playback;
  double noise = 0;
  ScanSettings scan{512, 128, 128};
  double depth = 3.6;
  int motion = OCT_MOTION_NONE;
  std::optional<double> rate;
  std::optional<int> size_z;
  double refractive_index = 1;
  std::string polarization;
  std::optional<double> threshold;
  std::vector<int> averaging{1, 1, 1, 1};
  bool analog = false;
  int analog_channel = 0;
  bool surface = false;
  std::string surface_colormap = "viridis";
};

void add_run_options(CLI::App& verb, Options& options) {
  add_output_option(verb, options.output);
  verb.add_option("--seconds", options.seconds, "How long to show volumes")
      ->check(within(0.01, 1e6))
      ->capture_default_str();
  verb.add_option("--snapshots", options.snapshots, "Write N pictures at even intervals, the last at the end")
      ->type_name("N")
      ->check(within(1, 1000))
      ->capture_default_str();
  verb.add_option("--fps", options.frames_per_second, "Frames per second at most, 0: as many as can be")
      ->check(within(0, 1e4))
      ->capture_default_str();
  verb.add_flag("--json", options.json, "Report as one JSON object");
}

void add_device_options(CLI::App& verb, Options& options) {
  verb.add_option("--device-library", options.library, "Device library by name or path")
      ->type_name("NAME")
      ->capture_default_str();
  auto* phantom = verb.add_option("--phantom", options.phantom, "What the device looks at (default: finger)");
  phantom->type_name("finger|retina|mirror|target")
      ->transform(one_of({{"finger", OCT_PHANTOM_FINGER_PAD},
                          {"retina", OCT_PHANTOM_RETINA},
                          {"mirror", OCT_PHANTOM_MIRROR},
                          {"target", OCT_PHANTOM_POLARIZATION_TARGET}}));
  add_scan_options(verb, options.scan);
  auto* motion = verb.add_option("--motion", options.motion, "How the phantom moves (default: none)");
  motion->type_name("none|breathing|drift")
      ->transform(one_of(
          {{"none", OCT_MOTION_NONE}, {"breathing", OCT_MOTION_BREATHING}, {"drift", OCT_MOTION_DRIFT}}));
  verb.add_option("--rate", options.rate,
                  "A-scans per second in real time (default: as fast as\nvolumes can be computed)")
      ->type_name("RATE")
      ->check(within(1, 1e9));
  auto* playback = verb.add_option("--playback", options.playback,
                                   "Play a volume back instead: a .npy array (B-scan, depth,\nA-scan)");
  playback->type_name("FILE")->excludes(phantom)->excludes("--spectrum")->excludes(motion);
  verb.add_option("--depth", options.depth, "Depth of the played volume in millimetres")
      ->check(within(1e-6, 1e6))
      ->capture_default_str()
      ->needs(playback);
  verb.add_option("--noise", options.noise, "Noise that is added to the played volume, in its unit")
      ->check(within(0, 1e6))
      ->capture_default_str()
      ->needs(playback);
}

void add_source_options(CLI::App& verb, Options& options) {
  verb.add_option("--size-z", options.size_z, "Depth samples that are drawn (default: all)")
      ->type_name("N")
      ->check(within(1, 65536));
  verb.add_option("--refractive-index", options.refractive_index, "What depths are divided by")
      ->check(within(0.1, 10))
      ->capture_default_str();
  auto* polarization = verb.add_option(
      "--ps", options.polarization,
      "Look with two sensors for two polarizations and draw\nintensity, retardation, optic-axis, dopu, "
      "q, u, v, sensor0\nor sensor1, or their number");
  polarization->type_name("MODE")->excludes("--playback");
  verb.add_option("--threshold", options.threshold,
                  "Decibels below which a polarization counts as 0\n(default: 9 above the noise)")
      ->type_name("DB")
      ->needs(polarization);
  verb.add_option("--averaging", options.averaging,
                  "Average of Stokes vectors over depth samples, A-scans,\nB-scans, volumes")
      ->type_name("D A B V")
      ->expected(4)
      ->check(within(1, 1000))
      ->capture_default_str()
      ->needs(polarization);
  auto* analog = verb.add_flag("--analog", options.analog, "Colour a composite by the analog input");
  analog->excludes(polarization);
  verb.add_option("--analog-channel", options.analog_channel, "Channel of the analog input")
      ->type_name("N")
      ->check(within(0, 63))
      ->capture_default_str()
      ->needs(analog);
  auto* surface = verb.add_flag("--surface", options.surface, "Draw the surface, too");
  add_layer_colormap_option(verb, surface, "the surface", options.surface_colormap);
}

bool is_intensity(const std::optional<PolarizationMode>& mode) {
  return !mode || !natural_range(*mode);
}

DeviceSetup device_setup(const Options& options, const std::optional<PolarizationMode>& mode) {
  DeviceSetup setup;
  setup.library = options.library;
  setup.phantom = options.phantom;
  setup.noise = options.noise;
  setup.scan = options.scan;
  setup.depth = options.depth;
  setup.motion = options.motion;
  setup.rate = options.rate;
  setup.polarization = mode;
  if (!options.playback.empty()) {
    setup.playback = read_volume({from_utf8(options.playback), {}, {}});
    std::vector<float>& voxels = setup.playback->voxels;
    replace_non_finite(voxels, volume_range(options.playback, voxels, {}, {0, 1}));
  }
  return setup;
}

// Settings that the command line alone decides and can refuse.
LiveScene scene_of(const Options& options, const std::optional<PolarizationMode>& mode) {
  LiveScene scene;
  scene.view = view_of(options);
  scene.view.secondary_colors = options.analog;
  if (options.analog && scene.view.look != VolumeLook::composite) {
    throw CommandLineError("--analog colours composites only; it needs --mode composite");
  }
  const bool plain = scene.view.look == VolumeLook::sections || options.analog;
  const char* const map = !is_intensity(mode) ? "viridis" : plain ? "gray" : "inferno";
  scene.volume.colormap = volume_colormap(options, scene.view.look, map);
  if (options.surface) scene.surface = LayerColors{load_colormap(options.surface_colormap), {}};
  if (options.analog) scene.analog = LayerColors{load_colormap("viridis"), {0, 1}};
  scene.analog_channel = options.analog_channel;
  return scene;
}

LiveSettings settings_of(const Options& options, const std::optional<PolarizationMode>& mode) {
  LiveSettings settings;
  SourceSettings& source = settings.source;
  source.size_z = options.size_z;
  source.refractive_index = options.refractive_index;
  source.analog = options.analog;
  source.polarization = mode;
  std::copy_n(options.averaging.begin(), source.averaging.size(), source.averaging.begin());
  settings.seconds = options.seconds;
  settings.frames_per_second = options.frames_per_second;
  settings.snapshots = options.snapshots;
  return settings;
}

// What only the device's volumes can tell: boundaries and the threshold.
void adapt(const Options& options, const std::optional<ValueRange>& range, const Shares& shares,
           LiveDevice& device, LiveScene& scene, SourceSettings& source) {
  const bool intensity = is_intensity(source.polarization);
  scene.volume.range = range ? *range : intensity ? ValueRange{} : *natural_range(*source.polarization);
  if (options.threshold) source.threshold = *options.threshold;
  const bool wants_range = intensity && !range;
  const bool wants_threshold = source.polarization && !options.threshold;
  if (!wants_range && !wants_threshold && !scene.surface) return;

  const Progress progress("measuring a first volume", Progress::unknown_length);
  MeasuredVolume first = device.measure(scene.surface.has_value());
  if (wants_range) {
    scene.volume.range = volume_range("the device's first volume", first.samples, {}, shares);
  }
  if (scene.surface) {
    const double whole_depth = device.depth_range() / source.refractive_index;
    scene.surface->range = first.surface_range(whole_depth).value_or(ValueRange{});
  }
  if (wants_threshold) source.threshold = first.polarization_threshold();
}

void print(const LiveResult& result) {
  const OctLiveStatistics& volumes = result.volumes;
  const auto rate = [&](auto count) { return static_cast<double>(count) / result.seconds; };
  const auto dropped = volumes.dropped_no_frame + volumes.dropped_withdrawn + volumes.dropped_by_driver;
  std::cout << std::fixed << std::setprecision(1)                                                    //
            << "volumes:  " << result.size[0] << " x " << result.size[1] << " x " << result.size[2]  //
            << " samples (depth, A-scans, B-scans)\n"                                                //
            << "time:     " << result.seconds << " s from the first volume on the screen\n"          //
            << "acquired: " << volumes.acquired << " volumes, " << rate(volumes.acquired) << " per second\n"
            << "shown:    " << volumes.shown << " volumes, " << rate(volumes.shown) << " per second, "
            << volumes.volumes_per_second << " in the last\n"
            << "dropped:  " << dropped << " volumes: " << volumes.dropped_no_frame
            << " without a frame in time, " << volumes.dropped_withdrawn << " withdrawn, "
            << volumes.dropped_by_driver << " lost by the driver\n"
            << "left out: " << volumes.dropped_by_device << " volumes by the device, as far as it tells\n"
            << "latency:  median " << volumes.latency_median_ms << " ms, 99th percentile "
            << volumes.latency_p99_ms << " ms, worst " << volumes.latency_worst_ms << " ms\n"
            << "frames:   " << result.frames << ", " << rate(result.frames) << " per second, worst "
            << result.worst_frame << " ms\n";
}

void print_json(const LiveResult& result) {
  const OctLiveStatistics& volumes = result.volumes;
  std::cout << "{\"size\": [" << result.size[0] << ", " << result.size[1] << ", " << result.size[2]
            << "], \"seconds\": " << result.seconds << ", \"acquired\": " << volumes.acquired
            << ", \"handed_over\": " << volumes.handed_over << ", \"shown\": " << volumes.shown
            << ", \"dropped\": {\"no_frame\": " << volumes.dropped_no_frame
            << ", \"withdrawn\": " << volumes.dropped_withdrawn
            << ", \"by_driver\": " << volumes.dropped_by_driver
            << ", \"by_device\": " << volumes.dropped_by_device
            << "}, \"volumes_per_second\": " << volumes.volumes_per_second
            << ", \"latency_ms\": {\"median\": " << volumes.latency_median_ms
            << ", \"p99\": " << volumes.latency_p99_ms << ", \"worst\": " << volumes.latency_worst_ms
            << "}, \"frames\": " << result.frames << ", \"worst_frame_ms\": " << result.worst_frame << "}\n";
}

void run(const Options& options, const PngTexts& texts) {
  const std::filesystem::path output =
      options.output.empty() ? std::filesystem::path() : picture_file(options.output, {});
  const std::optional<ValueRange> range = parse_range("--range", options.range);
  const std::optional<PolarizationMode> mode = options.polarization.empty()
                                                   ? std::optional<PolarizationMode>()
                                                   : parse_polarization_mode(options.polarization);
  LiveScene scene = scene_of(options, mode);
  LiveSettings settings = settings_of(options, mode);
  const Shares shares = shares_of(options, scene.view.look);

  LiveDevice device(device_setup(options, mode));
  checked(setDeviceLibrary, options.library.c_str());
  adapt(options, range, shares, device, scene, settings.source);
  LiveResult result;
  {
    Progress progress("live", Progress::unknown_length);
    LiveEvents events;
    events.snapshot = [&](unsigned number, const Picture& picture) {
      if (output.empty()) return;
      write_png(options.snapshots > 1 ? numbered(output, number) : output, picture, texts);
    };
    events.progress = [&](double seconds) {
      constexpr double steps = 1000;
      const double part = std::clamp(seconds / options.seconds, 0.0, 1.0);
      progress.update(static_cast<std::size_t>(steps * part), static_cast<std::size_t>(steps));
    };
    result = show_live(device, scene, settings, events);
  }
  options.json ? print_json(result) : print(result);
  warn("octrender", result.explanation);
}

}  // namespace
}  // namespace live_verb

void add_live_verb(CLI::App& program, const PngTexts& texts) {
  using namespace live_verb;
  CLI::App* verb = program.add_subcommand("live", description_text);
  const auto options = std::make_shared<Options>();
  options->size = "640x480";
  options->slices = 128;
  add_run_options(*verb, *options);
  add_device_options(*verb, *options);
  add_source_options(*verb, *options);
  add_view_options(*verb, *options);
  add_color_options(*verb, *options,
                    "inferno; gray for sections and with --analog;\nviridis for polarization");
  add_cut_options(*verb, *options);
  add_box_options(*verb, *options);
  verb->footer(footer_text);
  verb->callback([options, texts] { run(*options, texts); });
}

}  // namespace oct::app
