// Writes surfaces for other programs. When this fails, what was there before stays as it was.
#pragma once

#include <filesystem>
#include <string>

#include "data/colormap.h"
#include "data/meshes/depth_mesh.h"
#include "data/samples.h"

namespace oct::app {

// Binary STL: millimetres, z upwards, as programs for printing want it; no colours.
void write_stl(const std::filesystem::path& path, const DepthMesh& mesh);

struct MeshColors {
  Colormap colors;
  ValueRange range;  // of the vertices' depths
};

// Binary glTF 2.0: metres, y upwards, with normals and a colour per vertex. generator: the program, and what it was told.
void write_glb(const std::filesystem::path& path, const DepthMesh& mesh, const MeshColors& colors,
               const std::string& generator);

}  // namespace oct::app
