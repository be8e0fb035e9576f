// From the start of a process to its first frame of a volume (first_frame), against the least that any program pays
// that draws with the same driver: a context and a frame of one triangle (bare_frame). Both are started in turn; what
// it takes to make the volume up is left out. Medians in milliseconds, wall time and CPU time of all threads.
// Arguments: number of rounds, 9 if not given.
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "median.h"
#include "start_stages.h"

namespace {

struct Stage {
  std::string name;
  oct::benchmark_scene::Median wall, cpu;
};
using Program = std::vector<Stage>;  // in the order of its stages

Stage& stage_of(Program& program, const std::string& name) {
  for (Stage& stage : program)
    if (stage.name == name) return stage;
  return program.emplace_back(Stage{name, {}, {}});
}

// Starts a program that lies beside this one and reads its stages from its error stream.
void measure(const char* name, Program& program) {
  const std::string file = std::filesystem::read_symlink("/proc/self/exe").replace_filename(name);
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) throw std::runtime_error("No pipe could be made");
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addclose(&actions, ends[0]);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDERR_FILENO);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  std::string start = std::to_string(oct::benchmark_start::monotonic_milliseconds());
  std::string path = file;
  std::array<char*, 3> arguments = {path.data(), start.data(), nullptr};
  pid_t child = 0;
  const int failure = posix_spawn(&child, file.c_str(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  std::FILE* const lines = fdopen(ends[0], "r");
  double total_wall = 0.0, total_cpu = 0.0;
  std::array<char, 256> line{};
  while (failure == 0 && std::fgets(line.data(), static_cast<int>(line.size()), lines)) {
    std::array<char, 64> stage{};
    double wall = 0.0, cpu = 0.0;
    if (std::sscanf(line.data(), "%63s %lf %lf", stage.data(), &wall, &cpu) != 3)
      throw std::runtime_error(file + ": " + line.data());
    stage_of(program, stage.data()).wall.add(wall);
    stage_of(program, stage.data()).cpu.add(cpu);
    total_wall += wall;
    total_cpu += cpu;
    if (stage.data() != std::string("first_frame")) continue;
    stage_of(program, "start_to_first_frame").wall.add(total_wall);
    stage_of(program, "start_to_first_frame").cpu.add(total_cpu);
  }
  std::fclose(lines);
  int status = 0;
  if (failure != 0 || waitpid(child, &status, 0) != child || status != 0)
    throw std::runtime_error(file + " failed");
}

}  // namespace

int main(int argc, char** argv) {
  const int rounds = argc > 1 ? std::atoi(argv[1]) : 9;
  Program bare, library;
  try {
    for (int i = -1; i < rounds; ++i) {  // the one before fills the caches of disk and driver
      if (i == 0) bare.clear(), library.clear();
      measure("bare_frame", bare);
      measure("first_frame", library);
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
  for (auto* const program : {&bare, &library}) {
    std::printf("%-22s %9s %9s\n", program == &bare ? "bare_frame" : "first_frame", "wall_ms", "cpu_ms");
    for (const Stage& stage : *program)
      std::printf("  %-20s %9.1f %9.1f\n", stage.name.c_str(), stage.wall.value(), stage.cpu.value());
  }
  const Stage& least = stage_of(bare, "start_to_first_frame");
  const Stage& ours = stage_of(library, "start_to_first_frame");
  std::printf("ratio: wall %.2f, cpu %.2f\n", ours.wall.value() / least.wall.value(),
              ours.cpu.value() / least.cpu.value());
  return 0;
}
