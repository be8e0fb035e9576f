// The picture of the volume, drawn when something changed, as finely as it can be at the moment.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "octview/live/live_session.h"
#include "octview/model/quality.h"
#include "octview/model/workspace.h"
#include "octview/window/pane_texture.h"
#include "scene/volume_scene.h"

namespace oct::app {

// Under a pixel of the picture. Voxels are those of the document.
struct VolumePlace {
  VoxelPoint voxel{};
  double value = 0;
};

class VolumeImage {
 public:
  explicit VolumeImage(const GlFunctions& gl) : gl_(gl), texture_(gl) {}

  // Of a document that is open. Data is handed to the driver a part per frame. After an error it tries again when something
  // changes, and throws the same until then.
  void update(const Workspace& workspace, PictureSize size);
  // Of the volumes that come.
  void update(const Workspace& workspace, LiveSession& live, PictureSize size);

  bool is_drawn() const { return texture_.width() > 0 && !is_uploading(); }
  void* texture() const { return texture_.id(); }
  // A picture in full quality is to come.
  bool is_owed() const { return error_.empty() && (uploading_ || (!is_live_ && control_.is_owed())); }
  bool is_full() const { return !is_live_ && !is_owed(); }
  bool is_uploading() const { return uploading_; }
  double uploaded() const { return drawing_.uploaded(); }
  // What is not there yet is not shown.
  void stop_upload() { uploading_ = false; }
  bool is_partial() const { return !is_live_ && !uploading_ && drawing_.uploaded() < 1; }
  // Why nothing is seen; empty when something is.
  const std::string& explanation() const { return explanation_; }

  // In parts of the picture, to the right and downwards, 0 to 1. None where the picture shows nothing.
  std::optional<VolumePlace> place_at(const std::array<double, 2>& part) const;

 private:
  // What the picture depends on.
  struct Wanted {
    std::uint64_t revision = 0;
    VolumeView view;
    LayerLook base;
    LayerLook overlay;
    LayerLook surface;
    LayerLook secondary;
    std::optional<std::array<double, 3>> extent;
    PictureSize size;

    bool operator==(const Wanted&) const = default;
  };

  void take(const Workspace& workspace, PictureSize size);
  void draw(double now);
  template <class Draw>
  void draw_timed(const Quality& quality, PictureSize size, Draw draw_content);

  const GlFunctions& gl_;
  PaneTexture texture_;
  VolumeDrawing drawing_;
  QualityControl control_;
  std::optional<Wanted> wanted_;
  VolumeScene scene_;
  bool uploading_ = false;
  bool is_live_ = false;
  std::string error_;
  std::string explanation_;
  VolumeRendererHandle drawn_with_ = nullptr;  // that drew the picture; null: none can be asked
};

}  // namespace oct::app
