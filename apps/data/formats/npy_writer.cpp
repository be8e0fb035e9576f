#include "data/formats/npy_writer.h"

#include <string>
#include <vector>

#include "data/formats/output_file.h"

namespace oct::app {
namespace {

// Version 1.0 of the format: the header is padded so that the samples start at a multiple of 64 bytes.
std::string header_of(const VolumeData& volume) {
  const std::string frames = volume.bscans > 1 ? std::to_string(volume.bscans) + ", " : "";
  std::string text = "{'descr': '<f4', 'fortran_order': False, 'shape': (" + frames +
                     std::to_string(volume.depth) + ", " + std::to_string(volume.ascans) + "), }";
  constexpr std::size_t prefix = 10;
  text.append(63 - (prefix + text.size()) % 64, ' ');
  text += '\n';
  return std::string("\x93NUMPY\x01\x00", 8) + static_cast<char>(text.size() & 0xFF) +
         static_cast<char>(text.size() >> 8) + text;
}

// In the file depth runs along the rows of each B-scan, as in a picture.
void write(OutputFile& file, const VolumeData& volume) {
  file.write(header_of(volume));
  std::vector<float> row(volume.ascans);
  for (std::size_t b = 0; b < volume.bscans; ++b) {
    for (std::size_t z = 0; z < volume.depth; ++z) {
      for (std::size_t a = 0; a < volume.ascans; ++a) {
        row[a] = volume.voxels[(b * volume.ascans + a) * volume.depth + z];
      }
      file.write(row.data(), row.size() * sizeof(float));
    }
  }
}

}  // namespace

void write_npy(const std::filesystem::path& path, const VolumeData& volume) {
  OutputFile file(path);
  write(file, volume);
  file.commit();
}

}  // namespace oct::app
