// The pictures of one font's texts: each is rasterised once while it is in use.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

#include "volume/text/text_rasteriser.h"

namespace oct {

class TextCache {
 public:
  // Several times what one frame shows, so that a range that is animated to and fro finds its texts again. Of those
  // that nobody asked for lately only so many are kept.
  static constexpr std::size_t most_texts = 128;

  // As TextRasteriser.
  TextCache(int height, bool emphasis) : rasteriser_(height, emphasis) {}

  // Valid until the next call.
  const TextPicture& picture(const std::string& text);

  std::size_t count() const { return texts_.size(); }

 private:
  struct Text {
    TextPicture picture;
    std::uint64_t last_use = 0;
  };

  void forget_oldest();

  TextRasteriser rasteriser_;
  std::map<std::string, Text> texts_;
  std::uint64_t uses_ = 0;
};

}  // namespace oct
