#include "octrender/picture_files.h"

#include <iomanip>
#include <sstream>
#include <system_error>

#include "data/file_errors.h"
#include "octrender/option_values.h"

namespace oct::app {

CLI::Option* add_output_option(CLI::App& verb, std::string& output) {
  return verb.add_option("-o,--output", output, "Picture to write; must end in .png")->type_name("OUT.png");
}

std::filesystem::path picture_file(const std::string& output, std::initializer_list<std::string> inputs) {
  const std::filesystem::path path = from_utf8(output);
  if (path.extension() != ".png") throw CommandLineError("the output '" + output + "' must end in .png");
  for (const std::string& input : inputs) {
    std::error_code ignored;
    if (!input.empty() && std::filesystem::equivalent(from_utf8(input), path, ignored)) {
      throw CommandLineError("the output would overwrite the input '" + input + "'");
    }
  }
  return path;
}

std::filesystem::path numbered(const std::filesystem::path& output, unsigned number) {
  std::ostringstream suffix;
  suffix << '-' << std::setw(3) << std::setfill('0') << number << ".png";
  std::filesystem::path path = output;
  path.replace_extension();
  path += suffix.str();
  return path;
}

}  // namespace oct::app
