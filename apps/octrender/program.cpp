#include "octrender/program.h"

#include <iostream>
#include <new>

#include "client/checked.h"
#include "command_line/shell_words.h"
#include "data/file_errors.h"
#include "oct_rendering/oct_rendering.h"
#include "octrender/exit_code.h"
#include "octrender/option_values.h"
#include "octrender/verbs.h"
#include "scene/device_error.h"
#include "scene/picture_texts.h"

namespace oct::app {
namespace {

constexpr char program_description[] =
    "Renders optical coherence tomography (OCT) data. No window is needed: the program makes\n"
    "its OpenGL context (3.3 or later) through the offscreen target of the oct_rendering library.";

constexpr char program_footer[] =
    "Exit codes:\n"
    "  0  the output was written\n"
    "  1  rendering failed; the library's reason is shown\n"
    "  2  the command line is wrong\n"
    "  3  an input file cannot be read or understood\n"
    "  4  the output cannot be written\n"
    "  5  the device failed (octrender live)\n\n"
    "Examples:\n"
    "  octrender bscan skin.npy -o skin.png\n"
    "  octrender slice skin.npy -o enface.png --axis enface --position 80\n"
    "  octrender volume skin.npy -o skin.png --extent 2.5 6 6\n"
    "  octrender live -o finger.png --motion drift\n"
    "  octrender info\n"
    "  octrender bscan --help        everything about one verb";

void describe(CLI::App& program) {
  program.name("octrender");
  program.footer(program_footer);
  program.set_version_flag("--version", getRendererVersion());
  program.require_subcommand(1);
}

int report(ExitCode code, const std::string& text) {
  std::cerr << "octrender: " << text << std::endl;
  return static_cast<int>(code);
}

}  // namespace

int run_program(const std::vector<std::string>& arguments) {
  CLI::App program(program_description);
  describe(program);
  const PngTexts texts = picture_texts("octrender " + shell_words(arguments));
  add_bscan_verb(program, texts);
  add_slice_verb(program, texts);
  add_volume_verb(program, texts);
  add_live_verb(program, texts);
  add_surface_verb(program, texts);
  add_panels_verb(program, texts);
  add_info_verb(program);
  try {
    std::vector<std::string> words = without_automatic_ranges(arguments);
    program.parse(std::vector<std::string>(words.rbegin(), words.rend()));  // CLI11 wants the last one first
    return static_cast<int>(ExitCode::ok);
  } catch (const CLI::Success& request) {  // help or version
    return program.exit(request);
  } catch (const CLI::Error& error) {
    return report(ExitCode::bad_command_line, error.what() + std::string("\nRun octrender --help for more."));
  } catch (const CommandLineError& error) {
    return report(ExitCode::bad_command_line, error.what());
  } catch (const ReadError& error) {
    return report(ExitCode::input_failed, error.what());
  } catch (const WriteError& error) {
    return report(ExitCode::output_failed, error.what());
  } catch (const DeviceError& error) {
    return report(ExitCode::device_failed, error.what());
  } catch (const RenderingError& error) {
    return report(ExitCode::rendering_failed, std::string("rendering failed: ") + error.what());
  } catch (const std::bad_alloc&) {
    return report(ExitCode::rendering_failed, "not enough memory");
  } catch (const std::exception& error) {
    return report(ExitCode::rendering_failed, error.what());
  }
}

}  // namespace oct::app
