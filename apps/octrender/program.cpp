#include "octrender/program.h"

#include <oct_rendering/oct_rendering.h>

#include <iostream>
#include <new>

#include "client/checked.h"
#include "data/file_errors.h"
#include "octrender/exit_code.h"
#include "octrender/option_values.h"
#include "octrender/verbs.h"
#include "scene/device_error.h"

namespace oct::app {
namespace {

constexpr char kDescription[] =
    "Renders optical coherence tomography (OCT) data. No window is needed: the program makes\n"
    "its OpenGL context (3.3 or later) through the offscreen target of the oct_rendering library.";

constexpr char kFooter[] =
    "Exit codes:\n"
    "  0  the output was written\n"
    "  1  rendering failed; the library's reason is shown\n"
    "  2  the command line is wrong\n"
    "  3  an input file cannot be read or understood\n"
    "  4  the output cannot be written\n"
    "  5  the device failed (octrender live)\n\n"
    "Examples:\n"
    "  octrender bscan skin.npy -o skin.png\n"
    "  octrender volume skin.npy -o skin.png --extent 2.5 6 6\n"
    "  octrender live -o finger.png --motion drift\n"
    "  octrender info\n"
    "  octrender bscan --help        everything about one verb";

void describe(CLI::App& program) {
  program.name("octrender");
  program.footer(kFooter);
  program.set_version_flag("--version", getRendererVersion());
  program.require_subcommand(1);
}

int report(ExitCode code, const std::string& text) {
  std::cerr << "octrender: " << text << std::endl;
  return static_cast<int>(code);
}

}  // namespace

int runProgram(const std::vector<std::string>& arguments) {
  CLI::App program(kDescription);
  describe(program);
  addBscanVerb(program);
  addVolumeVerb(program);
  addLiveVerb(program);
  addInfoVerb(program);
  try {
    std::vector<std::string> words = withoutAutomaticRanges(arguments);
    program.parse(std::vector<std::string>(words.rbegin(), words.rend()));  // CLI11 wants the last one first
    return static_cast<int>(ExitCode::Ok);
  } catch (const CLI::Success& request) {  // help or version
    return program.exit(request);
  } catch (const CLI::Error& error) {
    return report(ExitCode::BadCommandLine, error.what() + std::string("\nRun octrender --help for more."));
  } catch (const CommandLineError& error) {
    return report(ExitCode::BadCommandLine, error.what());
  } catch (const ReadError& error) {
    return report(ExitCode::InputFailed, error.what());
  } catch (const WriteError& error) {
    return report(ExitCode::OutputFailed, error.what());
  } catch (const DeviceError& error) {
    return report(ExitCode::DeviceFailed, error.what());
  } catch (const RenderingError& error) {
    return report(ExitCode::RenderingFailed, std::string("rendering failed: ") + error.what());
  } catch (const std::bad_alloc&) {
    return report(ExitCode::RenderingFailed, "not enough memory");
  } catch (const std::exception& error) {
    return report(ExitCode::RenderingFailed, error.what());
  }
}

}  // namespace oct::app
