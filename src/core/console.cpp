#include "core/console.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <new>
#include <string>

#include "core/platform.h"

namespace oct {
namespace {

// One call per line, because other code of the process writes to the stream as well.
void write_bytes(std::FILE* stream, const char* bytes, std::size_t count) {
  std::fwrite(bytes, 1, count, stream);
  std::fflush(stream);
}

void write_line(std::FILE* stream, std::string_view begin, std::string_view end = {}) {
  try {
    std::array<char, 1024> small;
    const std::size_t count = begin.size() + end.size() + 1;
    std::string large;
    if (count > small.size()) large.resize(count);
    char* const line = large.empty() ? small.data() : large.data();
    *std::copy(end.begin(), end.end(), std::copy(begin.begin(), begin.end(), line)) = '\n';
    write_bytes(stream, line, count);
  } catch (const std::bad_alloc&) {
    write_bytes(stream, begin.data(), begin.size());
    write_bytes(stream, end.data(), end.size());
    write_bytes(stream, "\n", 1);
  }
}

}  // namespace

bool is_quiet() noexcept {
  static const bool quiet = is_quiet_program();
  return quiet;
}

void write_output(std::string_view line) noexcept {
  if (!is_quiet()) write_line(stdout, line);
}
void write_error(std::string_view line) noexcept {
  write_line(stderr, line);
}
void write_error(std::string_view begin, std::string_view end) noexcept {
  write_line(stderr, begin, end);
}

}  // namespace oct
