// Takes the place of ffmpeg: keeps what it gets, or fails as OCT_STAND_IN says.
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include "command_line/platform.h"
#include "data/file_errors.h"
#include "data/formats/standard_input.h"

int main(int argc, char** argv) {
  oct::app::prepare_standard_input();
  const auto arguments = oct::app::command_line_arguments(argc, argv);
  const char* const wish = std::getenv("OCT_STAND_IN");
  const std::string behaviour = wish ? wish : "";
  if (behaviour == "fails") {
    std::cin.get();
    std::cerr << "what came before\nUnknown encoder 'libx264'\n\n";
    return 3;
  }
  if (behaviour == "writes nothing") return 0;
  const std::string input(std::istreambuf_iterator<char>(std::cin), {});
  const std::string output = arguments.back().substr(std::string("file:").size());
  std::ofstream file(oct::app::from_utf8(output), std::ios::binary);
  for (const std::string& argument : arguments) file << argument << '\n';
  file << '\n' << input;
  return file.good() ? 0 : 1;
}
