/**
 * @file hosting.h
 * @brief Control loops and controls: render threads that hand frames to the client. Part of oct_rendering.h.
 */
#ifndef OCT_RENDERING_HOSTING_H
#define OCT_RENDERING_HOSTING_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup hosting Control loops
 *
 * A control loop draws on a render thread of its own, with an OpenGL context of its own, and hands finished
 * frames over on a return thread:
 *
 *     prepareOpenGL();
 *     OpenGLControlLoopHandle loop = createOpenGLControlLoop();
 *     registerOpenGLControlLoopRenderCallback(loop, draw);
 *     registerOpenGLControlLoopCallback(loop, show);
 *     resizeOpenGLControlLoop(loop, width, height);
 *     OpenGLControlLoopMode(loop, 0);
 *     renderOpenGLControlLoop(loop);
 *     ...
 *     deleteOpenGLControlLoop(loop);
 *     finishOpenGL();
 *
 * Frames rotate through three buffers. A buffer whose frame the client has not got yet, or is still looking
 * at, is not drawn into: the render thread is at most three frames ahead and then waits. docs/hosting.md says
 * what may be called where.
 *
 * Functions of a loop refuse a null handle with "Invalid OpenGLControlLoopHandle specified. ", those of a
 * control, except deleteUniversalOpenGLControl(), with "The specified OpenGLControlHandle is invalid. ".
 */
/** @{ */

/**
 * @brief Chooses what the hand-off buffers of the controls and loops created from now on are made of. There
 * is no falling back from one to the other.
 * @param Sharing An OctSurfaceSharing. 0: Direct3D 9Ex surfaces, shared with OpenGL by WGL_NV_DX_interop (Windows only, the start
 * there); an image-ready function gets an IDirect3DSurface9*. 1: host memory (the start elsewhere); it gets
 * an OctHostSurface*.
 * @par Errors
 * "Invalid surface sharing selected. "; on systems without Direct3D
 * "Ressouce sharing between OpenGL and DirectX not supported. "
 * @thread Any thread.
 */
OCT_API void setSurfaceSharing(int Sharing);

/**
 * @brief Chooses the order of the pixels in the host-memory surfaces of the controls and loops created from now on: of
 * their frames and of what createDXSurface() makes for them. No order costs a copy. Direct3D surfaces have their own.
 * @param Format An OctPixelFormat. 0, the start: blue, green, red, alpha; 1: red, green, blue, alpha; both with the bottom
 * row first. 2 and 3: likewise with the top row first.
 * @par Errors
 * "Invalid pixel format selected. "
 * @thread Any thread.
 * @since 0.2
 */
OCT_API void setHostPixelFormat(int Format);

/**
 * @brief Starts the thread that owns the hidden windows of all controls. Without it every first control
 * starts that thread and every last one ends it. Does nothing when called again.
 * @par Errors
 * Reasons of the window system.
 * @thread Any thread, before the first control or loop is created.
 */
OCT_API void prepareOpenGL(void);

/**
 * @brief Ends what prepareOpenGL() started, at the latest when the last control is gone.
 * Does nothing when called again.
 * @thread Any thread but the callbacks' ones, after the last control and loop was deleted.
 */
OCT_API void finishOpenGL(void);

/**
 * @brief Makes a loop without init, uninit and error functions. Returns when its render thread is up.
 * @return The loop, to be freed with deleteOpenGLControlLoop(); null on failure. A loop whose render thread
 * could not be set up draws nothing; the reason is in the library log.
 * @par Errors
 * "The threads of the control loop could not be started: ..."
 * @thread Any thread.
 */
OCT_API OpenGLControlLoopHandle createOpenGLControlLoop(void);

/**
 * @brief Makes a loop that tells about its render thread.
 * @param Init Called on the render thread with the context current, before the first frame; may still be
 * running when this function returns. Null: none.
 * @param Uninit Called on the render thread with the context current, after the last frame and the last
 * image-ready call. Not called when the render thread ended with an error. Null: none.
 * @param Error Called on the render thread with the reason when an error ends it, among them "Cannot properly
 * create an OpenGLControl.", "Could not generate render target. ",
 * "Rendering could not finish within one second. ",
 * "An OpenGL error in the read-back of a frame occured: ...", "Could not map the pixels of a frame. " and
 * "The graphics device was removed. ", after which a new loop works again. The context, if there is one, is
 * current for the last time: renderers can be uninitialised here. Null: none.
 * @return As createOpenGLControlLoop().
 * @par Errors
 * As createOpenGLControlLoop().
 * @thread Any thread.
 */
OCT_API OpenGLControlLoopHandle createOpenGLControlLoopCB(OctLoopFunction Init, OctLoopFunction Uninit,
                                                          OctErrorFunction Error);

/**
 * @brief createOpenGLControlLoopCB() with a pointer for the callbacks.
 * @param Init As there, with @p user.
 * @param Uninit As there, with @p user.
 * @param Error As there, with @p user.
 * @param user Handed to each of the three; it must last until the loop is deleted.
 * @return As createOpenGLControlLoop().
 * @par Errors
 * As createOpenGLControlLoop().
 * @thread Any thread.
 * @since 0.2
 */
OCT_API OpenGLControlLoopHandle createOpenGLControlLoopCBWithUser(OctLoopFunctionWithUser Init,
                                                                  OctLoopFunctionWithUser Uninit,
                                                                  OctErrorFunctionWithUser Error, void* user);

/**
 * @brief Ends both threads of a loop and frees it. A running snapshot is finished first, later ones are
 * refused; frames that wait are dropped. From the line
 * "OpenGL control loop finished. Callbacks can be freed now. " on the standard output on, no function of the
 * client is called any more.
 * @param Handle The loop.
 * @par Errors
 * "Invalid OpenGLControlLoopHandle specified. "; from one of the loop's own callbacks the system's text for a
 * resource deadlock, and the loop goes on.
 * @thread Any thread but the loop's own; no other call with this handle may follow.
 */
OCT_API void deleteOpenGLControlLoop(OpenGLControlLoopHandle Handle);

/**
 * @brief Sets the function that draws the frames. Without one a loop draws a turning triangle.
 * @param Handle The loop.
 * @param Render Called on the render thread with the buffer bound and the viewport set. Null is ignored: the
 *        function set before stays.
 * @par Errors
 * "Invalid OpenGLControlLoopHandle specified. "; from one of the loop's own callbacks the system's text for a
 * resource deadlock, and the function set before stays.
 * @thread Any thread but the loop's own; waits until the function set before has returned.
 */
OCT_API void registerOpenGLControlLoopRenderCallback(OpenGLControlLoopHandle Handle,
                                                     OctRenderFunction Render);

/**
 * @brief registerOpenGLControlLoopRenderCallback() with a pointer for the callback. A loop has one function that
 * draws the frames: the one that was set last, whichever way.
 * @param Handle The loop.
 * @param Render As there, with @p user.
 * @param user Handed to the callback; it must last until another one is set or the loop is deleted.
 * @par Errors
 * As registerOpenGLControlLoopRenderCallback().
 * @thread As registerOpenGLControlLoopRenderCallback().
 * @since 0.2
 */
OCT_API void registerOpenGLControlLoopRenderCallbackWithUser(OpenGLControlLoopHandle Handle,
                                                             OctRenderFunctionWithUser Render, void* user);

/**
 * @brief Sets the function that receives the frames.
 * @param Handle The loop.
 * @param ImageReady Called on the return thread, for waiting keys in turn: the smallest above the last one,
 * or else the smallest. Null removes the function set before.
 * @par Errors
 * "Invalid OpenGLControlLoopHandle specified. "; from one of the loop's own callbacks the system's text for a
 * resource deadlock, and the function set before stays.
 * @thread Any thread but the loop's own; waits until the function set before has returned.
 */
OCT_API void registerOpenGLControlLoopCallback(OpenGLControlLoopHandle Handle,
                                               OctImageReadyFunction ImageReady);

/**
 * @brief registerOpenGLControlLoopCallback() with a pointer for the callback. A loop has one function that
 * receives the frames: the one that was set last, whichever way.
 * @param Handle The loop.
 * @param ImageReady As there, with @p user.
 * @param user Handed to the callback; it must last until another one is set or the loop is deleted.
 * @par Errors
 * As registerOpenGLControlLoopCallback().
 * @thread As registerOpenGLControlLoopCallback().
 * @since 0.2
 */
OCT_API void registerOpenGLControlLoopCallbackWithUser(OpenGLControlLoopHandle Handle,
                                                       OctImageReadyFunctionWithUser ImageReady, void* user);

/**
 * @brief Asks for a frame with id 0 and returns at once. An id that is waiting already is not added again.
 * Every call leaves a line in the file render_calls.txt in C:/tmp (Linux: /tmp), where that can be written.
 * @param Handle The loop.
 * @par Errors
 * "Invalid OpenGLControlLoopHandle specified. " on the standard error stream; nothing becomes pending.
 * @thread Any thread.
 */
OCT_API void renderOpenGLControlLoop(OpenGLControlLoopHandle Handle);

/**
 * @brief Asks for a frame with an id of the client's choice, as renderOpenGLControlLoop().
 * @param Handle The loop.
 * @param Id Handed to the render function and, as index, to the image-ready function. -1 draws nothing.
 * @par Errors
 * As renderOpenGLControlLoop().
 * @thread Any thread.
 */
OCT_API void renderMultOpenGLControlLoop(OpenGLControlLoopHandle Handle, int Id);

/**
 * @brief Draws a frame of any size into client memory and returns when it is there. The frame begins after
 * the call. Does nothing while another snapshot of this loop is running.
 * @param Handle The loop.
 * @param Width Pixels; 0 draws nothing.
 * @param Height Pixels; 0 draws nothing.
 * @param Data Receives Width * Height * 4 bytes: blue, green, red, alpha; bottom row first.
 * @par Errors
 * "Invalid OpenGLControlLoopHandle specified. "; "Valid data pointer must be provided to take snapshot. ";
 * "Snapshot sizes must not be negative. "; "The snapshot is too large. ";
 * "A control loop without a size takes no snapshots. "; "Could not generate render target. " where OpenGL
 * refuses the size, with the reason in the library log; "An OpenGL error in the snapshot occured: ..."; the
 * error that ends the render thread meanwhile; "The rendering thread of the control loop has ended. ";
 * "The control loop is being deleted. "; from a function on the render thread the system's text for a
 * resource deadlock. After an error the memory holds no picture.
 * @thread Any thread but the loop's render thread.
 */
OCT_API void snapshotOpenGLControlLoop(OpenGLControlLoopHandle Handle, int Width, int Height, void* Data);

/**
 * @brief snapshotOpenGLControlLoop() with pixels in the order that a program wants them in. No order costs a copy.
 * @param Handle The loop.
 * @param Width Pixels; 0 draws nothing.
 * @param Height Pixels; 0 draws nothing.
 * @param Format An OctPixelFormat, as for finishOffscreenFrameAs().
 * @param Data Receives Width * Height * 4 bytes, without gaps between the rows.
 * @par Errors
 * "Invalid pixel format selected. "; otherwise as snapshotOpenGLControlLoop().
 * @thread Any thread but the loop's render thread.
 * @since 0.2
 */
OCT_API void snapshotOpenGLControlLoopAs(OpenGLControlLoopHandle Handle, int Width, int Height, int Format,
                                         void* Data);

/**
 * @brief Sets the size of the frames. A loop starts without one: it draws nothing, and in mode 0 drops
 * requests.
 * @param Handle The loop.
 * @param Width Pixels; 0 draws nothing.
 * @param Height Pixels; 0 draws nothing.
 * @par Errors
 * "Invalid OpenGLControlLoopHandle specified. "
 * @thread Any thread; takes effect at the next frame.
 */
OCT_API void resizeOpenGLControlLoop(OpenGLControlLoopHandle Handle, unsigned int Width, unsigned int Height);

/**
 * @brief Sets how requests are served.
 * @param Handle The loop.
 * @param Mode An OctLoopMode. 0: every request is drawn once. 1 (the start): all requests are drawn in turn, for ever, as
 * fast as the client takes the frames. 2: the first request is drawn again and again; in force during
 * snapshots and not meant for clients. A mode that is set during a snapshot holds when the snapshot ends.
 * With nothing to draw a loop sleeps in every mode.
 * @par Errors
 * "Invalid OpenGLControlLoopHandle specified. "
 * @thread Any thread.
 */
OCT_API void OpenGLControlLoopMode(OpenGLControlLoopHandle Handle, unsigned int Mode);

/**
 * @brief Checks the handle and does nothing else. A frame is given back by returning
 * from the image-ready function.
 * @param Handle The loop.
 * @par Errors
 * "Invalid OpenGLControlLoopHandle specified. "
 * @thread Any thread.
 */
OCT_API void unlockBuffer(OpenGLControlLoopHandle Handle);

/**
 * @brief Draws a coloured triangle into the current context, turned one degree further at every call.
 * @par Errors
 * "No OpenGL context is current on the calling thread. "; "Could not load OpenGL. "
 * @thread A thread with an OpenGL context current that has the fixed-function pipeline.
 */
OCT_API void glRenderTestImage(void);

/**
 * @brief Makes a surface of the kind that the loop's frames have.
 * @param Handle The loop.
 * @param Width Pixels, 1 or more.
 * @param Height Pixels, 1 or more.
 * @return IDirect3DSurface9* (X8R8G8B8, a render target) or OctHostSurface*, to be freed with
 * destroyDXSurface(); null on failure. It may outlive the loop.
 * @par Errors
 * "Invalid OpenGLControlLoopHandle specified. "; "A surface must not be empty. ";
 * "The surface is too large. "; "Could not generate render target. "; "The graphics device was removed. ";
 * "Ressouce sharing between OpenGL and DirectX not supported. " where no loop has Direct3D surfaces.
 * @thread Any thread.
 */
OCT_API void* createDXSurface(OpenGLControlLoopHandle Handle, unsigned int Width, unsigned int Height);

/**
 * @brief Copies a whole surface into another, stretched without a filter where sizes differ.
 * @param Handle A loop with surfaces of this kind; in host memory of the same pixel format, too (setHostPixelFormat()).
 * @param Source A surface of createDXSurface() or, while an image-ready function runs, its frame's.
 * @param Destination As Source; mostly a surface of createDXSurface().
 * @par Errors
 * "Invalid OpenGLControlLoopHandle specified. "; "A surface to copy must not be null. ";
 * "The specified surface is unknown. "; "The surface is of another kind than those of the loop. ";
 * "Could not copy the surface: ...", with Direct3D's answer, or because the two were made on different devices,
 * one of which was removed since.
 * @thread Any thread; nobody else may write either surface meanwhile.
 */
OCT_API void copyDXSurface(OpenGLControlLoopHandle Handle, void* Source, void* Destination);

/**
 * @brief Frees a surface of createDXSurface(), before its loop or after it. Waits for copies of it that other
 * threads are making.
 * @param Handle Any loop, also one that has been deleted; not null.
 * @param Surface The surface.
 * @par Errors
 * "Invalid OpenGLControlLoopHandle specified. "; "The specified surface is unknown. "; for an unknown surface with
 * the handle of no living loop "The handle is not valid. ".
 * @thread Any thread.
 */
OCT_API void destroyDXSurface(OpenGLControlLoopHandle Handle, void* Surface);

/**
 * @brief Makes a control and leaves its context current on the calling thread; after a failure, what was current
 * before.
 * @return The control, to be freed with deleteUniversalOpenGLControl(); null on failure.
 * @par Errors
 * "Cannot properly create an OpenGLControl." (no context, or no surface sharing, within a second); reasons of
 * the window system; "OpenGL 3.3 required. Version is currently ..."
 * @thread Any thread; that thread owns the control.
 */
OCT_API OpenGLControlHandle createUniversalOpenGLControl(void);

/**
 * @brief Frees a control. The thread keeps the context that is current; in place of the control's own one it gets
 * back what was current before createUniversalOpenGLControl().
 * @param Handle The control; null is ignored.
 * @thread The thread that created the control.
 */
OCT_API void deleteUniversalOpenGLControl(OpenGLControlHandle Handle);

/**
 * @brief Checks the handle and does nothing else.
 * @param Handle The control.
 * @par Errors
 * "The specified OpenGLControlHandle is invalid. "
 * @thread Any thread.
 */
OCT_API void beforeRender(OpenGLControlHandle Handle);

/** @brief As beforeRender(). @param Handle The control. @thread Any thread. */
OCT_API void updateBuffer(OpenGLControlHandle Handle);

/** @brief As beforeRender(); returns no data. @param Handle The control. @thread Any thread. */
OCT_API void readBuffer(OpenGLControlHandle Handle);

/**
 * @brief Makes the control's context current and draws a coloured triangle, turned one
 * degree further before every call.
 * @param Handle The control.
 * @par Errors
 * "The specified OpenGLControlHandle is invalid. "
 * @thread The thread that created the control.
 */
OCT_API void renderTestImage(OpenGLControlHandle Handle);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* OCT_RENDERING_HOSTING_H */
