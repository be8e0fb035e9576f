#include "octrender/output/video_writer.h"

#include <system_error>
#include <utility>
#include <vector>

#include "data/file_errors.h"

namespace oct::app {
namespace {

using Words = std::vector<std::string>;

// Colours are halved in both directions, so that sides have to be even: the last column or row is shown twice.
std::string film_filter(PictureSize size) {
  const unsigned right = size.width % 2;
  const unsigned bottom = size.height % 2;
  std::string filter;
  if (right + bottom > 0) {
    filter = "pad=" + std::to_string(size.width + right) + ":" + std::to_string(size.height + bottom) +
             ",fillborders=right=" + std::to_string(right) + ":bottom=" + std::to_string(bottom) +
             ":mode=smear,";
  }
  return filter + "scale=out_color_matrix=bt709:out_range=tv,format=yuv420p";
}

Words coding_of(const std::filesystem::path& path, PictureSize size) {
  const std::filesystem::path kind = path.extension();
  if (kind == ".gif") {
    return {"-filter_complex", "[0:v]split[a][b];[a]palettegen[p];[b][p]paletteuse", "-loop", "0"};
  }
  Words words{"-vf",   film_filter(size), "-colorspace", "bt709", "-color_primaries",
              "bt709", "-color_trc",      "bt709"};
  const Words coder = kind == ".webm" ? Words{"-c:v", "libvpx-vp9", "-crf", "24", "-b:v", "0"}
                                      : Words{"-c:v", "libx264", "-crf", "16", "-movflags", "+faststart"};
  words.insert(words.end(), coder.begin(), coder.end());
  return words;
}

Words arguments_of(const PartialFile& file, PictureSize size, unsigned frames_per_second,
                   const std::string& comment) {
  Words words{"-hide_banner",
              "-nostdin",
              "-loglevel",
              "error",
              "-y",
              "-f",
              "rawvideo",
              "-pixel_format",
              "rgb24",
              "-video_size",
              std::to_string(size.width) + "x" + std::to_string(size.height),
              "-framerate",
              std::to_string(frames_per_second),
              "-i",
              "pipe:0"};
  const Words coding = coding_of(file.final_path(), size);
  words.insert(words.end(), coding.begin(), coding.end());
  // A name that begins with a sign must not be taken for an option, nor one with a colon for a protocol.
  words.insert(words.end(), {"-metadata", "comment=" + comment, "file:" + to_utf8(file.partial_path())});
  return words;
}

std::filesystem::path find_ffmpeg(const std::filesystem::path& path) {
  if (auto found = find_program("ffmpeg")) return *std::move(found);
  throw WriteError(path, "ffmpeg, which writes " + to_utf8(path.extension()) +
                             " files, was not found on PATH; .apng needs no other program");
}

}  // namespace

VideoWriter::VideoWriter(std::filesystem::path path, PictureSize size, unsigned frames_per_second,
                         const std::string& comment) try
    : file_(std::move(path)),
      ffmpeg_(find_ffmpeg(file_.final_path()), arguments_of(file_, size, frames_per_second, comment)) {
} catch (const std::system_error& error) {
  throw WriteError("ffmpeg", "cannot be started: " + error.code().message());
}

void VideoWriter::add(const Picture& picture) {
  if (!ffmpeg_.write(picture.pixels.data(), picture.pixels.size())) fail(ffmpeg_.finish());
}

void VideoWriter::finish() {
  const ChildProcess::Ending ending = ffmpeg_.finish();
  std::error_code ignored;
  if (ending.code != 0 || !std::filesystem::exists(file_.partial_path(), ignored)) fail(ending);
  file_.commit();
}

void VideoWriter::fail(const ChildProcess::Ending& ending) const {
  const std::string reason = ending.last_words.empty() ? "it told no reason" : ending.last_words;
  throw WriteError(file_.final_path(), ending.code == 0 ? "ffmpeg ended early: " + reason
                                                        : "ffmpeg failed (exit code " +
                                                              std::to_string(ending.code) + "): " + reason);
}

}  // namespace oct::app
