#include "scene/picture_texts.h"

#include "oct_rendering/oct_rendering.h"

namespace oct::app {

PngTexts picture_texts(const std::string& command) {
  return {{"Software", std::string("octrender ") + getRendererVersion()}, {"Comment", command}};
}

}  // namespace oct::app
