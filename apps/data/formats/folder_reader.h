// Folders of pictures, each of which is a frame.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>

#include "data/formats/frames.h"

namespace oct::app {

using OpenFile = std::function<std::unique_ptr<FrameReader>(const std::filesystem::path&)>;

// The .png, .tif, .tiff and .npy files of the folder in natural order, scan2 before scan10.
std::unique_ptr<FrameReader> open_folder(const std::filesystem::path& folder, OpenFile open);

}  // namespace oct::app
