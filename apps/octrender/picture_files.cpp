#include "octrender/picture_files.h"

#include <iomanip>
#include <sstream>
#include <system_error>

#include "data/file_errors.h"
#include "octrender/option_values.h"

namespace oct::app {

void refuse_inputs(const std::filesystem::path& output, std::initializer_list<std::string> inputs) {
  for (const std::string& input : inputs) {
    std::error_code ignored;
    if (!input.empty() && std::filesystem::equivalent(from_utf8(input), output, ignored)) {
      throw CommandLineError("the output would overwrite the input '" + input + "'");
    }
  }
}

CLI::Option* add_output_option(CLI::App& verb, std::string& output) {
  return verb.add_option("-o,--output", output, "Picture to write; must end in .png")->type_name("OUT.png");
}

std::filesystem::path checked_output(const std::string& output, std::initializer_list<std::string> inputs) {
  const std::filesystem::path path = from_utf8(output);
  refuse_inputs(path, inputs);
  return path;
}

std::filesystem::path picture_file(const std::string& output, std::initializer_list<std::string> inputs) {
  const std::filesystem::path path = from_utf8(output);
  if (path.extension() != ".png") throw CommandLineError("the output '" + output + "' must end in .png");
  refuse_inputs(path, inputs);
  return path;
}

std::filesystem::path series_file(const std::string& output, std::initializer_list<std::string> inputs) {
  const std::filesystem::path path = from_utf8(output);
  if (path.extension() != ".png" && !is_animation(path)) {
    throw CommandLineError("the output '" + output + "' must end in .png, .apng, .mp4, .webm or .gif");
  }
  refuse_inputs(path, inputs);
  return path;
}

bool is_animation(const std::filesystem::path& output) {
  const std::filesystem::path kind = output.extension();
  return kind == ".apng" || kind == ".mp4" || kind == ".webm" || kind == ".gif";
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
