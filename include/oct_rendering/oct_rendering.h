/**
 * @file oct_rendering.h
 * @brief Rendering of optical coherence tomography (OCT) images: the complete public interface.
 *
 * The library draws into whatever OpenGL framebuffer is bound when a render function is called. All functions
 * are plain C functions over opaque handles; the header compiles as C99 and as C++.
 *
 * @section errors Errors
 * No exception leaves a function. A function that fails writes "An error occured: " and the reason as one
 * line to the standard error stream, keeps the reason as the *pending error* of the calling thread, and
 * returns its neutral result (null, 0 or nothing). Poll with isRendererError(), read and clear with
 * getRendererError(). The first error of a thread stays until it is read; later errors of that thread reach
 * the standard error stream only. Reasons end in one blank where they are shown with one below.
 *
 * @section misuse Misuse
 * A negative size or count, null data with a size above zero, sizes whose product is not addressable and an
 * overlay index out of range are refused with a clear reason and change nothing. Every function that takes a
 * handle refuses, beside null, what is no living handle of its kind with "The handle is not valid. ". Clearing a
 * handle while another thread is inside a call with it is undefined.
 *
 * @section threads Threads
 * Every function names its thread rule. "Any thread" means that the function may run while another thread
 * renders with the same handle. "Rendering thread" means the thread whose OpenGL context is current; init,
 * render and uninit of one renderer need the same context current (OpenGL 3.3 or later, core or
 * compatibility).
 *
 * @section contexts Contexts
 * A renderer is at home in the context that it was initialised in. A frame in another one is refused with "The
 * renderer was initialised in another OpenGL context. ", draws nothing and loses nothing: back home it goes on. To
 * move, initialise it in the new context; settings and images of display and volume renderers go along, volumes are
 * allocated and uploaded again, live renderers are started again. The context before may be gone or live on; what the
 * renderer had there stays until that context is deleted, as it does when a renderer is uninitialised or freed
 * while another context is current. Objects of the client's are never touched, whatever numbers they have. For that
 * the library keeps one vertex array object in every context of a client's that it made something in.
 *
 * @section words Words
 * An A-scan is one depth profile; a B-scan is a row of A-scans. Images are arrays of 32-bit floats with depth
 * (axial direction) fastest in memory: sample z of A-scan x lies at index x * Size1 + z, where Size1 is the
 * number of samples per A-scan and Size2 the number of A-scans.
 */
#ifndef OCT_RENDERING_H
#define OCT_RENDERING_H

#include "display.h"
#include "hosting.h"
#include "library.h"
#include "live.h"
#include "offline.h"
#include "offscreen.h"
#include "types.h"
#include "values.h"
#include "version.h"
#include "volume.h"

#endif /* OCT_RENDERING_H */
