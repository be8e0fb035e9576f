// Videos, written by the program ffmpeg where the machine has it.
#pragma once

#include <filesystem>
#include <string>

#include "command_line/child_process.h"
#include "data/formats/output_file.h"
#include "data/picture.h"

namespace oct::app {

class VideoWriter {
 public:
  // The name's ending tells the kind: .mp4, .webm or .gif. comment: kept in the file. Throws a WriteError without ffmpeg.
  VideoWriter(std::filesystem::path path, PictureSize size, unsigned frames_per_second,
              const std::string& comment);

  // Three channels, all of one size. Throws a WriteError with the last words of an ffmpeg that failed.
  void add(const Picture& picture);
  void finish();  // after the last one; without it there is no file

 private:
  [[noreturn]] void fail(const ChildProcess::Ending& ending) const;

  PartialFile file_;
  ChildProcess ffmpeg_;
};

}  // namespace oct::app
