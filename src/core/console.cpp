#include "core/console.h"

#include <cstdio>
#include <string>

namespace oct {
namespace {

void write_line(std::FILE* stream, std::string_view line) {
  std::string text(line);
  text += '\n';
  std::fwrite(text.data(), 1, text.size(), stream);
  std::fflush(stream);
}

}  // namespace

void write_output(std::string_view line) {
  write_line(stdout, line);
}
void write_error(std::string_view line) {
  write_line(stderr, line);
}

}  // namespace oct
