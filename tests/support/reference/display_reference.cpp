#include "support/reference/display_reference.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>

#include "support/reference/reference_camera.h"

namespace oct::test {
namespace {

double sample_clamped(const Image& image, int z, int x) {
  return image.at(std::clamp(z, 0, image.depth - 1), std::clamp(x, 0, image.a_scans - 1));
}

template <class Function>
Image mapped(const Image& image, Function&& value) {
  Image result{image.depth, image.a_scans, std::vector<float>(image.samples.size())};
  for (int x = 0; x < image.a_scans; ++x) {
    for (int z = 0; z < image.depth; ++z) {
      result.samples[static_cast<std::size_t>(x) * static_cast<std::size_t>(image.depth) +
                     static_cast<std::size_t>(z)] = static_cast<float>(value(z, x));
    }
  }
  return result;
}

Image blurred(const Image& image) {
  constexpr double kernel[] = {0.1, 0.2, 0.4, 0.2, 0.1};
  const auto along = [&](const Image& input, int step_z, int step_x) {
    return mapped(input, [&](int z, int x) {
      double sum = 0.0;
      for (int i = -2; i <= 2; ++i)
        sum += sample_clamped(input, z + i * step_z, x + i * step_x) * kernel[i + 2];
      return sum;
    });
  };
  return along(along(image, 1, 0), 0, 1);
}

Image peppered(const Image& image) {
  return mapped(image, [&](int z, int x) {
    double sum = 0.0;
    for (int i = -1; i <= 1; ++i) {
      for (int j = -1; j <= 1; ++j) sum += sample_clamped(image, z + i, x + j);
    }
    return std::max(sum / 9.0, static_cast<double>(image.at(z, x)));
  });
}

// Index of the sample below the centre of a pixel: floor((pixel + 1/2) / pixels * samples).
int sample_below(int pixel, int pixels, int samples) {
  return static_cast<int>((2LL * pixel + 1) * samples / (2LL * pixels));
}

int samples_per_pixel(int samples, int pixels) {
  return std::max(1, static_cast<int>(static_cast<float>(samples) / static_cast<float>(pixels)));
}

}  // namespace

Image test_image(int depth, int a_scans, unsigned seed) {
  std::mt19937 generator(seed);
  std::uniform_real_distribution<double> noise(-0.15, 0.15);
  Image empty{depth, a_scans,
              std::vector<float>(static_cast<std::size_t>(depth) * static_cast<std::size_t>(a_scans))};
  return mapped(empty, [&](int z, int x) {
    const double slope = 1.2 * z / depth - 0.1;
    const double waves = 0.25 * std::sin(x * 0.11) * std::cos(z * 0.07);
    const bool speck = generator() % 41 == 0;
    return speck ? -0.2 : slope + waves + noise(generator);
  });
}

Picture reference_picture(const Scene& scene) {
  Image image = scene.image;
  if (scene.first_blur) image = blurred(image);
  if (scene.pepper) image = peppered(image);
  if (scene.second_blur) image = blurred(image);

  const int box_depth = samples_per_pixel(image.depth, scene.height);
  const int box_a_scans = samples_per_pixel(image.a_scans, scene.width);
  Picture picture(scene.width, scene.height);
  picture.for_each([&](int column, int row) {
    const int down = scene.flip ? row : scene.height - 1 - row;  // pixels along the depth axis
    const auto place = [&](const Image& of) {
      return std::pair(sample_below(down, scene.height, of.depth),
                       sample_below(column, scene.width, of.a_scans));
    };
    const auto [z, x] = place(image);
    double sum = 0.0;
    for (int i = 0; i < box_a_scans; ++i) {
      for (int j = 0; j < box_depth; ++j) sum += sample_clamped(image, z + j, x + i);
    }
    const double value = sum / (box_a_scans * box_depth);
    glm::dvec4 drawn =
        rounded(mapped_color(scene.colormap, (value - scene.lower) / (scene.upper - scene.lower)));
    for (const Overlay& overlay : scene.overlays) {
      if (!(image.at(z, x) >= static_cast<float>(scene.threshold))) continue;
      const auto [over_z, over_x] = place(scene.overlay_image);
      const double over = scene.overlay_image.at(over_z, over_x);
      const glm::dvec4 color =
          mapped_color(overlay.colormap, (over - overlay.lower) / (overlay.upper - overlay.lower));
      drawn = rounded(drawn * (1.0 - color.a) + glm::dvec4(glm::dvec3(color) * color.a, color.a));
    }
    set_pixel(picture, column, row, drawn, drawn.a);
  });
  return picture;
}

void apply(const Scene& scene, DisplayRenderingHandle renderer) {
  setDisplayData(renderer, scene.image.depth, scene.image.a_scans, scene.image.samples.data());
  setDisplayColormap(renderer, scene.colormap.data(), static_cast<int>(scene.colormap.size()));
  setDisplayColoringBoundaries(renderer, scene.lower, scene.upper);
  setDisplayFlip(renderer, scene.flip);
  setDisplayBlur(renderer, scene.first_blur, scene.second_blur);
  setDisplayPepperFilter(renderer, scene.pepper);
  setDisplayOverlayData(renderer, scene.overlay_image.depth, scene.overlay_image.a_scans,
                        scene.overlay_image.samples.data());
  setDisplayOveralyThreshold(renderer, scene.threshold);
  for (std::size_t i = 0; i < scene.overlays.size(); ++i) {
    const Overlay& overlay = scene.overlays[i];
    const int index = static_cast<int>(i);
    setDisplayOverlayColormap(renderer, index, overlay.colormap.data(),
                              static_cast<int>(overlay.colormap.size()));
    setDisplayOveralyColoringBoundaries(renderer, index, overlay.lower, overlay.upper);
  }
  setDisplayNumberOverlays(renderer, 0, static_cast<int>(scene.overlays.size()));
}

DisplayStage::DisplayStage() {
  initDisplayRendering(renderer);
}

DisplayStage::~DisplayStage() {
  uninitDisplayRendering(renderer);
  clearDisplayRendering(renderer);
  clearOffscreenTarget(target);
}

Picture DisplayStage::draw(const Scene& scene) const {
  apply(scene, renderer);
  return frame(scene.width, scene.height);
}

Picture DisplayStage::frame(int width, int height) const {
  Picture picture(width, height);
  beginOffscreenFrame(target, static_cast<unsigned>(width), static_cast<unsigned>(height));
  renderDisplay(renderer);
  finishOffscreenFrame(target, picture.bytes.data());
  return picture;
}

}  // namespace oct::test
