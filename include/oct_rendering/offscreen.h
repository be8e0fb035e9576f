/**
 * @file offscreen.h
 * @brief A framebuffer with an OpenGL context of its own. Part of oct_rendering.h.
 */
#ifndef OCT_RENDERING_OFFSCREEN_H
#define OCT_RENDERING_OFFSCREEN_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup offscreen Offscreen target
 *
 * An OpenGL context of its own and a framebuffer (8 bits per colour channel, 24 bits of depth) for programs that
 * want pixels, whether they have OpenGL of their own or not:
 *
 *     OffscreenTargetHandle target = createOffscreenTarget();
 *     initDisplayRendering(renderer);
 *     beginOffscreenFrame(target, width, height);
 *     renderDisplay(renderer);
 *     finishOffscreenFrame(target, pixels);
 *
 * A new target leaves its own context current, so that a program without OpenGL can go on to initialise
 * renderers. Everything else gives back what was current before: a frame is one piece of work from
 * beginOffscreenFrame() to finishOffscreenFrame(), and can be drawn between two OpenGL calls of a client or within a
 * loop's render function. On Linux the API that the client bound with eglBindAPI stays bound throughout. A context
 * of GLX must be released before a target is used on its thread.
 *
 * All functions of one target run on the thread that created it. Every function refuses a null handle with
 * "Invalid OffscreenTargetHandle specified. ", except clearOffscreenTarget(), which ignores it.
 */
/** @{ */

/**
 * @brief Makes a target with an OpenGL context and leaves the context current on the calling thread.
 * @return The target, to be freed with clearOffscreenTarget(); null on failure, and then what was current before is
 * current again.
 * @par Errors
 * "An error occured. Could not create hidden window for OpenGL output: ..." and the other reasons of the
 * window system; "Could not load OpenGL. "; "OpenGL 3.3 required. Version is currently ..."
 * @thread Any thread; that thread owns the target.
 */
OCT_API OffscreenTargetHandle createOffscreenTarget(void);

/**
 * @brief Deletes framebuffer and context. Uninitialise renderers of this context first. The thread keeps the
 * context that is current; where that is the target's own one, it gets back what was current before the frame that
 * is begun, else before createOffscreenTarget(). None is current if that is gone.
 * @param Handle The target; null is ignored.
 * @par Errors
 * Reasons of the window system.
 * @thread The thread that created the target.
 */
OCT_API void clearOffscreenTarget(OffscreenTargetHandle Handle);

/**
 * @brief Makes the context current, makes the framebuffer the one that is drawn to and sets the viewport to
 * its whole size. The contents are undefined until something clears them. The framebuffer, eight bytes a pixel, is kept
 * until a frame of another size begins. After an error no frame is begun and what was current before is current again.
 * @param Handle The target.
 * @param Width Width in pixels, 1 to the driver's renderbuffer limit (16384 on most).
 * @param Height Height in pixels, likewise.
 * @par Errors
 * "Invalid OffscreenTargetHandle specified. "; "An OpenGL error in beginOffscreenFrame occured: ...";
 * "The offscreen framebuffer is not complete: ..."
 * @thread The thread that created the target.
 */
OCT_API void beginOffscreenFrame(OffscreenTargetHandle Handle, unsigned int Width, unsigned int Height);

/**
 * @brief Ends the frame and, if asked, reads its pixels. What was current before beginOffscreenFrame() is current
 * again, after an error as well.
 * @param Handle The target.
 * @param Pixels Receives Width * Height * 4 bytes: rows bottom row first, each pixel blue, green, red, alpha.
 *        Null: nothing is read.
 * @par Errors
 * "Invalid OffscreenTargetHandle specified. "; "No offscreen frame has been begun. ";
 * "An OpenGL error in finishOffscreenFrame occured: ..."
 * @thread The thread that created the target.
 */
OCT_API void finishOffscreenFrame(OffscreenTargetHandle Handle, void* Pixels);

/**
 * @brief finishOffscreenFrame() with pixels in the order that a program wants them in. No order costs a copy.
 * @param Handle The target.
 * @param Format An OctPixelFormat: 0 blue first, 1 red first, both with the bottom row first; 2 and 3 likewise with the
 * top row first. After an error of it the frame goes on.
 * @param Pixels Receives Width * Height * 4 bytes, without gaps between the rows. Null: nothing is read.
 * @par Errors
 * "Invalid pixel format selected. "; otherwise as finishOffscreenFrame(). An OpenGL error names that function.
 * @thread The thread that created the target.
 * @since 0.2
 */
OCT_API void finishOffscreenFrameAs(OffscreenTargetHandle Handle, int Format, void* Pixels);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* OCT_RENDERING_OFFSCREEN_H */
