#include "core/console.h"

#include <cstdio>
#include <string>

namespace oct {
namespace {

void writeLine(std::FILE* stream, std::string_view line) {
  std::string text(line);
  text += '\n';
  std::fwrite(text.data(), 1, text.size(), stream);
  std::fflush(stream);
}

}  // namespace

void writeOutput(std::string_view line) {
  writeLine(stdout, line);
}
void writeError(std::string_view line) {
  writeLine(stderr, line);
}

}  // namespace oct
