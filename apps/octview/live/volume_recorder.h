// Keeps the last volumes in memory, and writes them to files in the background.
#pragma once

#include <cstddef>
#include <deque>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "octview/live/live_volume.h"

namespace oct::app {

// Any thread, unless it says otherwise.
class VolumeRecorder {
 public:
  static constexpr std::size_t usual_budget = std::size_t{1} << 30U;

  explicit VolumeRecorder(std::size_t budget_bytes = usual_budget) : budget_(budget_bytes) {}

  // The last so many, or as many as the budget has room for, at least one; 0: none, and those kept are let go.
  void keep(std::size_t count);
  bool is_on() const;
  void add(std::shared_ptr<const LiveVolume> volume);
  void clear();

  struct Content {
    std::size_t volumes = 0;
    std::size_t bytes = 0;
    bool limited = false;  // by the budget
  };
  Content content() const;

  // ---- One thread

  // Writes what is kept now, oldest first: a .npy file per volume, "name-0001.npy" and so on, which every program that
  // reads volumes opens, and "name.csv" with the time of each; an ending ".npy" of the name is left out. Throws a WriteError when there is nothing, when one of
  // the files exists, or while another writing goes on.
  void write(std::filesystem::path name);
  void stop_writing();  // after the file that is being written; those that are written stay

  struct Writing {
    bool active = false;
    std::size_t done = 0;
    std::size_t total = 0;  // 0: nothing has been written
    std::string error;
  };
  Writing writing() const;

 private:
  using Volumes = std::vector<std::shared_ptr<const LiveVolume>>;
  void trim();
  void write_all(const std::stop_token& stop, const Volumes& volumes, const std::filesystem::path& name);
  void note_written(std::size_t done);

  const std::size_t budget_;
  mutable std::mutex mutex_;
  std::size_t count_ = 0;
  std::deque<std::shared_ptr<const LiveVolume>> volumes_;
  std::size_t bytes_ = 0;
  bool limited_ = false;
  Writing writing_;
  std::jthread writer_;
};

}  // namespace oct::app
