#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include <nlohmann/json.hpp>

#include "data/file_errors.h"
#include "data/formats/output_file.h"
#include "data/meshes/append_bytes.h"
#include "data/meshes/mesh_writers.h"

namespace oct::app {
namespace {

using nlohmann::json;

// The format's numbers for types and targets.
constexpr int unsigned_short = 5123, unsigned_int = 5125, single_float = 5126;
constexpr int vertex_data = 34962, index_data = 34963;

constexpr float metres_per_mm = 0.001F;

// Colours of vertices are linear in light, those of colour maps are not.
std::uint16_t linear(std::uint8_t channel) {
  const double part = channel / 255.0;
  const double light = part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  return static_cast<std::uint16_t>(std::lround(light * 65535));
}

Rgba color_of(float depth, const MeshColors& colors) {
  const double part = (depth - colors.range.lower) / (colors.range.upper - colors.range.lower);
  const auto count = static_cast<double>(colors.colors.size());
  return colors.colors[static_cast<std::size_t>(std::clamp(part * count, 0.0, count - 1))];
}

// What the file holds, in its order: indices, positions, normals, colours.
class Content {
 public:
  void add_indices(const DepthMesh& mesh) {
    begin();
    for (const auto& triangle : mesh.triangles) append_bytes(bytes_, triangle);
    end(index_data, unsigned_int, mesh.triangles.size() * 3, "SCALAR");
  }

  void add_positions(const DepthMesh& mesh) {
    begin();
    std::array<float, 3> least, most;
    least.fill(std::numeric_limits<float>::max());
    most.fill(std::numeric_limits<float>::lowest());
    for (const DepthMesh::Vertex& vertex : mesh.vertices) {
      for (std::size_t i = 0; i < 3; ++i) {
        const float place = vertex.position[i] * metres_per_mm;
        least[i] = std::min(least[i], place);
        most[i] = std::max(most[i], place);
        append_bytes(bytes_, place);
      }
    }
    end(vertex_data, single_float, mesh.vertices.size(), "VEC3");
    accessors_.back()["min"] = least;
    accessors_.back()["max"] = most;
  }

  void add_normals(const DepthMesh& mesh) {
    begin();
    for (const DepthMesh::Vertex& vertex : mesh.vertices) append_bytes(bytes_, vertex.normal);
    end(vertex_data, single_float, mesh.vertices.size(), "VEC3");
  }

  void add_colors(const DepthMesh& mesh, const MeshColors& colors) {
    begin();
    for (const DepthMesh::Vertex& vertex : mesh.vertices) {
      const Rgba color = color_of(vertex.depth, colors);
      for (std::size_t i = 0; i < 3; ++i) append_bytes(bytes_, linear(color[i]));
      append_bytes(bytes_, std::uint16_t{65535});
    }
    end(vertex_data, unsigned_short, mesh.vertices.size(), "VEC4");
    accessors_.back()["normalized"] = true;
  }

  json description(const std::string& generator) const {
    const json primitive = {
        {"attributes", {{"POSITION", 1}, {"NORMAL", 2}, {"COLOR_0", 3}}}, {"indices", 0}, {"material", 0}};
    // Seen from below as well, and without shine.
    const json material = {{"doubleSided", true},
                           {"pbrMetallicRoughness", {{"metallicFactor", 0.0}, {"roughnessFactor", 1.0}}}};
    return {{"asset", {{"version", "2.0"}, {"generator", generator}}},
            {"scene", 0},
            {"scenes", json::array({{{"nodes", {0}}}})},
            {"nodes", json::array({{{"mesh", 0}, {"name", "surface"}}})},
            {"meshes", json::array({{{"primitives", json::array({primitive})}}})},
            {"materials", json::array({material})},
            {"buffers", json::array({{{"byteLength", bytes_.size()}}})},
            {"bufferViews", views_},
            {"accessors", accessors_}};
  }

  const std::string& bytes() const { return bytes_; }

 private:
  void begin() { start_ = bytes_.size(); }

  // Every part is a multiple of four bytes long.
  void end(int target, int type, std::size_t count, const char* shape) {
    accessors_.push_back(
        {{"bufferView", views_.size()}, {"componentType", type}, {"count", count}, {"type", shape}});
    views_.push_back(
        {{"buffer", 0}, {"byteOffset", start_}, {"byteLength", bytes_.size() - start_}, {"target", target}});
  }

  std::string bytes_;
  std::size_t start_ = 0;
  json views_ = json::array();
  json accessors_ = json::array();
};

std::string chunk(const char* type, std::string content, char filler) {
  content.append((4 - content.size() % 4) % 4, filler);
  std::string bytes;
  append_bytes(bytes, static_cast<std::uint32_t>(content.size()));
  return bytes.append(type, 4) + content;
}

}  // namespace

void write_glb(const std::filesystem::path& path, const DepthMesh& mesh, const MeshColors& colors,
               const std::string& generator) {
  Content content;
  content.add_indices(mesh);
  content.add_positions(mesh);
  content.add_normals(mesh);
  content.add_colors(mesh, colors);
  const std::string text =
      content.description(generator).dump(-1, ' ', false, json::error_handler_t::replace);
  const std::string described = chunk("JSON", text, ' ');
  const std::string binary = chunk("BIN\0", content.bytes(), '\0');
  constexpr std::uint32_t version = 2;
  const std::uint64_t total = 12 + std::uint64_t{described.size()} + binary.size();
  if (total > std::numeric_limits<std::uint32_t>::max()) {
    throw WriteError(path, "the surface is too large for the format, which ends at 4 GiB");
  }
  std::string head = "glTF";
  append_bytes(head, version);
  append_bytes(head, static_cast<std::uint32_t>(total));
  OutputFile file(path);
  file.write(head);
  file.write(described);
  file.write(binary);
  file.commit();
}

}  // namespace oct::app
