#include "volume/scene_elements.h"

namespace oct {

void SectionalView::set(const std::array<Section, 3>& sections) {
  sections_ = sections;
}
void SectionalView::draw(const VolumeFrame&) {}
void SectionalView::drawOutline(const VolumeFrame&) {}

void SceneElements::drawTranslucent(const VolumeFrame&) {}
void SceneElements::drawFrame(const VolumeFrame&) {}
void SceneElements::drawClipPlaneBorder(const VolumeFrame&) {}
void SceneElements::drawRemovedSegment(const VolumeFrame&) {}
void SceneElements::release() {
  sectionalView.release();
}

}  // namespace oct
