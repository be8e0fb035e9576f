/**
 * @file oct_rendering.h
 * @brief Rendering of optical coherence tomography (OCT) images: the complete public interface.
 *
 * The library draws into whatever OpenGL framebuffer is bound when a render function is called. All functions
 * are plain C functions over opaque handles; the header compiles as C99 and as C++.
 *
 * @section errors Errors
 * No exception leaves a function. A function that fails writes "An error occured: " and the reason as one line
 * to the standard error stream, keeps the reason as the *pending error* of the calling thread, and returns its
 * neutral result (null, 0 or nothing). Poll with isRendererError(), read and clear with getRendererError(). The
 * first error of a thread stays until it is read; later errors of that thread reach the standard error stream
 * only. Reasons end in one blank where they are shown with one below.
 *
 * @section misuse Misuse
 * A negative size or count, null data with a size above zero, sizes whose product is not addressable and an
 * overlay index out of range are refused with a clear reason and change nothing. A handle is checked against
 * null only: using a handle after it was cleared is undefined.
 *
 * @section threads Threads
 * Every function names its thread rule. "Any thread" means that the function may run while another thread
 * renders with the same handle. "Rendering thread" means the thread whose OpenGL context is current; init,
 * render and uninit of one renderer need the same context current (OpenGL 3.3 or later, core or compatibility).
 *
 * @section words Words
 * An A-scan is one depth profile; a B-scan is a row of A-scans. Images are arrays of 32-bit floats with depth
 * (axial direction) fastest in memory: sample z of A-scan x lies at index x * Size1 + z, where Size1 is the
 * number of samples per A-scan and Size2 the number of A-scans.
 */
#ifndef OCT_RENDERING_H
#define OCT_RENDERING_H

#ifndef __cplusplus
#include <stdbool.h>
#endif

#if defined(OCT_RENDERING_BUILD)
#if defined(_WIN32)
#define OCT_API /* the export list of the linker decides; an attribute here would export a second time */
#else
#define OCT_API __attribute__((visibility("default")))
#endif
#elif defined(_WIN32)
#define OCT_API __declspec(dllimport)
#else
#define OCT_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** @brief A renderer of B-scans. Null is the invalid handle. */
typedef struct OctDisplayRendering* DisplayRenderingHandle;

/** @brief A source of live volumes. Null is the invalid handle. */
typedef struct OctLiveDataSource* LiveDataSourceHandle;

/** @brief An offscreen framebuffer with an OpenGL context of its own. Null is the invalid handle. */
typedef struct OctOffscreenTarget* OffscreenTargetHandle;

/** @brief A set of render targets with an OpenGL context of its own. Null is the invalid handle. */
typedef struct OctOpenGLControl* OpenGLControlHandle;

/** @brief A control loop: two threads that draw frames and hand them over. Null is the invalid handle. */
typedef struct OctOpenGLControlLoop* OpenGLControlLoopHandle;

/** @brief Receives the text of an error; the text is valid until the callback returns. */
typedef void (*OctErrorFunction)(const char* message);

/** @brief Called once on the render thread of a control loop, at its start or at its end. */
typedef void (*OctLoopFunction)(void);

/** @brief Draws the frame of a request into the current OpenGL context, on the render thread. */
typedef void (*OctRenderFunction)(unsigned int id);

/**
 * @brief Receives a finished frame on the return thread: its key (the id of the request), its size in pixels, and
 *        its surface, which nobody draws into until the function returns.
 */
typedef void (*OctImageReadyFunction)(unsigned int index, unsigned int width, unsigned int height, void* surface);

/**
 * @brief A surface in host memory. Pixels have 8 bits each of blue, green, red and alpha, in this order; the first
 *        row is the bottom one.
 */
typedef struct OctHostSurface {
  unsigned int width;        /**< pixels */
  unsigned int height;       /**< pixels */
  unsigned int stride_bytes; /**< from one row to the next */
  unsigned char* pixels;
} OctHostSurface;

/** @brief Result of the error functions while an error is pending: 0xE0000000 as a signed 32-bit number. */
#define OCT_RENDERER_ERROR (-536870912)

/** @brief Number of overlay layers that a display renderer holds. */
#define OCT_DISPLAY_OVERLAYS 8

/* ---------------------------------------------------------------------------------------------------------- */
/** @defgroup library Library */
/** @{ */

/**
 * @brief Version of the library.
 * @return "major.minor.patch", in static storage that lives as long as the library is loaded. Never fails.
 * @thread Any thread.
 */
OCT_API const char* getRendererVersion(void);

/**
 * @brief Tells whether an error is pending, of any thread. Consumes nothing.
 * @return OCT_RENDERER_ERROR while an error is pending, else 0.
 * @thread Any thread.
 */
OCT_API int isRendererError(void);

/**
 * @brief Reads and clears one pending error: the calling thread's own, else that of the thread with the lowest
 *        identifier.
 * @param Message Receives the text with its terminating NUL, at most @p Size bytes in all; a longer text is
 *        cut. Null discards the text. Untouched when no error is pending. A text that concerns the whole process
 *        ("Processor with SSE 4.2 required for proper operation.") stays pending after it was read.
 * @param Size Size of @p Message in bytes; with 0 or less nothing is written.
 * @return OCT_RENDERER_ERROR when an error was pending, else 0.
 * @thread Any thread.
 */
OCT_API int getRendererError(char* Message, int Size);

/**
 * @brief Sets the file that the library log is appended to, for every process that has the library loaded.
 * @param FileName Path of the file as a NUL-terminated string of at most 1024 bytes; null or empty: no file. The
 *        text is copied. A file that cannot be opened loses the log, nothing else.
 * @par Errors
 * "Filename for logging is too long. Filename is limited to 1024 characters. "
 * @thread Any thread.
 */
OCT_API void setRendererLogFile(const char* FileName);

/**
 * @brief Sets the function that a live data source calls with its errors.
 * @param DataSource The source.
 * @param Callback Called on the source's acquisition thread; null removes the function set before.
 * @par Errors
 * "The specified LiveDataSourceHandle is invalid. "
 * @thread Any thread, while the source is not running.
 */
OCT_API void setErrorCallback(LiveDataSourceHandle DataSource, OctErrorFunction Callback);

/** @} */
/* ---------------------------------------------------------------------------------------------------------- */
/**
 * @defgroup display Display of B-scans
 *
 * Order of calls: createDisplayRendering(); with the context current initDisplayRendering(); settings at any time
 * from any thread; renderDisplay() per frame; with the context current uninitDisplayRendering();
 * clearDisplayRendering().
 *
 * The picture fills the current viewport. Depth runs down the screen and A-scans run to the right. A pixel that
 * covers several samples shows the mean of as many, from the sample below its centre on. A sample v is coloured by the colour map at
 * (v - Lower) / (Upper - Lower): 0 and below is its first entry, 1 and above its last, linear in between.
 *
 * Every function refuses a null handle with "Invalid DisplayRenderingHandle specified. ", except
 * clearDisplayRendering(), which ignores it.
 */
/** @{ */

/**
 * @brief Makes a renderer of B-scans. Does no OpenGL work.
 * @return The renderer, to be freed with clearDisplayRendering(); null on failure.
 * @thread Any thread.
 */
OCT_API DisplayRenderingHandle createDisplayRendering(void);

/**
 * @brief Frees a renderer. Call uninitDisplayRendering() first; OpenGL objects that are still held are deleted
 *        when their context is current and otherwise left to die with it.
 * @param Handle The renderer; null is ignored.
 * @thread Any thread, after every other call with this handle has returned.
 */
OCT_API void clearDisplayRendering(DisplayRenderingHandle Handle);

/**
 * @brief Builds programs, buffers and textures in the current context. Loads OpenGL on the first call of the
 *        process. Calling it again rebuilds them.
 * @param Handle The renderer.
 * @par Errors
 * "Invalid DisplayRenderingHandle specified. "; "Could not load OpenGL. "; "OpenGL 3.0 required. Version is
 * currently ..."; "No OpenGL context is current on the calling thread. "; "Vertex shader compilation failed";
 * "Fragment shader compilation failed"; "" (a program did not link, see the log); "Could not create OpenGL
 * buffer. "; "An OpenGL error in ... occured: ...". After an error the renderer is not initialised.
 * @thread Rendering thread.
 */
OCT_API void initDisplayRendering(DisplayRenderingHandle Handle);

/**
 * @brief Deletes what initDisplayRendering() built. Settings and images stay. Does nothing when not initialised.
 * @param Handle The renderer.
 * @par Errors
 * "Invalid DisplayRenderingHandle specified. "; "An OpenGL error in DisplayRenderer::uninit occured: ..."
 * @thread Rendering thread, with the context of initDisplayRendering() current.
 */
OCT_API void uninitDisplayRendering(DisplayRenderingHandle Handle);

/**
 * @brief Draws one frame into the current framebuffer and viewport. Clears the framebuffer with the background
 *        colour first. Before initDisplayRendering() it draws nothing and writes to the library log.
 * @param Handle The renderer.
 * @par Errors
 * "Invalid DisplayRenderingHandle specified. "; "No OpenGL context is current on the calling thread. "; "Cannot
 * generate a texture of the required size. " (no image was set, or it is larger than the driver allows); "Invalid
 * texture for rendering...."; "Could not create OpenGL buffer."; "An OpenGL error in ... occured: ..."
 * @thread Rendering thread. Image setters of other threads wait until the frame is drawn.
 */
OCT_API void renderDisplay(DisplayRenderingHandle Handle);

/**
 * @brief Sets the image. New dimensions also reset the upper display bound to @p Size1.
 * @param Handle The renderer.
 * @param Size1 Samples per A-scan (depth), 0 or more.
 * @param Size2 Number of A-scans, 0 or more.
 * @param Data Size1 * Size2 floats, depth fastest, any unit; copied before the call returns.
 * @par Errors
 * "Invalid DisplayRenderingHandle specified. "; "Image sizes must not be negative. "; "Image data must not be
 * null. "; "The image is too large. "
 * @thread Any thread; waits while a frame of this renderer is being drawn.
 */
OCT_API void setDisplayData(DisplayRenderingHandle Handle, int Size1, int Size2, const float* Data);

/**
 * @brief Stores the displayed index range along the depth axis. Kept for clients; the picture shows the whole
 *        image whatever it is.
 * @param Handle The renderer.
 * @param Lower First sample index; not checked.
 * @param Upper Index behind the last sample; not checked.
 * @par Errors
 * "Invalid DisplayRenderingHandle specified. "
 * @thread Any thread; waits while a frame of this renderer is being drawn.
 */
OCT_API void setDisplayBounds(DisplayRenderingHandle Handle, int Lower, int Upper);

/**
 * @brief Checks the handle and does nothing else. The image stays.
 * @param Handle The renderer.
 * @par Errors
 * "Invalid DisplayRenderingHandle specified. "
 * @thread Any thread.
 */
OCT_API void clearDisplayData(DisplayRenderingHandle Handle);

/**
 * @brief Checks the handle and does nothing else.
 * @param Handle The renderer.
 * @param Gamma Ignored.
 * @par Errors
 * "Invalid DisplayRenderingHandle specified. "
 * @thread Any thread.
 */
OCT_API void setGammaCorrection(DisplayRenderingHandle Handle, float Gamma);

/**
 * @brief Switches two Gaussian smoothings of the image, each 5 by 5 samples with the weights 0.1, 0.2, 0.4, 0.2,
 *        0.1 along either axis. The first runs before the pepper filter, the second after it.
 * @param Handle The renderer.
 * @param First Non-zero switches the first smoothing on, 0 off (the start).
 * @param Second The same for the second smoothing.
 * @par Errors
 * "Invalid DisplayRenderingHandle specified. "
 * @thread Any thread; takes effect at the next frame.
 */
OCT_API void setDisplayBlur(DisplayRenderingHandle Handle, int First, int Second);

/**
 * @brief Turns the picture upside down, for probes that look upwards.
 * @param Handle The renderer.
 * @param Flip Non-zero: depth runs up the screen; 0 (the start): down.
 * @par Errors
 * "Invalid DisplayRenderingHandle specified. "
 * @thread Any thread; takes effect at the next frame.
 */
OCT_API void setDisplayFlip(DisplayRenderingHandle Handle, int Flip);

/**
 * @brief Checks the handle and does nothing else: a pixel always shows the mean of the samples that it covers.
 * @param Handle The renderer.
 * @param Reduction Ignored.
 * @par Errors
 * "Invalid DisplayRenderingHandle specified. "
 * @thread Any thread.
 */
OCT_API void setDisplayDynamicReduction(DisplayRenderingHandle Handle, int Reduction);

/**
 * @brief Switches the pepper filter: a sample below the mean of its 3 by 3 neighbourhood becomes that mean.
 * @param Handle The renderer.
 * @param Enable Non-zero: on; 0 (the start): off.
 * @par Errors
 * "Invalid DisplayRenderingHandle specified. "
 * @thread Any thread; takes effect at the next frame.
 */
OCT_API void setDisplayPepperFilter(DisplayRenderingHandle Handle, int Enable);

/**
 * @brief Checks its arguments and does nothing else.
 * @param Handle The renderer.
 * @param MedianFilter 0, 1 or 2.
 * @par Errors
 * "Invalid DisplayRenderingHandle specified. "; "Invalid enum value specified for MedianFilter. "
 * @thread Any thread.
 */
OCT_API void setDisplayMedianFilter(DisplayRenderingHandle Handle, int MedianFilter);

/**
 * @brief Sets the colour that the framebuffer is cleared with.
 * @param Handle The renderer.
 * @param Color 0xRRGGBB; the start is black.
 * @par Errors
 * "Invalid DisplayRenderingHandle specified. "
 * @thread Any thread; takes effect at the next frame.
 */
OCT_API void setBackgroundColor(DisplayRenderingHandle Handle, int Color);

/**
 * @brief Sets the colour map of the image. The start is a ramp from black to white.
 * @param Handle The renderer.
 * @param Colormap @p Count colours of four bytes each: red, green, blue, alpha; copied before the call returns.
 * @param Count Number of colours, from 1 to the driver's texture limit (16384 on most).
 * @par Errors
 * "Invalid DisplayRenderingHandle specified. "; "The number of colours must not be negative. "; "Colour map data
 * must not be null. ". A count above the driver's limit is reported by the next renderDisplay().
 * @thread Any thread; takes effect, whole, at the next frame.
 */
OCT_API void setDisplayColormap(DisplayRenderingHandle Handle, const void* Colormap, int Count);

/**
 * @brief Sets which sample values the ends of the colour map stand for. The start is 0 and 1.
 * @param Handle The renderer.
 * @param Lower Value of the first colour, in the unit of the image.
 * @param Upper Value of the last colour. Below @p Lower: the map is inverted. Equal: not checked, the colours
 *        are then undefined.
 * @par Errors
 * "Invalid DisplayRenderingHandle specified. "
 * @thread Any thread; both values take effect together at the next frame.
 */
OCT_API void setDisplayColoringBoundaries(DisplayRenderingHandle Handle, double Lower, double Upper);

/**
 * @brief Switches the first overlays on and the others off. The start is none.
 * @param Handle The renderer.
 * @param Unused Ignored.
 * @param Count Number of overlays to draw; at most OCT_DISPLAY_OVERLAYS exist.
 * @par Errors
 * "Invalid DisplayRenderingHandle specified. "
 * @thread Any thread; takes effect at the next frame.
 */
OCT_API void setDisplayNumberOverlays(DisplayRenderingHandle Handle, int Unused, int Count);

/**
 * @brief Sets the one image that all overlays draw, each with its own colours. It is stretched over the base
 *        image and may have other dimensions.
 * @param Handle The renderer.
 * @param Size1 Samples per A-scan (depth), 0 or more.
 * @param Size2 Number of A-scans, 0 or more.
 * @param Data Size1 * Size2 floats, depth fastest; copied before the call returns.
 * @par Errors
 * As setDisplayData().
 * @thread Any thread; waits while a frame of this renderer is being drawn.
 */
OCT_API void setDisplayOverlayData(DisplayRenderingHandle Handle, int Size1, int Size2, const float* Data);

/**
 * @brief Sets the colour map of one overlay; its alpha blends the overlay over what was drawn before. The start
 *        is a ramp from black to white, opaque.
 * @param Handle The renderer.
 * @param Overlay Index of the overlay, 0 to OCT_DISPLAY_OVERLAYS - 1.
 * @param Colormap As setDisplayColormap().
 * @param Count As setDisplayColormap().
 * @par Errors
 * As setDisplayColormap(); "The overlay index must be from 0 to 7. "
 * @thread Any thread; takes effect, whole, at the next frame.
 */
OCT_API void setDisplayOverlayColormap(DisplayRenderingHandle Handle, int Overlay, const void* Colormap, int Count);

/**
 * @brief Sets which overlay values the ends of an overlay's colour map stand for. The start is 0 and 1.
 * @param Handle The renderer.
 * @param Overlay Index of the overlay, 0 to OCT_DISPLAY_OVERLAYS - 1.
 * @param Lower As setDisplayColoringBoundaries().
 * @param Upper As setDisplayColoringBoundaries().
 * @par Errors
 * "Invalid DisplayRenderingHandle specified. "; "The overlay index must be from 0 to 7. "
 * @thread Any thread; both values take effect together at the next frame.
 */
OCT_API void setDisplayOveralyColoringBoundaries(DisplayRenderingHandle Handle, int Overlay, double Lower,
                                                 double Upper);

/**
 * @brief Sets the base image value below which no overlay is drawn, so that overlays keep to the tissue. One
 *        threshold serves all overlays. The start is 0.
 * @param Handle The renderer.
 * @param Threshold In the unit of the base image; compared with the image after its filters.
 * @par Errors
 * "Invalid DisplayRenderingHandle specified. "
 * @thread Any thread; takes effect at the next frame.
 */
OCT_API void setDisplayOveralyThreshold(DisplayRenderingHandle Handle, double Threshold);

/** @} */
/* ---------------------------------------------------------------------------------------------------------- */
/**
 * @defgroup offscreen Offscreen target
 *
 * A hidden window, an OpenGL context and a framebuffer (8 bits per colour channel, 24 bits of depth) for programs
 * that want pixels and have no OpenGL of their own:
 *
 *     OffscreenTargetHandle target = createOffscreenTarget();
 *     initDisplayRendering(renderer);
 *     beginOffscreenFrame(target, width, height);
 *     renderDisplay(renderer);
 *     finishOffscreenFrame(target, pixels);
 *
 * All functions of one target run on the thread that created it. Every function refuses a null handle with
 * "Invalid OffscreenTargetHandle specified. ", except clearOffscreenTarget(), which ignores it.
 */
/** @{ */

/**
 * @brief Makes a hidden window with an OpenGL context and leaves the context current on the calling thread.
 * @return The target, to be freed with clearOffscreenTarget(); null on failure.
 * @par Errors
 * "An error occured. Could not create hidden window for OpenGL output: ..." and the other reasons of the window
 * system; "Could not load OpenGL. "; "OpenGL 3.3 required. Version is currently ..."
 * @thread Any thread; that thread owns the target.
 */
OCT_API OffscreenTargetHandle createOffscreenTarget(void);

/**
 * @brief Deletes framebuffer, context and window. Uninitialise renderers of this context first.
 * @param Handle The target; null is ignored.
 * @par Errors
 * Reasons of the window system.
 * @thread The thread that created the target.
 */
OCT_API void clearOffscreenTarget(OffscreenTargetHandle Handle);

/**
 * @brief Makes the context current, makes the framebuffer the one that is drawn to and sets the viewport to its
 *        whole size. The contents are undefined until something clears them.
 * @param Handle The target.
 * @param Width Width in pixels, 1 to the driver's renderbuffer limit (16384 on most).
 * @param Height Height in pixels, likewise.
 * @par Errors
 * "Invalid OffscreenTargetHandle specified. "; "An OpenGL error in beginOffscreenFrame occured: ..."; "The
 * offscreen framebuffer is not complete: ..."
 * @thread The thread that created the target.
 */
OCT_API void beginOffscreenFrame(OffscreenTargetHandle Handle, unsigned int Width, unsigned int Height);

/**
 * @brief Ends the frame and, if asked, reads its pixels.
 * @param Handle The target.
 * @param Pixels Receives Width * Height * 4 bytes: rows bottom row first, each pixel blue, green, red, alpha.
 *        Null: nothing is read.
 * @par Errors
 * "Invalid OffscreenTargetHandle specified. "; "No offscreen frame has been begun. "; "An OpenGL error in
 * finishOffscreenFrame occured: ..."
 * @thread The thread that created the target.
 */
OCT_API void finishOffscreenFrame(OffscreenTargetHandle Handle, void* Pixels);

/** @} */

/* ---------------------------------------------------------------------------------------------------------- */
/**
 * @defgroup hosting Control loops
 *
 * A control loop draws on a render thread of its own, with an OpenGL context of its own, and hands finished frames
 * over on a return thread:
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
 * Frames rotate through three buffers. A buffer whose frame the client has not got yet, or is still looking at, is
 * not drawn into: the render thread is at most three frames ahead and then waits. docs/hosting.md says what may be
 * called where.
 *
 * Functions of a loop refuse a null handle with "Invalid OpenGLControlLoopHandle specified. ", those of a control,
 * except deleteUniversalOpenGLControl(), with "The specified OpenGLControlHandle is invalid. ".
 */
/** @{ */

/**
 * @brief Chooses what the hand-off buffers of the controls and loops created from now on are made of. There is no
 *        falling back from one to the other.
 * @param Sharing 0: Direct3D 9Ex surfaces, shared with OpenGL by WGL_NV_DX_interop (Windows only, the start there);
 *        an image-ready function gets an IDirect3DSurface9*. 1: host memory (the start elsewhere); it gets an
 *        OctHostSurface*.
 * @par Errors
 * "Invalid surface sharing selected. "; on systems without Direct3D "Ressouce sharing between OpenGL and DirectX not
 * supported. "
 * @thread Any thread.
 */
OCT_API void setSurfaceSharing(int Sharing);

/**
 * @brief Starts the thread that owns the hidden windows of all controls. Without it every first control starts that
 *        thread and every last one ends it. Does nothing when called again.
 * @par Errors
 * Reasons of the window system.
 * @thread Any thread, before the first control or loop is created.
 */
OCT_API void prepareOpenGL(void);

/**
 * @brief Ends what prepareOpenGL() started, at the latest when the last control is gone. Does nothing when called
 *        again.
 * @thread Any thread but the callbacks' ones, after the last control and loop was deleted.
 */
OCT_API void finishOpenGL(void);

/**
 * @brief Makes a loop without init, uninit and error functions. Returns when its render thread is up.
 * @return The loop, to be freed with deleteOpenGLControlLoop(); null on failure. A loop whose render thread could
 *        not be set up draws nothing; the reason is in the library log.
 * @thread Any thread.
 */
OCT_API OpenGLControlLoopHandle createOpenGLControlLoop(void);

/**
 * @brief Makes a loop that tells about its render thread.
 * @param Init Called on the render thread with the context current, before the first frame; may still be running
 *        when this function returns. Null: none.
 * @param Uninit Called on the render thread with the context current, after the last frame and the last image-ready
 *        call. Not called when the render thread ended with an error. Null: none.
 * @param Error Called on the render thread with the reason when an error ends it, among them "Cannot properly create
 *        an OpenGLControl.", "Could not generate render target. " and "Rendering could not finish within one second. ".
 * @return As createOpenGLControlLoop().
 * @thread Any thread.
 */
OCT_API OpenGLControlLoopHandle createOpenGLControlLoopCB(OctLoopFunction Init, OctLoopFunction Uninit,
                                                          OctErrorFunction Error);

/**
 * @brief Ends both threads of a loop and frees it. A running snapshot is finished first; frames that wait are
 *        dropped. From the line "OpenGL control loop finished. Callbacks can be freed now. " on the standard output
 *        on, no function of the client is called any more.
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
 * "Invalid OpenGLControlLoopHandle specified. "
 * @thread Any thread, but not from inside a render function; waits until the one before has returned.
 */
OCT_API void registerOpenGLControlLoopRenderCallback(OpenGLControlLoopHandle Handle, OctRenderFunction Render);

/**
 * @brief Sets the function that receives the frames.
 * @param Handle The loop.
 * @param ImageReady Called on the return thread, smallest waiting key first. Null removes the function set before.
 * @par Errors
 * "Invalid OpenGLControlLoopHandle specified. "
 * @thread Any thread, but not from inside an image-ready function; waits until the one before has returned.
 */
OCT_API void registerOpenGLControlLoopCallback(OpenGLControlLoopHandle Handle, OctImageReadyFunction ImageReady);

/**
 * @brief Asks for a frame with id 0 and returns at once. An id that is waiting already is not added again. Every
 *        call leaves a line in the file render_calls.txt in C:\tmp (Linux: /tmp), where that can be written.
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
 * @brief Draws a frame of any size into client memory and returns when it is there. Does nothing while another
 *        snapshot of this loop is running. A loop without a size draws the snapshot when it gets one.
 * @param Handle The loop.
 * @param Width Pixels, 0 or more.
 * @param Height Pixels, 0 or more.
 * @param Data Receives Width * Height * 4 bytes: blue, green, red, alpha; bottom row first.
 * @par Errors
 * "Invalid OpenGLControlLoopHandle specified. "; "Valid data pointer must be provided to take snapshot. "; "Snapshot
 * sizes must not be negative. "; "The snapshot is too large. "; "The rendering thread of the control loop has ended.
 * "; from a function on the render thread the system's text for a resource deadlock.
 * @thread Any thread but the loop's render thread.
 */
OCT_API void snapshotOpenGLControlLoop(OpenGLControlLoopHandle Handle, int Width, int Height, void* Data);

/**
 * @brief Sets the size of the frames. A loop starts without one: it drops requests and draws nothing.
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
 * @param Mode 0: every request is drawn once. 1 (the start): all requests are drawn in turn, for ever, as fast as
 *        the client takes the frames. 2: the first request is drawn again and again; meant for snapshots, which set
 *        and leave it on their own. While mode 2 is in force another mode is kept until the snapshot ends.
 * @par Errors
 * "Invalid OpenGLControlLoopHandle specified. "
 * @thread Any thread.
 */
OCT_API void OpenGLControlLoopMode(OpenGLControlLoopHandle Handle, unsigned int Mode);

/**
 * @brief Checks the handle and does nothing else. A frame is given back by returning from the image-ready function.
 * @param Handle The loop.
 * @par Errors
 * "Invalid OpenGLControlLoopHandle specified. "
 * @thread Any thread.
 */
OCT_API void unlockBuffer(OpenGLControlLoopHandle Handle);

/**
 * @brief Draws a coloured triangle into the current context, turned one degree further at every call.
 * @par Errors
 * "No OpenGL context is current on the calling thread. "
 * @thread A thread with an OpenGL context current that has the fixed-function pipeline.
 */
OCT_API void glRenderTestImage(void);

/**
 * @brief Makes a surface of the kind that the loop's frames have.
 * @param Handle The loop.
 * @param Width Pixels, 1 or more.
 * @param Height Pixels, 1 or more.
 * @return IDirect3DSurface9* (X8R8G8B8, a render target) or OctHostSurface*, to be freed with destroyDXSurface();
 *        null on failure. It may outlive the loop.
 * @par Errors
 * "Invalid OpenGLControlLoopHandle specified. "; "A surface must not be empty. "; "The surface is too large. ";
 * "Could not generate render target. "; "An error occured creating the Direct 3D device. "
 * @thread Any thread.
 */
OCT_API void* createDXSurface(OpenGLControlLoopHandle Handle, unsigned int Width, unsigned int Height);

/**
 * @brief Copies a whole surface into another, stretched without a filter where sizes differ.
 * @param Handle The loop.
 * @param Source A surface of createDXSurface() or, inside an image-ready function, the frame's.
 * @param Destination A surface of createDXSurface().
 * @par Errors
 * "Invalid OpenGLControlLoopHandle specified. "; "A surface to copy must not be null. "; "Could not copy the surface. "
 * @thread Any thread; nobody else may write either surface meanwhile.
 */
OCT_API void copyDXSurface(OpenGLControlLoopHandle Handle, void* Source, void* Destination);

/**
 * @brief Frees a surface of createDXSurface().
 * @param Handle The loop.
 * @param Surface The surface.
 * @par Errors
 * "Invalid OpenGLControlLoopHandle specified. "; "The specified surface is unknown. "
 * @thread Any thread.
 */
OCT_API void destroyDXSurface(OpenGLControlLoopHandle Handle, void* Surface);

/**
 * @brief Makes a control and leaves its context current on the calling thread.
 * @return The control, to be freed with deleteUniversalOpenGLControl(); null on failure.
 * @par Errors
 * "Cannot properly create an OpenGLControl." (no context, or no surface sharing, within a second); reasons of the
 * window system; "OpenGL 3.3 required. Version is currently ..."
 * @thread Any thread; that thread owns the control.
 */
OCT_API OpenGLControlHandle createUniversalOpenGLControl(void);

/**
 * @brief Frees a control.
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
 * @brief Makes the control's context current and draws a coloured triangle, turned one degree further before every
 *        call.
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

#endif /* OCT_RENDERING_H */
