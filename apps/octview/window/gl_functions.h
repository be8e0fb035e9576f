// The few OpenGL functions that the viewer itself calls; everything else is drawn by the rendering library and by the interface's
// backend. They belong to the context that is current when they are loaded.
#pragma once

#include <GL/glcorearb.h>

namespace oct::app {

struct GlFunctions {
  PFNGLBINDFRAMEBUFFERPROC bind_framebuffer;
  PFNGLGENFRAMEBUFFERSPROC gen_framebuffers;
  PFNGLDELETEFRAMEBUFFERSPROC delete_framebuffers;
  PFNGLFRAMEBUFFERTEXTURE2DPROC framebuffer_texture_2d;
  PFNGLFRAMEBUFFERRENDERBUFFERPROC framebuffer_renderbuffer;
  PFNGLCHECKFRAMEBUFFERSTATUSPROC check_framebuffer_status;
  PFNGLGENRENDERBUFFERSPROC gen_renderbuffers;
  PFNGLDELETERENDERBUFFERSPROC delete_renderbuffers;
  PFNGLBINDRENDERBUFFERPROC bind_renderbuffer;
  PFNGLRENDERBUFFERSTORAGEPROC renderbuffer_storage;
  PFNGLGENTEXTURESPROC gen_textures;
  PFNGLDELETETEXTURESPROC delete_textures;
  PFNGLBINDTEXTUREPROC bind_texture;
  PFNGLTEXIMAGE2DPROC tex_image_2d;
  PFNGLTEXPARAMETERIPROC tex_parameter_i;
  PFNGLVIEWPORTPROC viewport;
  PFNGLSCISSORPROC scissor;
  PFNGLENABLEPROC enable;
  PFNGLDISABLEPROC disable;
  PFNGLCLEARCOLORPROC clear_color;
  PFNGLCLEARPROC clear;
  PFNGLPIXELSTOREIPROC pixel_store_i;
  PFNGLREADPIXELSPROC read_pixels;
  PFNGLGETINTEGERVPROC get_integer_v;
};

// Throws std::runtime_error when one is missing.
GlFunctions load_gl_functions();

}  // namespace oct::app
