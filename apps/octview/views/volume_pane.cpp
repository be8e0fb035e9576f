#include "octview/views/volume_pane.h"

#include <imgui.h>

#include "client/checked.h"
#include "data/colormap.h"
#include "octview/window/item_index.h"
#include "scene/volume_view.h"

namespace oct::app {

VolumePane::VolumePane(const GlFunctions& gl) : texture_(gl) {}

void VolumePane::show(Workspace& workspace, LiveSession* live) {
  const ImVec2 size = ImGui::GetContentRegionAvail();
  const ImVec2 corner = ImGui::GetCursorScreenPos();
  const Document& document = workspace.document;
  if (!document || size.x < 1 || size.y < 1) return;
  if (live) {
    LiveScene scene;
    scene.view = workspace.state.volume;
    scene.volume = {find_colormap(workspace.state.base.colormap).value_or(Colormap()),
                    workspace.state.base.range};
    set_opacity(scene.volume.colormap, workspace.state.base.opacity);
    texture_.draw(static_cast<int>(size.x), static_cast<int>(size.y), [&] { live->draw(scene); });
  } else if (uploaded_revision_ != document.revision) {
    const VolumeData& data = *document.volume;
    const std::array<double, 3> extent = document.extent();
    checked(setOfflineAspectRatio, rendering_.offline(), static_cast<float>(extent[0]),
            static_cast<float>(extent[1]), static_cast<float>(extent[2]));
    checked(allocateOfflineVolume, rendering_.offline(), static_cast<int>(data.depth),
            static_cast<int>(data.ascans), static_cast<int>(data.bscans));
    checked(uploadOfflineVolume, rendering_.offline(), data.voxels.data());
    uploaded_revision_ = document.revision;
    const LayerLook& look = workspace.state.base;
    Colormap colors = find_colormap(look.colormap).value_or(Colormap());
    set_opacity(colors, look.opacity);
    set_view(rendering_.renderer(), workspace.state.volume);
    set_colors(rendering_.renderer(), ColoredData::volume, colors, look.range);
    texture_.draw(static_cast<int>(size.x), static_cast<int>(size.y),
                  [&] { checked(renderOfflineVolume, rendering_.offline(), 0); });
  }
  ImGui::Image(texture_.id(), size, {0, 1}, {1, 0});
  mark_item("Volume", corner, {corner.x + size.x, corner.y + size.y});
}

}  // namespace oct::app
