#include "volume/text/text_cache.h"

#include <algorithm>
#include <utility>

namespace oct {

const TextPicture& TextCache::picture(const std::string& text) {
  ++uses_;
  auto known = texts_.find(text);
  if (known == texts_.end()) {
    if (texts_.size() >= most_texts) forget_oldest();
    known = texts_.emplace(text, Text{rasteriser_.rasterise(text)}).first;
  }
  known->second.last_use = uses_;
  return known->second.picture;
}

void TextCache::forget_oldest() {
  const auto older = [](const auto& a, const auto& b) { return a.second.last_use < b.second.last_use; };
  texts_.erase(std::min_element(texts_.begin(), texts_.end(), older));
}

}  // namespace oct
