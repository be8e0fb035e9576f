/* The header compiles as strict C99 and stands alone. */
#include "oct_rendering/oct_rendering.h"

int oct_header_error_code(void) {
  DisplayRenderingHandle display = 0;
  OffscreenTargetHandle target = 0;
  LiveDataSourceHandle source = 0;
  OctErrorFunction function = 0;
  return display || target || source || function ? 0 : OCT_RENDERER_ERROR;
}
