// Draws one volume, held by its owner in a 3-D texture, and the scene around it into the current target.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "core/last_frame.h"
#include "gl/context/context_identity.h"
#include "gl/kept_picture.h"
#include "volume/frame/frame_record.h"
#include "volume/frame/volume_colormap.h"
#include "volume/frame/volume_programs.h"
#include "volume/frame/volume_settings.h"
#include "volume/passes/background.h"
#include "volume/passes/box.h"
#include "volume/passes/picker.h"
#include "volume/passes/raycaster.h"
#include "volume/passes/scene_elements.h"
#include "volume/passes/surface.h"

namespace oct {

// Setters run on any thread and wait for no frame: a frame copies all settings when it begins, and what is set
// later shows in the next one. init, uninit, render and the destructor run on the thread that owns the context,
// one at a time (ObjectLock). A frame starts from OpenGL's own settings, which its caller sees to
// (gl::ClientState), and leaves what it set.
class VolumeRenderer {
 public:
  VolumeRenderer();
  ~VolumeRenderer();
  VolumeRenderer(const VolumeRenderer&) = delete;
  VolumeRenderer& operator=(const VolumeRenderer&) = delete;

  void init();
  void uninit();
  void render(const VolumeSource& source);

  // In plain words why the last frame shows nothing or almost nothing; empty when it shows something. On any thread,
  // from what is known without OpenGL. Where the frame's context is current, and no frame is being drawn, it looks at
  // the picture as well.
  std::string explain_frame();

  // What lies under a pixel of the last frame, from the viewport's lower left corner. In the context of the frame.
  struct Pick {
    PickedKind kind = PickedKind::nothing;
    glm::dvec3 voxel{0.0};  // depth, A-scan, B-scan
    glm::dvec3 millimetres{0.0};
    float value = 0.0F;
  };
  Pick pick(int x, int y);

  // Camera
  void set_angles(double x, double y);
  void set_translation(double x, double y, double z);
  void set_range(double axial, double lateral1, double lateral2);
  void set_zoom(double zoom);
  void set_use_perspective(bool perspective);

  // Modes
  void set_rendering_slices(int slices);
  void set_rendering_mode(int mode);
  void set_volume_mode(int mode);
  void set_render_elements(bool volume, bool surface);

  // Looks
  void set_lighting(double ambient, double diffuse, double specular);
  void set_ray_jitter(bool jitter);
  void set_opacity_length(double millimetres);

  // Scene
  void set_sectional_view(const Sections& sections);
  void set_clip_plane(bool enable, bool open_cut, float value);
  void fix_clip_plane(bool fix);
  void set_frame(const FrameFlags& flags);
  void set_remove_segment(bool remove);
  void set_background(std::uint32_t bottom, std::uint32_t top);
  void set_foreground(std::uint32_t color);
  // What the next frames show; none: the whole picture. Whoever asks about a frame asks about the whole.
  void set_part(std::optional<PicturePart> part);

  // Colours. Before init there is nothing to set, and nothing happens.
  void set_colormap(ColormapRole role, const void* colors, int count);
  void set_coloring_boundaries(ColormapRole role, double lower, double upper);
  void set_secondary_slice_index(int index);

  void set_surface(int width, int height, double scale, const float* values);
  void set_surface_depths(double lower, double upper);

  void clear();  // shows neither volume nor surface

  VolumeSettings settings() const;
  std::optional<PicturePart> part() const;

 private:
  void create_colormaps();
  // Under the mutex. Before init there is nothing to find or to set.
  ColormapSettings* find_colormap(ColormapRole role);
  void set_boundaries(ColormapRole role, double lower, double upper);

  void draw_frame(const VolumeSource& source);
  bool can_be_drawn_again(const FrameRecord& record) const;
  bool shows_something(const FrameRecord& record);

  // The steps of a frame, in their order.
  VolumeFrame begin_frame(const VolumeSettings& settings, const VolumeSource& source, const Camera& camera);
  void clear_target();
  void draw_background(const VolumeFrame& frame);
  void draw_opaque(const VolumeFrame& frame);
  void draw_behind_volume(const VolumeFrame& frame);
  void draw_rays(const VolumeFrame& frame);
  void draw_in_front(const VolumeFrame& frame);
  void finish_frame();
  void draw(const VolumeFrame& frame);
  bool show_again(const VolumeFrame& frame, const std::array<GLint, 4>& viewport);

  void release();

  mutable std::mutex settings_mutex_;  // held for assignments only
  VolumeSettings settings_;
  std::optional<PicturePart> part_;  // none: frames are whole pictures

  // Of the thread that draws.
  gl::ContextIdentity home_ = gl::no_context;  // where it was initialised; none: it is not
  bool first_frame_ = false;                   // since then
  VolumeColormaps colormaps_;
  VolumePrograms programs_;
  ClipPlane clip_plane_;
  Background background_;
  Box box_;
  Raycaster raycaster_;
  SceneElements elements_;
  Surface surface_;
  Picker picker_;
  gl::KeptPicture picture_;  // of the last frame, once it was asked for a second time

  // After a failure nothing is known of what the target shows.
  LastFrame<FrameRecord> last_frame_{LastFrame<FrameRecord>::AfterFailure::forget};
};

}  // namespace oct
