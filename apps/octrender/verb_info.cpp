// octrender info: what the program runs on, for reports of errors.
#include <iostream>
#include <memory>

#include "client/offscreen_target.h"
#include "client/renderers.h"
#include "octrender/data_options.h"
#include "octrender/verbs.h"
#include "octrender/volume_input.h"

// OpenGL 1.0, which every system's own OpenGL library has. Both platforms know one calling convention.
extern "C" const unsigned char* glGetString(unsigned int name);
extern "C" void glGetIntegerv(unsigned int name, int* value);

namespace oct::app {
namespace info_verb {
namespace {

constexpr char description_text[] =
    "Show the OpenGL driver, versions and limits, and what they mean for a volume";

constexpr char footer_text[] = R"(
Examples:
  octrender info
  octrender info skin.npy
)";

constexpr unsigned int shading_language = 0x8B8C;
constexpr unsigned int max_renderbuffer_size = 0x84E8;

struct Options {
  std::string input;
  DataOptions data;
};

std::string text(unsigned int name) {
  const unsigned char* const value = glGetString(name);
  return value ? reinterpret_cast<const char*>(value) : "(none)";
}

int number(unsigned int name) {
  int value = 0;
  glGetIntegerv(name, &value);
  return value;
}

std::string sharings_of(const OctRendererInfo& info) {
  std::string names;
  const auto add = [&](OctSurfaceSharing sharing, const char* name) {
    if ((info.sharings >> sharing & 1U) != 0) names += (names.empty() ? "" : ", ") + std::string(name);
  };
  add(OCT_SHARING_HOST_MEMORY, "host memory");
  add(OCT_SHARING_DIRECT3D, "Direct3D");
  return names.empty() ? "(nothing)" : names;
}

std::string free_memory_of(const OctRendererInfo& info) {
  if (info.free_video_memory == 0) return "(the driver does not tell)";
  return std::to_string(info.free_video_memory / 1'000'000) + " MB";
}

void show_driver() {
  OctRendererInfo info{};
  info.size = sizeof info;
  checked(getRendererInfo, &info);
  std::cout << "octrender            " << getRendererVersion() << "\n"
            << "OpenGL               " << info.version << "\n"
            << "driver               " << info.renderer << "\n"
            << "vendor               " << info.vendor << "\n"
            << "shading language     " << text(shading_language) << "\n"
            << "frames handed over   " << sharings_of(info) << "\n"
            << "free video memory    " << free_memory_of(info) << "\n"
            << "largest picture      " << number(max_renderbuffer_size) << " pixels a side\n"
            << "largest B-scan       " << info.max_texture_size << " samples a side\n"
            << "largest volume       " << info.max_3d_texture_size << " voxels a side\n";
}

// Asks the library itself: the driver's word on an extent is not yet a texture.
void show_volume(const Options& options) {
  const VolumeData volume = read_drawable_volume(data_file(options.input, options.data));
  std::cout << options.input << ": depth " << volume.depth << ", A-scans " << volume.ascans << ", B-scans "
            << volume.bscans << "; " << (volume.voxels.size() * 2 + 999'999) / 1'000'000
            << " MB on the graphics device\n";
  if (!volume.spacing.source.empty()) std::cout << "Voxels of " << spacing_text(volume.spacing) << "\n";
  const OfflineRendering rendering;
  checked(allocateOfflineVolume, rendering.offline(), static_cast<int>(volume.depth),
          static_cast<int>(volume.ascans), static_cast<int>(volume.bscans));
  std::cout << "The volume fits.\n";
}

void run(const Options& options) {
  const OffscreenTarget target;
  show_driver();
  if (!options.input.empty()) show_volume(options);
}

}  // namespace
}  // namespace info_verb

void add_info_verb(CLI::App& program) {
  using namespace info_verb;
  CLI::App* verb = program.add_subcommand("info", description_text);
  const auto options = std::make_shared<Options>();
  verb->add_option("IN", options->input, "Volume to check, as octrender volume reads it")->type_name("");
  add_data_options(*verb, options->data);
  verb->footer(footer_text);
  verb->callback([options] { run(*options); });
}

}  // namespace oct::app
