// What the renderer of volumes is told of a document and its state.
#pragma once

#include "octview/model/camera.h"
#include "octview/model/document.h"
#include "scene/volume_scene.h"

namespace oct::app {

BoxExtent extent_of(const Document& document);

// The picture of an opened document in this size: what octrender draws by volume_command. Throws a ReadError for a table of
// colours that cannot be read.
VolumeScene volume_scene(const Document& document, const ViewState& state, PictureSize size);

// The sections of the volume are those of the panes beside it: through the crosshair. Hidden ones stay hidden.
void follow_cursor(const Document& document, ViewState& state);

}  // namespace oct::app
