#include "octview/program.h"

#include <chrono>
#include <iostream>
#include <optional>

#include <CLI/CLI.hpp>
#include <imgui.h>

#include "data/file_errors.h"
#include "oct_rendering/oct_rendering.h"
#include "octview/script/input_script.h"
#include "octview/viewer.h"
#include "octview/window/item_index.h"

namespace oct::app {
namespace {

constexpr char footer_text[] = R"(
FILE is anything that octrender volume and octrender bscan read, or a saved session. Without one the simulated device is shown
live.

The window tells its keys: press ?.

Exit codes: 0 closed, 1 no window or no OpenGL 3.3, 2 wrong command line, 3 the script failed.
)";

struct Options {
  std::vector<std::string> files;
  WindowSettings window;
  std::string size = "1280x800";
  std::string theme = "dark";
  std::string script;
};

void parse(CLI::App& program, Options& options, const std::vector<std::string>& arguments) {
  program.name("octview");
  program.footer(footer_text);
  program.set_version_flag("--version", getRendererVersion());
  program.add_option("FILE", options.files, "Volume or B-scan to open")->type_name("");
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

int show(const Options& options) {
  std::optional<InputScript> script;
  if (!options.script.empty()) script.emplace(from_utf8(options.script));
  Window window(options.window);
  Viewer viewer(window);
  std::vector<std::filesystem::path> files;
  for (const std::string& file : options.files) files.push_back(from_utf8(file));
  files.empty() ? viewer.show_live() : viewer.open(files);
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
  } catch (const FileError& error) {
    std::cerr << "octview: " << error.what() << std::endl;
    return 3;
  } catch (const std::exception& error) {
    std::cerr << "octview: " << error.what() << std::endl;
    return 1;
  }
}

}  // namespace oct::app
