/* The header compiles as strict C99 and stands alone. */
#include "oct_rendering/interface_list.h"

/* A table of pointers, as a program makes that loads the library by name; never called. */
#define OCT_POINTER(since, family, result, name, parameters) result(*name) parameters;
struct OctFunctions {
  OCT_API_LIST(OCT_POINTER)
};

int oct_header_error_code(void) {
  DisplayRenderingHandle display = 0;
  OffscreenTargetHandle target = 0;
  LiveDataSourceHandle source = 0;
  OctErrorFunction function = 0;
  return display || target || source || function ? 0 : OCT_RENDERER_ERROR;
}
