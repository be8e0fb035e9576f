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

/** @brief A renderer of volumes. Null is the invalid handle. */
typedef struct OctVolumeRenderer* VolumeRendererHandle;

/** @brief A volume that a client uploads. Null is the invalid handle. */
typedef struct OctOfflineRendering* OfflineRenderingHandle;

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
 * @thread Any thread. The function that was set before may be running when this returns.
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
 * @defgroup volume Volume renderer
 *
 * Draws a volume, and the scene around it, into the current framebuffer and viewport. The volume itself comes from
 * an owner that the renderer is attached to: see @ref offline.
 *
 * Order of calls: createVolumeRenderer(); with the context current initializeVolumeRenderer(); settings at any time
 * from any thread; frames through the owner; with the context current uninitializeVolumeRenderer() and
 * deleteVolumeRenderer().
 *
 * The volume fills a box with corners at -1 and 1 on the model's axes: y is the axial direction (depth, downwards on
 * screen), x and z are the lateral ones. The box is scaled to the physical range, so that its half diagonal is 2
 * whatever the unit. The camera looks at it from a distance of 5.
 *
 * A frame covers the whole viewport with an opaque picture, translucent volumes included: alpha is 255 everywhere.
 *
 * A voxel v is coloured by a colour map at (v - Lower) / (Upper - Lower); alpha is opacity. Four colour maps exist:
 * of the volume, of the secondary data, of the overlay volume and of the surface. They live from
 * initializeVolumeRenderer() to uninitializeVolumeRenderer(); setting colours or boundaries outside of that does
 * nothing. Each starts as an opaque ramp from black to white with the boundaries 0 and 1.
 *
 * Every function with a handle refuses null with "The specified VolumeRendererHandle is invalid. ".
 */
/** @{ */

/**
 * @brief Makes a volume renderer. Does no OpenGL work.
 * @return The renderer, to be freed with deleteVolumeRenderer(); null on failure.
 * @thread Any thread.
 */
OCT_API VolumeRendererHandle createVolumeRenderer(void);

/**
 * @brief Frees a renderer. Waits for a frame that is being drawn. Objects that refer to the renderer must be cleared
 *        before. OpenGL objects that are still held are deleted when their context is current and otherwise left to
 *        die with it.
 * @param Handle The renderer.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Rendering thread, after every other call with this handle has returned.
 */
OCT_API void deleteVolumeRenderer(VolumeRendererHandle Handle);

/**
 * @brief Builds programs and textures in the current context, and the colour maps. Loads OpenGL on the first call of
 *        the process. Calling it again rebuilds them and keeps the colours.
 * @param Handle The renderer.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "; "Could not load OpenGL. "; "OpenGL 3.0 required. Version is
 * currently ..."; "No OpenGL context is current on the calling thread. "; "Vertex shader compilation failed";
 * "Fragment shader compilation failed"; "" (a program did not link, see the log); "An OpenGL error in ... occured:
 * ...". After an error the renderer is not initialised.
 * @thread Rendering thread.
 */
OCT_API void initializeVolumeRenderer(VolumeRendererHandle Handle);

/**
 * @brief Deletes programs, textures and colour maps. The other settings stay. Does nothing when not initialised.
 * @param Handle The renderer.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Rendering thread, with the context of initializeVolumeRenderer() current.
 */
OCT_API void uninitializeVolumeRenderer(VolumeRendererHandle Handle);

/**
 * @brief Forgets the volume and shows neither volume nor surface until the owner or setRenderElements() says so.
 * @param Handle The renderer.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits while a frame is being drawn.
 */
OCT_API void clearVolumeRenderer(VolumeRendererHandle Handle);

/**
 * @brief Turns the volume: first about the screen's horizontal axis, within that about the volume's axial one.
 * @param Handle The renderer.
 * @param X Angle about the x axis in degrees; brought into -180 to 180 by whole turns. The start is 0.
 * @param Y Angle about the y axis in degrees, likewise.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits while a frame is being drawn.
 */
OCT_API void setAngles(VolumeRendererHandle Handle, double X, double Y);

/**
 * @brief Moves the volume. The start is the centre of the view.
 * @param Handle The renderer.
 * @param X To the right, in model units (the box's half diagonal is 2).
 * @param Y Upwards.
 * @param Z Towards the viewer, who is at a distance of 5. With perspective, planes at distances 3 and 8 limit what is
 *          drawn.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits while a frame is being drawn.
 */
OCT_API void setTranslation(VolumeRendererHandle Handle, double X, double Y, double Z);

/**
 * @brief Sets the physical extent of the volume, which gives the box its proportions and the scale marks their
 *        numbers. Offline rendering sets it with every frame from setOfflineAspectRatio().
 * @param Handle The renderer.
 * @param Axial Extent along depth, in millimetres.
 * @param Lateral1 Extent along the second axis of the volume (model x).
 * @param Lateral2 Extent along the third axis (model z).
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits while a frame is being drawn.
 */
OCT_API void setRange(VolumeRendererHandle Handle, double Axial, double Lateral1, double Lateral2);

/**
 * @brief Sets how much the view shows.
 * @param Handle The renderer.
 * @param Zoom With perspective, the vertical field of view less 5 degrees; orthographic, five times the visible width
 *             in model units. The start is 40. Smaller is closer.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits while a frame is being drawn.
 */
OCT_API void setZoom(VolumeRendererHandle Handle, double Zoom);

/**
 * @brief Sets the OpenGL viewport of the current context to the origin and the given size.
 * @param Width Width in pixels.
 * @param Height Height in pixels.
 * @par Errors
 * "Could not load OpenGL. "; "No OpenGL context is current on the calling thread. "; "An OpenGL error in
 * setViewportSize occured: ..."
 * @thread Rendering thread.
 */
OCT_API void setViewportSize(unsigned int Width, unsigned int Height);

/**
 * @brief Sets the number of steps that a ray takes along the box's diagonal.
 * @param Handle The renderer.
 * @param Slices 0 or more; the start is 128. More is finer and slower.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "; "The number of rendering slices must not be negative. "
 * @thread Any thread; waits while a frame is being drawn.
 */
OCT_API void setRenderingSlices(VolumeRendererHandle Handle, int Slices);

/**
 * @brief Chooses the projection.
 * @param Handle The renderer.
 * @param Perspective True (the start): perspective; false: orthographic.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits while a frame is being drawn.
 */
OCT_API void setUsePerspective(VolumeRendererHandle Handle, bool Perspective);

/**
 * @brief Stores a value for clients; the picture does not depend on it.
 * @param Handle The renderer.
 * @param Voxels Lateral voxels per pixel; the start is 1.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits while a frame is being drawn.
 */
OCT_API void setLateralVoxelsPerPixel(VolumeRendererHandle Handle, double Voxels);

/**
 * @brief Chooses between the whole volume and slices through it.
 * @param Handle The renderer.
 * @param Mode 0 (the start): ray casting; 1: sectional view.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "; "Invalid rendering mode selected."
 * @thread Any thread; waits while a frame is being drawn.
 */
OCT_API void setRenderingMode(VolumeRendererHandle Handle, int Mode);

/**
 * @brief Chooses what a ray makes of the voxels it meets.
 * @param Handle The renderer.
 * @param Mode 0 (the start): composites them by the opacity of the colour map, voxels at the lower boundary and below
 *             being invisible; 1: their maximum; 2: their mean; 3: as 0, with colours modulated by the secondary data
 *             (nothing is drawn without a valid slice of them). With an overlay, mode 0 lays the overlay's maximum
 *             along the ray over the result.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "; "Invalid rendering mode selected."
 * @thread Any thread; waits while a frame is being drawn.
 */
OCT_API void setVolumeMode(VolumeRendererHandle Handle, int Mode);

/**
 * @brief Chooses the slices of the sectional view. At the start all are shown, through the middle. Where the colour map
 *        is translucent, what lies behind a slice shines through.
 * @param Handle The renderer.
 * @param Show1 Non-zero shows the slice across model x (the volume's second axis).
 * @param Position1 Its position along that axis, 0 to 1.
 * @param Show2 Non-zero shows the slice across model y (depth).
 * @param Position2 Its position.
 * @param Show3 Non-zero shows the slice across model z (the third axis).
 * @param Position3 Its position.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "; "Slice positions of sectional view are out of range. Values must
 * be in range from 0.0 to 1.0. "
 * @thread Any thread; waits while a frame is being drawn.
 */
OCT_API void setSectionalView(VolumeRendererHandle Handle, int Show1, float Position1, int Show2, float Position2,
                              int Show3, float Position3);

/**
 * @brief Cuts the volume by a plane that faces the viewer.
 * @param Handle The renderer.
 * @param Enable Non-zero cuts; 0 (the start) does not.
 * @param OpenCut Non-zero leaves the cut open: only what the box's own faces show is drawn. 0 (the start) closes it.
 * @param Value Position of the plane: 0 (the start) just inside the far corner, so that almost everything is cut
 *              away, 1 just inside the near corner.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits while a frame is being drawn.
 */
OCT_API void setClipPlane(VolumeRendererHandle Handle, int Enable, int OpenCut, float Value);

/**
 * @brief Lets the clip plane turn with the volume instead of facing the viewer.
 * @param Handle The renderer.
 * @param Fix Non-zero keeps the orientation that the plane had in the last frame, without which it cuts nothing; 0
 *            (the start) follows the viewer.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits while a frame is being drawn.
 */
OCT_API void fixClipPlane(VolumeRendererHandle Handle, int Fix);

/**
 * @brief Chooses what is drawn around the volume. At the start everything is.
 * @param Handle The renderer.
 * @param ScaleMarks Non-zero draws scale marks with labels: one edge per axis, in millimetres, as setRange() gives the
 *                   box's extent. Labels keep their size in pixels, a fortieth of the viewport's height (14 to 64).
 * @param Edges Non-zero draws the edges of the box.
 * @param Box Non-zero draws the translucent faces of the box, with the volume only.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. ". Where the machine has no font, every frame with scale marks is
 * drawn without labels and reports "No font was found for text labels. "
 * @thread Any thread; waits while a frame is being drawn.
 */
OCT_API void setBorder(VolumeRendererHandle Handle, int ScaleMarks, int Edges, int Box);

/**
 * @brief Shows the part of the box that the clip plane cuts away as a ghost: its faces, translucent, in the foreground
 *        colour.
 * @param Handle The renderer.
 * @param Remove Non-zero: on; 0 (the start): off.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits while a frame is being drawn.
 */
OCT_API void setRemoveSegment(VolumeRendererHandle Handle, int Remove);

/**
 * @brief Shows or hides volume and surface. Both are hidden at the start; an upload shows the volume and hides the
 *        surface.
 * @param Handle The renderer.
 * @param Volume Non-zero shows the volume.
 * @param Surface Non-zero shows the surface of setSurface().
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits while a frame is being drawn.
 */
OCT_API void setRenderElements(VolumeRendererHandle Handle, int Volume, int Surface);

/**
 * @brief Sets the colours of the background, which runs from the one to the other.
 * @param Handle The renderer.
 * @param Bottom 0xRRGGBBAA, alpha ignored; the start is 0x000066FF.
 * @param Top The same; the start is 0x000019FF.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits while a frame is being drawn.
 */
OCT_API void setRenderBackground(VolumeRendererHandle Handle, unsigned int Bottom, unsigned int Top);

/**
 * @brief Sets the colour of lines and labels.
 * @param Handle The renderer.
 * @param Color 0xRRGGBBAA, alpha ignored; the start is white.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits while a frame is being drawn.
 */
OCT_API void setRenderForeground(VolumeRendererHandle Handle, unsigned int Color);

/**
 * @brief Sets the colour map of the volume.
 * @param Handle The renderer.
 * @param Colormap @p Count colours of four bytes each: red, green, blue, alpha (opacity of one step of a ray); copied
 *        before the call returns.
 * @param Count Number of colours, up to the driver's texture limit (16384 on most); 0: nothing is visible.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "; "The number of colours must not be negative. "; "Colour map data
 * must not be null. ". A count above the driver's limit is reported by the next frame.
 * @thread Any thread; waits while a frame is being drawn. Takes effect at the next one.
 */
OCT_API void setRendererColormap(VolumeRendererHandle Handle, const void* Colormap, int Count);

/**
 * @brief Sets the colour map of the secondary data.
 * @param Handle The renderer.
 * @param Colormap As setRendererColormap(); alpha is ignored.
 * @param Count As setRendererColormap().
 * @par Errors
 * As setRendererColormap().
 * @thread As setRendererColormap().
 */
OCT_API void setRendererSecondaryColormap(VolumeRendererHandle Handle, const void* Colormap, int Count);

/**
 * @brief Sets the colour map of the overlay volume.
 * @param Handle The renderer.
 * @param Colormap As setRendererColormap().
 * @param Count As setRendererColormap().
 * @par Errors
 * As setRendererColormap().
 * @thread As setRendererColormap().
 */
OCT_API void setOverlayRendererColormap(VolumeRendererHandle Handle, const void* Colormap, int Count);

/**
 * @brief Sets the colour map of the surface.
 * @param Handle The renderer.
 * @param Colormap As setRendererColormap(); alpha is ignored.
 * @param Count As setRendererColormap().
 * @par Errors
 * As setRendererColormap().
 * @thread As setRendererColormap().
 */
OCT_API void setSurfaceColormap(VolumeRendererHandle Handle, const void* Colormap, int Count);

/**
 * @brief Sets which voxel values the ends of the volume's colour map stand for.
 * @param Handle The renderer.
 * @param Lower Value of the first colour, in the unit of the volume.
 * @param Upper Value of the last colour. Equal to @p Lower: not checked, the colours are then undefined.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits while a frame is being drawn.
 */
OCT_API void setRendererColoringBoundaries(VolumeRendererHandle Handle, double Lower, double Upper);

/**
 * @brief Sets which values the ends of the secondary colour map stand for.
 * @param Handle The renderer.
 * @param Lower As setRendererColoringBoundaries(), in the unit of the secondary data.
 * @param Upper As setRendererColoringBoundaries().
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits while a frame is being drawn.
 */
OCT_API void setRendererSecondaryColoringBoundaries(VolumeRendererHandle Handle, double Lower, double Upper);

/**
 * @brief Sets which values the ends of the overlay's colour map stand for.
 * @param Handle The renderer.
 * @param Lower As setRendererColoringBoundaries(), in the unit of the overlay volume.
 * @param Upper As setRendererColoringBoundaries().
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits while a frame is being drawn.
 */
OCT_API void setOverlayRendererColoringBoundaries(VolumeRendererHandle Handle, double Lower, double Upper);

/**
 * @brief Chooses the image of the secondary data that colours the volume in volume mode 3.
 * @param Handle The renderer.
 * @param Index 0 to the number of images less one; outside of that mode 3 draws no volume. The start is 0.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits while a frame is being drawn.
 */
OCT_API void setRendererSecondarySliceIndex(VolumeRendererHandle Handle, int Index);

/**
 * @brief Sets the surface, a height map over the two lateral axes. It is drawn over the ray-cast volume, and hides or
 *        is hidden by slices as it lies.
 * @param Handle The renderer.
 * @param Width Number of samples along the first lateral axis. 0 samples take the surface away.
 * @param Height Number of samples along the second lateral axis.
 * @param Scale Depth of the whole box in the unit of @p Values.
 * @param Values Width * Height floats, row by row: the depth of each sample; copied before the call returns. A sample
 *               that is not finite leaves a hole.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "; "The size of a surface must not be negative. "; "Surface data
 * must not be null. "; "The scale of a surface must be a number other than zero. "; "The surface has too many
 * samples. "
 * @thread Any thread; waits while a frame is being drawn.
 */
OCT_API void setSurface(VolumeRendererHandle Handle, int Width, int Height, double Scale, const float* Values);

/**
 * @brief Sets the depths between which the surface runs through its colour map. Call after setSurface(), whose scale
 *        it uses.
 * @param Handle The renderer.
 * @param Lower First depth, in the unit of the surface's values.
 * @param Upper Second depth.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits while a frame is being drawn.
 */
OCT_API void setSurfaceDepths(VolumeRendererHandle Handle, double Lower, double Upper);

/** @} */
/* ---------------------------------------------------------------------------------------------------------- */
/**
 * @defgroup offline Offline volumes
 *
 * Shows a volume that the client holds in memory. Order of calls, on the rendering thread: createOfflineRendering();
 * setOfflineRenderingRenderer() with an initialised volume renderer; setOfflineAspectRatio(); allocateOfflineVolume();
 * uploads; renderOfflineVolume() per frame; clearOfflineRendering(). The renderer must live as long as it is attached.
 *
 * A volume is Width * Height * Depth floats with Width (depth in the tissue, samples of an A-scan) fastest and Depth
 * (slices, B-scans) slowest in memory. It is kept with 16 bits per voxel; values keep 11 bits of precision and must lie
 * within -65504 to 65504. An extent may reach the driver's limit for 3-D textures (2048 on most).
 *
 * Every function refuses a null handle with "The specified OfflineRenderingHandle is invalid. ", except
 * clearOfflineRendering(), which ignores it, and uploadOfflineSecondaryData().
 */
/** @{ */

/**
 * @brief Makes an object for uploaded volumes. Does no OpenGL work.
 * @return The object, to be freed with clearOfflineRendering(); null on failure.
 * @thread Any thread.
 */
OCT_API OfflineRenderingHandle createOfflineRendering(void);

/**
 * @brief Frees the object and deletes its textures. The renderer stays the client's.
 * @param Handle The object; null is ignored.
 * @thread Rendering thread.
 */
OCT_API void clearOfflineRendering(OfflineRenderingHandle Handle);

/**
 * @brief Attaches the renderer that draws the volume.
 * @param Handle The object.
 * @param Renderer The renderer; null detaches, and then nothing is drawn.
 * @par Errors
 * "The specified OfflineRenderingHandle is invalid. "
 * @thread Rendering thread.
 */
OCT_API void setOfflineRenderingRenderer(OfflineRenderingHandle Handle, VolumeRendererHandle Renderer);

/**
 * @brief Sets the physical extent of the volume. Required before the first frame.
 * @param Handle The object.
 * @param Axial Extent along the first axis, in millimetres.
 * @param Lateral1 Extent along the second axis.
 * @param Lateral2 Extent along the third axis.
 * @par Errors
 * "The specified OfflineRenderingHandle is invalid. "
 * @thread Rendering thread.
 */
OCT_API void setOfflineAspectRatio(OfflineRenderingHandle Handle, float Axial, float Lateral1, float Lateral2);

/**
 * @brief Makes the texture of the volume. The sizes it has already: nothing happens and the contents stay. Other
 *        sizes: the volume before is lost, except after an error that names a limit.
 * @param Handle The object, with a renderer attached.
 * @param Width Voxels along the first axis, 0 or more.
 * @param Height Voxels along the second axis.
 * @param Depth Voxels along the third axis, the slices.
 * @par Errors
 * "The specified OfflineRenderingHandle is invalid. "; "Attach a volume renderer before allocating a volume. ";
 * "Volume sizes must not be negative. "; "A volume of ... voxels is too large: this OpenGL driver allows ... voxels
 * along each axis. "; "A volume of ... voxels needs a texture of ... MB, more than this OpenGL driver allows. "; "An
 * OpenGL error in OfflineVolumeRendering::allocate, glTexImage3D occured: ... A volume of ... voxels needs a texture
 * of ... MB, which the driver could not provide. "; "No OpenGL context is current on the calling thread. "
 * @thread Rendering thread.
 */
OCT_API void allocateOfflineVolume(OfflineRenderingHandle Handle, int Width, int Height, int Depth);

/**
 * @brief Uploads the whole volume and shows it.
 * @param Handle The object.
 * @param Volume Width * Height * Depth floats; read before the call returns.
 * @par Errors
 * "The specified OfflineRenderingHandle is invalid. "; "Volume data must not be null. "; "Allocate a volume before
 * uploading one. "; "An OpenGL error in OfflineVolumeRendering::upload occured: ..."
 * @thread Rendering thread.
 */
OCT_API void uploadOfflineVolume(OfflineRenderingHandle Handle, const float* Volume);

/**
 * @brief The same as uploadOfflineVolume(), overlay or not. For an overlay see uploadOverlayOfflineVolume().
 * @param Handle As uploadOfflineVolume().
 * @param Volume As uploadOfflineVolume().
 * @par Errors
 * As uploadOfflineVolume().
 * @thread Rendering thread.
 */
OCT_API void uploadOfflineVolumeOverlay(OfflineRenderingHandle Handle, const float* Volume);

/**
 * @brief Uploads some slices and shows the volume up to the last of them.
 * @param Handle The object.
 * @param First Index of the first slice.
 * @param End Index behind the last slice.
 * @param Block Width * Height * (End - First) floats, starting with slice First; read before the call returns. Null:
 *        the volume counts as empty from now on.
 * @par Errors
 * "The specified OfflineRenderingHandle is invalid. "; "Allocate a volume before uploading one. "; "The slices lie
 * outside the allocated volume. "; "An OpenGL error in OfflineVolumeRendering::upload occured: ..."
 * @thread Rendering thread.
 */
OCT_API void uploadOfflineSubVolume(OfflineRenderingHandle Handle, int First, int End, const float* Block);

/**
 * @brief Uploads one slice and shows the volume up to, and without, that slice.
 * @param Handle The object.
 * @param Index Index of the slice.
 * @param Slice Width * Height floats; read before the call returns.
 * @par Errors
 * "The specified OfflineRenderingHandle is invalid. "; "Slice data must not be null. "; "Allocate a volume before
 * uploading one. "; "The slices lie outside the allocated volume. "; "An OpenGL error in
 * OfflineVolumeRendering::upload occured: ..."
 * @thread Rendering thread.
 */
OCT_API void uploadOfflineVolumeSlice(OfflineRenderingHandle Handle, int Index, const float* Slice);

/**
 * @brief Uploads a volume that is laid over the first one.
 * @param Handle The object, with a volume allocated.
 * @param Volume As many floats as the allocated volume has voxels; read before the call returns. Null frees the
 *        overlay.
 * @par Errors
 * "The specified OfflineRenderingHandle is invalid. "; "Allocate a volume before uploading one. "; reasons of size as
 * allocateOfflineVolume(); "An OpenGL error in OfflineVolumeRendering::upload_overlay occured: ..."
 * @thread Rendering thread.
 */
OCT_API void uploadOverlayOfflineVolume(OfflineRenderingHandle Handle, const float* Volume);

/**
 * @brief Uploads images over the two lateral axes that colour the volume in volume mode 3, whole or in blocks. A block
 *        that starts at 0 begins anew.
 * @param Handle The object, with a renderer attached.
 * @param Height Samples along the first lateral axis (model x), the second of the texture.
 * @param Depth Samples along the second lateral axis (model z), the third of the texture.
 * @param Width Number of images, the first axis of the texture and fastest in memory.
 * @param First First sample of the block along @p Depth.
 * @param Count Number of samples of the block along @p Depth.
 * @param Data Width * Height * Count floats; read before the call returns. Null frees the secondary data.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. " (a null handle, or no renderer attached); "The secondary data lies
 * outside its texture. "; "The first block of secondary data must start at 0. "; reasons of size as
 * allocateOfflineVolume(); "An OpenGL error in OfflineVolumeRendering::upload_secondary_data occured: ..."
 * @thread Rendering thread.
 */
OCT_API void uploadOfflineSecondaryData(OfflineRenderingHandle Handle, int Height, int Depth, unsigned int Width,
                                        unsigned int First, unsigned int Count, const float* Data);

/**
 * @brief Draws one frame into the current framebuffer and viewport. Does nothing while no renderer is attached;
 *        without a volume the frame shows the rest of the scene.
 * @param Handle The object.
 * @param ContentType 0: the volume; 1: the overlay volume alone, in its own colours; 2: the volume with the overlay.
 * @par Errors
 * "The specified OfflineRenderingHandle is invalid. "; "Content type is not supported for rendering. "; "Program has
 * not been compiled yet." (the renderer is not initialised); "Could not create OpenGL buffer. "; "An OpenGL error
 * occured. Framebuffer is not complete: ..."; "An OpenGL error in ... occured: ..."
 * @thread Rendering thread. Setters of the renderer on other threads wait until the frame is drawn.
 */
OCT_API void renderOfflineVolume(OfflineRenderingHandle Handle, int ContentType);

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
 * "No OpenGL context is current on the calling thread. "; "Could not load OpenGL. "
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
 * "Invalid OpenGLControlLoopHandle specified. "; "A surface to copy must not be null. "; "Could not copy the surface: ..."
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

#include "live.h"

#endif /* OCT_RENDERING_H */
