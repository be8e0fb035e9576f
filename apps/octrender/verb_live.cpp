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
#include "data/formats/png_writer.h"
#include "octrender/layer_options.h"
#include "octrender/option_values.h"
#include "octrender/picture_files.h"
#include "octrender/verbs.h"
#include "octrender/volume_input.h"
#include "octrender/volume_options.h"
#include "scene/live_view.h"

namespace oct::app {
namespace {

constexpr char kDescription[] = "Draw the volumes of a device as they come, and measure how they do";

constexpr char kFooter[] = R"(
The device is the simulated one, which looks at a phantom or plays a volume back. Another
device library must export the simulated device's functions that make a device, a
processing and a scan pattern (createSimulatedDevice, ...); docs/live.md lists them.

The time begins with the first volume on the screen. Latency is counted from the moment at
which the source announces a volume's reference intensity, which is after its processing
and before it is handed over, to the moment at which the pixels of the first frame that
shows it are in memory. A volume is dropped when no buffer is free for it within 100 ms.

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
  double framesPerSecond = 60;
  std::string library = "oct_device";
  int phantom = OCT_PHANTOM_FINGER_PAD;
  std::string playback;
  double noise = 0;
  ScanSettings scan{512, 128, 128};
  double depth = 3.6;
  int motion = OCT_MOTION_NONE;
  std::optional<double> rate;
  std::optional<int> sizeZ;
  double refractiveIndex = 1;
  std::string polarization;
  std::optional<double> threshold;
  std::vector<int> averaging{1, 1, 1, 1};
  bool analog = false;
  int analogChannel = 0;
  bool surface = false;
  std::string surfaceColormap = "viridis";
};

void addRunOptions(CLI::App& verb, Options& options) {
  addOutputOption(verb, options.output);
  verb.add_option("--seconds", options.seconds, "How long to show volumes")
      ->check(within(0.01, 1e6))
      ->capture_default_str();
  verb.add_option("--snapshots", options.snapshots, "Write N pictures at even intervals, the last at the end")
      ->type_name("N")
      ->check(within(1, 1000))
      ->capture_default_str();
  verb.add_option("--fps", options.framesPerSecond, "Frames per second at most, 0: as many as can be")
      ->check(within(0, 1e4))
      ->capture_default_str();
}

void addDeviceOptions(CLI::App& verb, Options& options) {
  verb.add_option("--device-library", options.library, "Device library by name or path")
      ->type_name("NAME")
      ->capture_default_str();
  auto* phantom = verb.add_option("--phantom", options.phantom, "What the device looks at (default: finger)");
  phantom->type_name("finger|retina|mirror|target")
      ->transform(oneOf({{"finger", OCT_PHANTOM_FINGER_PAD},
                         {"retina", OCT_PHANTOM_RETINA},
                         {"mirror", OCT_PHANTOM_MIRROR},
                         {"target", OCT_PHANTOM_POLARIZATION_TARGET}}));
  addScanOptions(verb, options.scan);
  auto* motion = verb.add_option("--motion", options.motion, "How the phantom moves (default: none)");
  motion->type_name("none|breathing|drift")
      ->transform(oneOf(
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

void addSourceOptions(CLI::App& verb, Options& options) {
  verb.add_option("--size-z", options.sizeZ, "Depth samples that are drawn (default: all)")
      ->type_name("N")
      ->check(within(1, 65536));
  verb.add_option("--refractive-index", options.refractiveIndex, "What depths are divided by")
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
  verb.add_option("--analog-channel", options.analogChannel, "Channel of the analog input")
      ->type_name("N")
      ->check(within(0, 63))
      ->capture_default_str()
      ->needs(analog);
  auto* surface = verb.add_flag("--surface", options.surface, "Draw the surface, too");
  addLayerColormapOption(verb, surface, "the surface", options.surfaceColormap);
}

bool isIntensity(const std::optional<PolarizationMode>& mode) {
  return !mode || !naturalRange(*mode);
}

DeviceSetup deviceSetup(const Options& options, const std::optional<PolarizationMode>& mode) {
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
    setup.playback = readVolume({options.playback, {}, false});
    std::vector<float>& voxels = setup.playback->voxels;
    replaceNonFinite(voxels, volumeRange(options.playback, voxels, {}, {0, 1}));
  }
  return setup;
}

// Settings that the command line alone decides and can refuse.
LiveScene sceneOf(const Options& options, const std::optional<PolarizationMode>& mode) {
  LiveScene scene;
  scene.view = viewOf(options);
  scene.view.secondaryColors = options.analog;
  if (options.analog && scene.view.look != VolumeLook::Composite) {
    throw CommandLineError("--analog colours composites only; it needs --mode composite");
  }
  const bool plain = scene.view.look == VolumeLook::Sections || options.analog;
  const char* const map = !isIntensity(mode) ? "viridis" : plain ? "gray" : "inferno";
  scene.volume.colormap = volumeColormap(options, scene.view.look, map);
  if (options.surface) scene.surface = LayerColors{loadColormap(options.surfaceColormap), {}};
  if (options.analog) scene.analog = LayerColors{loadColormap("viridis"), {0, 1}};
  scene.analogChannel = options.analogChannel;
  return scene;
}

LiveSettings settingsOf(const Options& options, const std::optional<PolarizationMode>& mode) {
  LiveSettings settings;
  SourceSettings& source = settings.source;
  source.sizeZ = options.sizeZ;
  source.refractiveIndex = options.refractiveIndex;
  source.analog = options.analog;
  source.polarization = mode;
  std::copy_n(options.averaging.begin(), source.averaging.size(), source.averaging.begin());
  settings.seconds = options.seconds;
  settings.framesPerSecond = options.framesPerSecond;
  settings.snapshots = options.snapshots;
  return settings;
}

// What only the device's volumes can tell: boundaries and the threshold.
void adapt(const Options& options, const std::optional<ValueRange>& range, LiveDevice& device,
           LiveScene& scene, SourceSettings& source) {
  const bool intensity = isIntensity(source.polarization);
  scene.volume.range = range ? *range : intensity ? ValueRange{} : *naturalRange(*source.polarization);
  if (options.threshold) source.threshold = *options.threshold;
  const bool wantsRange = intensity && !range;
  const bool wantsThreshold = source.polarization && !options.threshold;
  if (!wantsRange && !wantsThreshold && !scene.surface) return;

  const Progress progress("measuring a first volume", Progress::kLong);
  MeasuredVolume first = device.measure(scene.surface.has_value());
  if (wantsRange) {
    scene.volume.range =
        volumeRange("the device's first volume", first.samples, {}, rangeShares(scene.view.look));
  }
  if (scene.surface) {
    // The source gives the part that is drawn, divided by the refractive index, as the range of the whole.
    const double drawn = source.sizeZ ? static_cast<double>(*source.sizeZ) / first.depth : 1.0;
    const double wholeDepth = device.depthRange() * drawn / source.refractiveIndex;
    scene.surface->range = first.surfaceRange(wholeDepth).value_or(ValueRange{});
  }
  if (wantsThreshold) source.threshold = first.polarizationThreshold();
}

void print(const LiveResult& result) {
  const LiveReport& report = result.report;
  const auto rate = [&](unsigned count) { return count / report.seconds; };
  std::cout << std::fixed << std::setprecision(1)                                                    //
            << "volumes:  " << result.size[0] << " x " << result.size[1] << " x " << result.size[2]  //
            << " samples (depth, A-scans, B-scans)\n"                                                //
            << "time:     " << report.seconds << " s from the first volume on the screen\n"          //
            << "acquired: " << report.acquired << " volumes, " << rate(report.acquired) << " per second\n"
            << "shown:    " << report.shown << " volumes, " << rate(report.shown) << " per second\n"
            << "dropped:  " << report.dropped << " volumes\n"
            << "latency:  median " << report.latencyAt(0.5) << " ms, 99th percentile "
            << report.latencyAt(0.99) << " ms, worst " << report.latencyAt(1.0) << " ms\n"
            << "frames:   " << report.frames << ", " << rate(report.frames) << " per second, worst "
            << report.worstFrame << " ms\n";
}

void run(const Options& options) {
  const std::filesystem::path output =
      options.output.empty() ? std::filesystem::path() : pictureFile(options.output, {});
  const std::optional<ValueRange> range = parseRange("--range", options.range);
  const std::optional<PolarizationMode> mode = options.polarization.empty()
                                                   ? std::optional<PolarizationMode>()
                                                   : parsePolarizationMode(options.polarization);
  LiveScene scene = sceneOf(options, mode);
  LiveSettings settings = settingsOf(options, mode);

  LiveDevice device(deviceSetup(options, mode));
  checked(setDeviceLibrary, options.library.c_str());
  adapt(options, range, device, scene, settings.source);
  LiveResult result;
  {
    Progress progress("live", Progress::kLong);
    LiveEvents events;
    events.snapshot = [&](unsigned number, const Picture& picture) {
      if (output.empty()) return;
      writePng(options.snapshots > 1 ? numbered(output, number) : output, picture);
    };
    events.progress = [&](double seconds) {
      constexpr double kSteps = 1000;
      const double part = std::clamp(seconds / options.seconds, 0.0, 1.0);
      progress.update(static_cast<std::size_t>(kSteps * part), static_cast<std::size_t>(kSteps));
    };
    result = showLive(device, scene, settings, events);
  }
  print(result);
}

}  // namespace

void addLiveVerb(CLI::App& program) {
  CLI::App* verb = program.add_subcommand("live", kDescription);
  const auto options = std::make_shared<Options>();
  options->size = "640x480";
  options->slices = 128;
  addRunOptions(*verb, *options);
  addDeviceOptions(*verb, *options);
  addSourceOptions(*verb, *options);
  addViewOptions(*verb, *options);
  addColorOptions(*verb, *options, "inferno; gray for sections and with --analog;\nviridis for polarization");
  addCutOptions(*verb, *options);
  addBoxOptions(*verb, *options);
  verb->footer(kFooter);
  verb->callback([options] { run(*options); });
}

}  // namespace oct::app
