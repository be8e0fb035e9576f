#include "command_line/progress.h"

#include <iostream>
#include <memory>
#include <optional>
#include <utility>

#include "command_line/platform.h"
#include "data/file_errors.h"

namespace oct::app {
namespace {

// With fewer the work ends before anyone has read a line.
constexpr std::size_t many_samples = std::size_t{1} << 24;
constexpr std::chrono::milliseconds update_interval{200};

}  // namespace

Progress::Progress(std::string activity, std::size_t samples)
    : activity_(std::move(activity)), active_(samples >= many_samples && error_stream_is_terminal()) {
  if (active_) show(activity_ + " ...");
}

Progress::~Progress() {
  if (active_) std::cerr << '\r' << std::string(shown_length_, ' ') << '\r' << std::flush;
}

void Progress::update(std::size_t done, std::size_t total) {
  if (!active_ || std::chrono::steady_clock::now() - last_update_ < update_interval) return;
  show(activity_ + " ... " + std::to_string(done * 100 / total) + " %");
}

void Progress::show(const std::string& line) {
  std::cerr << '\r' << line << std::flush;
  shown_length_ = line.size();
  last_update_ = std::chrono::steady_clock::now();
}

ProgressFunction reading_progress(const std::filesystem::path& file) {
  return [file, bar = std::make_shared<std::optional<Progress>>()](std::size_t done, std::size_t total) {
    if (!*bar) bar->emplace("reading " + to_utf8(file.filename()), total);
    (*bar)->update(done, total);
  };
}

}  // namespace oct::app
