#include "octview/program.h"

#include <chrono>
#include <iostream>
#include <optional>

#include <CLI/CLI.hpp>
#include <imgui.h>

#include "data/file_errors.h"
#include "oct_rendering/oct_rendering.h"
#include "octrender/data_options.h"
#include "octrender/option_values.h"
#include "octview/script/input_script.h"
#include "octview/viewer.h"
#include "octview/window/item_index.h"

namespace oct::app {
namespace {

constexpr char footer_text[] = R"(
FILE is anything that octrender volume and octrender bscan read, or a saved session. Without one the simulated device is shown
live.

The window tells its keys: press ?.

Exit codes: 0 closed, 1 no window or no OpenGL 3.3, 2 wrong command line, 3 the script or a session
cannot be read.
)";

struct Options {
  std::vector<std::string> files;
  DataOptions data;
  bool decibels = false;
  std::vector<double> extent;
  std::string overlay;
  std::string surface;
  std::string secondary;
  WindowSettings window;
  std::string size = "1280x800";
  std::string theme = "dark";
  std::string script;
};

void add_data_options(CLI::App& program, Options& options) {
  program
      .add_option("FILE", options.files, "Volumes or B-scans; the first is opened, the others can be chosen")
      ->type_name("");
  add_data_options(program, options.data);
  program.add_flag("--db", options.decibels, "Show 20 log10 of the samples, for linear data");
  program
      .add_option("--extent", options.extent, "Physical extent in millimetres (default: what the file tells)")
      ->type_name("DEPTH ASCANS BSCANS")
      ->expected(3)
      ->check(CLI::Range(1e-6, 1e6).description(""));
  program.add_option("--overlay", options.overlay, "Second volume of the same size, laid over")
      ->type_name("FILE");
  program.add_option("--surface", options.surface, "Height map of depths in samples, one row per B-scan")
      ->type_name("FILE");
  program.add_option("--secondary", options.secondary, "Map over the lateral axes that colours composites")
      ->type_name("FILE");
}

void parse(CLI::App& program, Options& options, const std::vector<std::string>& arguments) {
  program.name("octview");
  program.footer(footer_text);
  program.set_version_flag("--version", getRendererVersion());
  add_data_options(program, options);
  program.add_option("--size", options.size, "Size of the window in points")
      ->type_name("WxH")
      ->capture_default_str();
  program.add_option("--scale", options.window.scale, "Pixels per point (default: what the display says)")
      ->check(CLI::Range(0.5, 8.0).description(""));
  program.add_option("--theme", options.theme, "Colours of the interface")
      ->type_name("dark|light")
      ->check(CLI::IsMember({"dark", "light"}).description(""))
      ->capture_default_str();
  program.add_option("--script", options.script, "Play the input of a file, and end")->type_name("FILE");
  program.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
  char x = 0;
  std::istringstream size(options.size);
  if (!(size >> options.window.width >> x >> options.window.height) || x != 'x' || !size.eof() ||
      options.window.width < 640 || options.window.height < 480 || options.window.width > 16384 ||
      options.window.height > 16384)
    throw CLI::ValidationError("--size", "'" + options.size + "' is no size from 640x480 to 16384x16384");
  options.window.dark = options.theme == "dark";
}

// A session tells itself how its files are read.
void open(Viewer& viewer, const Options& options) {
  std::vector<std::filesystem::path> paths;
  for (const std::string& file : options.files) paths.push_back(from_utf8(file));
  if (paths.empty()) {
    viewer.show_live();
    return;
  }
  Opening opening = opening_of(paths.front());
  if (!opening.state) {
    opening.files.base = data_file(options.files.front(), options.data);
    opening.files.decibels = options.decibels;
    if (!options.extent.empty())
      opening.files.extent = {options.extent[0], options.extent[1], options.extent[2]};
    if (!options.overlay.empty()) opening.files.overlay = data_file(options.overlay, options.data);
    opening.files.surface.path = from_utf8(options.surface);
    opening.files.secondary.path = from_utf8(options.secondary);
  }
  viewer.open(std::move(opening), std::move(paths));
}

int show(const Options& options) {
  std::optional<InputScript> script;
  if (!options.script.empty()) script.emplace(from_utf8(options.script));
  Window window(options.window);
  Viewer viewer(window);
  open(viewer, options);
  gather_items(script.has_value());
  const auto start = std::chrono::steady_clock::now();
  double now = 0;
  while (!window.wants_to_close()) {
    window.wait_for_events(script || viewer.is_busy() ? 0 : viewer.is_live() ? 0.004 : 0.05);
    window.begin_frame([&] {
      if (script) script->feed(window.scale());
    });
    now = script ? now + InputScript::frame_seconds
                 : std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    viewer.build(now);
    window.end_frame();
    if (script && !script->after_frame(window, viewer)) break;
    window.show();
  }
  return 0;
}

}  // namespace

int run_viewer(const std::vector<std::string>& arguments) {
  CLI::App program("Shows optical coherence tomography (OCT) volumes, B-scans and live volumes of a device.");
  Options options;
  try {
    parse(program, options, arguments);
    return show(options);
  } catch (const CLI::Success& request) {  // help or version
    return program.exit(request);
  } catch (const CLI::Error& error) {
    std::cerr << "octview: " << error.what() << "\nRun octview --help for more." << std::endl;
    return 2;
  } catch (const CommandLineError& error) {
    std::cerr << "octview: " << error.what() << std::endl;
    return 2;
  } catch (const FileError& error) {
    std::cerr << "octview: " << error.what() << std::endl;
    return 3;
  } catch (const std::exception& error) {
    std::cerr << "octview: " << error.what() << std::endl;
    return 1;
  }
}

}  // namespace oct::app
