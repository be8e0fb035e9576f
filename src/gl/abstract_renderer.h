// What every renderer is to its owner. This folder holds what the display and the volume renderers share.
#pragma once

namespace oct {

class AbstractRenderer {
 public:
  virtual ~AbstractRenderer() = default;
  virtual void render() = 0;  // draws into the current target
};

}  // namespace oct
