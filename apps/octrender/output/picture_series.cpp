#include "octrender/output/picture_series.h"

#include <optional>
#include <string>

#include "octrender/output/video_writer.h"
#include "octrender/picture_files.h"

namespace oct::app {
namespace {

class NumberedFiles : public PictureSeries {
 public:
  explicit NumberedFiles(const SeriesSettings& settings) : settings_(settings) {}
  void add(const Picture& picture) override {
    write_png(numbered(settings_.output, number_++), picture, settings_.texts);
  }
  void finish() override {}

 private:
  const SeriesSettings settings_;
  unsigned number_ = 0;
};

class Animation : public PictureSeries {
 public:
  explicit Animation(const SeriesSettings& settings)
      : png_(settings.output, settings.count, settings.frames_per_second, settings.texts) {}
  void add(const Picture& picture) override { png_.add(picture); }
  void finish() override { png_.finish(); }

 private:
  AnimatedPng png_;
};

class Video : public PictureSeries {
 public:
  explicit Video(const SeriesSettings& settings) : settings_(settings) {}
  void add(const Picture& picture) override {
    if (!writer_) {
      std::string comment;
      for (const PngText& text : settings_.texts) {
        if (text.key == "Comment") comment = text.text;
      }
      writer_.emplace(settings_.output, picture.size, settings_.frames_per_second, comment);
    }
    writer_->add(picture);
  }
  void finish() override { writer_->finish(); }

 private:
  const SeriesSettings settings_;
  std::optional<VideoWriter> writer_;
};

}  // namespace

std::unique_ptr<PictureSeries> open_series(const SeriesSettings& settings) {
  const std::filesystem::path kind = settings.output.extension();
  if (kind == ".png") return std::make_unique<NumberedFiles>(settings);
  if (kind == ".apng") return std::make_unique<Animation>(settings);
  return std::make_unique<Video>(settings);
}

}  // namespace oct::app
