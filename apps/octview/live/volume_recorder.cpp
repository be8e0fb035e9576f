#include "octview/live/volume_recorder.h"

#include <algorithm>
#include <exception>
#include <fstream>
#include <iomanip>
#include <system_error>
#include <utility>

#include "data/file_errors.h"
#include "data/formats/npy_writer.h"

namespace oct::app {
namespace {

std::size_t bytes_of(const LiveVolume& volume) {
  return volume.data.voxels.size() * sizeof(float);
}

std::filesystem::path with_ending(const std::filesystem::path& name, const std::string& ending) {
  std::filesystem::path path = name;
  path += ending;
  return path;
}

std::filesystem::path file_of(const std::filesystem::path& name, std::size_t number) {
  std::string digits = std::to_string(number);
  digits.insert(0, 4 - std::min<std::size_t>(digits.size(), 4), '0');
  return with_ending(name, "-" + digits + ".npy");
}

std::filesystem::path times_of(const std::filesystem::path& name) {
  return with_ending(name, ".csv");
}

void require_new(const std::filesystem::path& path) {
  std::error_code ignored;
  if (std::filesystem::exists(path, ignored)) throw WriteError(path, "exists already");
}

// The columns are for a spreadsheet: the file, the device's number of the volume, its time since the first one.
class TimesFile {
 public:
  explicit TimesFile(const std::filesystem::path& path) : path_(path), stream_(path) {
    stream_ << "file,volume,milliseconds\n" << std::fixed << std::setprecision(3);
  }
  void add(const std::filesystem::path& file, const LiveVolume& volume, std::uint64_t since) {
    stream_ << to_utf8(file.filename()) << ',' << volume.index << ','
            << static_cast<double>(volume.nanoseconds - since) / 1e6 << '\n'
            << std::flush;
    if (!stream_) throw WriteError(path_, "cannot be written");
  }

 private:
  const std::filesystem::path path_;
  std::ofstream stream_;
};

}  // namespace

void VolumeRecorder::keep(std::size_t count) {
  const std::lock_guard lock(mutex_);
  count_ = count;
  trim();
}

bool VolumeRecorder::is_on() const {
  const std::lock_guard lock(mutex_);
  return count_ > 0;
}

void VolumeRecorder::add(std::shared_ptr<const LiveVolume> volume) {
  const std::lock_guard lock(mutex_);
  if (count_ == 0) return;
  bytes_ += bytes_of(*volume);
  volumes_.push_back(std::move(volume));
  trim();
}

void VolumeRecorder::clear() {
  const std::lock_guard lock(mutex_);
  volumes_.clear();
  bytes_ = 0;
  limited_ = false;
}

void VolumeRecorder::trim() {
  const auto drop_oldest = [this] {
    bytes_ -= bytes_of(*volumes_.front());
    volumes_.pop_front();
  };
  limited_ = false;
  while (volumes_.size() > count_) drop_oldest();
  while (volumes_.size() > 1 && bytes_ > budget_) {
    drop_oldest();
    limited_ = true;
  }
}

VolumeRecorder::Content VolumeRecorder::content() const {
  const std::lock_guard lock(mutex_);
  return {volumes_.size(), bytes_, limited_};
}

void VolumeRecorder::write(std::filesystem::path name) {
  if (name.extension() == ".npy" || name.extension() == ".csv") name.replace_extension();
  Volumes volumes;
  {
    const std::lock_guard lock(mutex_);
    if (writing_.active) throw WriteError(name, "another recording is being written");
    volumes.assign(volumes_.begin(), volumes_.end());
  }
  if (volumes.empty()) throw WriteError(name, "no volumes have been recorded");
  require_new(times_of(name));
  for (std::size_t i = 0; i < volumes.size(); ++i) require_new(file_of(name, i + 1));
  if (writer_.joinable()) writer_.join();
  {
    const std::lock_guard lock(mutex_);
    writing_ = {true, 0, volumes.size(), {}};
  }
  writer_ = std::jthread([this, volumes = std::move(volumes), name](const std::stop_token& stop) {
    std::string error;
    try {
      write_all(stop, volumes, name);
    } catch (const std::exception& failure) {
      error = failure.what();
    }
    const std::lock_guard lock(mutex_);
    writing_.active = false;
    writing_.error = std::move(error);
  });
}

void VolumeRecorder::write_all(const std::stop_token& stop, const Volumes& volumes,
                               const std::filesystem::path& name) {
  TimesFile times(times_of(name));
  for (std::size_t i = 0; i < volumes.size() && !stop.stop_requested(); ++i) {
    const std::filesystem::path file = file_of(name, i + 1);
    write_npy(file, volumes[i]->data);
    times.add(file, *volumes[i], volumes[0]->nanoseconds);
    note_written(i + 1);
  }
}

void VolumeRecorder::note_written(std::size_t done) {
  const std::lock_guard lock(mutex_);
  writing_.done = done;
}

void VolumeRecorder::stop_writing() {
  writer_.request_stop();
}

VolumeRecorder::Writing VolumeRecorder::writing() const {
  const std::lock_guard lock(mutex_);
  return writing_;
}

}  // namespace oct::app
