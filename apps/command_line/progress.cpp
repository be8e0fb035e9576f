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
constexpr std::size_t kManySamples = std::size_t{1} << 24;
constexpr std::chrono::milliseconds kUpdateInterval{200};

}  // namespace

Progress::Progress(std::string activity, std::size_t samples)
    : activity_(std::move(activity)), active_(samples >= kManySamples && errorStreamIsTerminal()) {
  if (active_) show(activity_ + " ...");
}

Progress::~Progress() {
  if (active_) std::cerr << '\r' << std::string(shownLength_, ' ') << '\r' << std::flush;
}

void Progress::update(std::size_t done, std::size_t total) {
  if (!active_ || std::chrono::steady_clock::now() - lastUpdate_ < kUpdateInterval) return;
  show(activity_ + " ... " + std::to_string(done * 100 / total) + " %");
}

void Progress::show(const std::string& line) {
  std::cerr << '\r' << line << std::flush;
  shownLength_ = line.size();
  lastUpdate_ = std::chrono::steady_clock::now();
}

ProgressFunction readingProgress(const std::filesystem::path& file) {
  return [file, bar = std::make_shared<std::optional<Progress>>()](std::size_t done, std::size_t total) {
    if (!*bar) bar->emplace("reading " + toUtf8(file.filename()), total);
    (*bar)->update(done, total);
  };
}

}  // namespace oct::app
