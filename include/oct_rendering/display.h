/**
 * @file display.h
 * @brief Display of B-scans. Part of oct_rendering.h.
 */
#ifndef OCT_RENDERING_DISPLAY_H
#define OCT_RENDERING_DISPLAY_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup display Display of B-scans
 *
 * Order of calls: createDisplayRendering(); with the context current initDisplayRendering(); settings at any
 * time from any thread; renderDisplay() per frame; with the context current uninitDisplayRendering();
 * clearDisplayRendering().
 *
 * The picture fills the current viewport. Depth runs down the screen and A-scans run to the right. A pixel
 * that covers several samples shows the mean of as many, from the sample below its centre on. A sample v is
 * coloured by the colour map at (v - Lower) / (Upper - Lower), where entry i of Count stands at
 * (i + 0.5) / Count. Between two entries the colour is linear; beyond the first and the last it is theirs.
 * Volumes and surfaces are coloured by the same rule. An opaque picture stays opaque below translucent
 * overlays.
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
 * @brief Frees a renderer. Call uninitDisplayRendering() first; OpenGL objects that are still held are
 * deleted when their context is current and otherwise left to die with it.
 * @param Handle The renderer; null is ignored.
 * @thread Any thread, after every other call with this handle has returned.
 */
OCT_API void clearDisplayRendering(DisplayRenderingHandle Handle);

/**
 * @brief Builds programs, buffers and textures in the current context. Loads OpenGL on the first call of the
 *        process. Calling it again rebuilds them, also in another context.
 * @param Handle The renderer.
 * @par Errors
 * "Invalid DisplayRenderingHandle specified. "; "Could not load OpenGL. ";
 * "OpenGL 3.0 required. Version is currently ..."; "No OpenGL context is current on the calling thread. ";
 * "Vertex shader compilation failed"; "Fragment shader compilation failed"; "" (a program did not link, see
 * the log); "Could not create OpenGL buffer. "; "An OpenGL error in ... occured: ...". After an error the
 * renderer is not initialised.
 * @thread Rendering thread.
 */
OCT_API void initDisplayRendering(DisplayRenderingHandle Handle);

/**
 * @brief Deletes what initDisplayRendering() built. Settings and images stay.
 * Does nothing when not initialised. In another context it only forgets it; see @ref contexts.
 * @param Handle The renderer.
 * @par Errors
 * "Invalid DisplayRenderingHandle specified. "; "No OpenGL context is current on the calling thread. ";
 * "An OpenGL error in DisplayRenderer::uninit occured: ..."
 * @thread Rendering thread, with the context of initDisplayRendering() current.
 */
OCT_API void uninitDisplayRendering(DisplayRenderingHandle Handle);

/**
 * @brief Draws one frame into the current framebuffer and viewport. Clears the framebuffer with the
 * background colour first. Before initDisplayRendering() it draws nothing and writes to the library log.
 * What has not changed since the frame before is not done again: images are uploaded and filtered when they have been
 * set, and a frame with the same images, settings and viewport size copies the picture (up to 4096 pixels a side, into
 * targets of eight bits a channel without multisampling).
 * @param Handle The renderer.
 * @par Errors
 * "Invalid DisplayRenderingHandle specified. "; "No OpenGL context is current on the calling thread. ";
 * "The renderer was initialised in another OpenGL context. ";
 * "Cannot generate a texture of the required size. " (no image was set, or it is larger than the driver
 * allows); "Invalid texture for rendering...."; "Could not create OpenGL buffer.";
 * "An OpenGL error in ... occured: ...". What a frame could not upload is uploaded by the next.
 * @par OpenGL state
 * Given back as it was; see docs/opengl_state.md.
 * @thread Rendering thread. A frame shows the images and settings of its start; setters do not wait for it.
 */
OCT_API void renderDisplay(DisplayRenderingHandle Handle);

/**
 * @brief Sets the image. New dimensions also reset the upper display bound to @p Size1.
 * @param Handle The renderer.
 * @param Size1 Samples per A-scan (depth), 0 or more.
 * @param Size2 Number of A-scans, 0 or more.
 * @param Data Size1 * Size2 floats, depth fastest, any unit; copied before the call returns.
 * @par Errors
 * "Invalid DisplayRenderingHandle specified. "; "Image sizes must not be negative. ";
 * "Image data must not be null. "; "The image is too large. "
 * @thread Any thread; does not wait for frames and takes effect, whole, at the next one. Of two calls at a
 * time the later one stays.
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
 * @thread Any thread.
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
 * @brief Switches two Gaussian smoothings of the image, each 5 by 5 samples with the weights 0.1, 0.2, 0.4,
 * 0.2, 0.1 along either axis. The first runs before the pepper filter, the second after it.
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
 * @brief Lets frames show a part of a picture that is larger than what the driver draws at once. Each pixel shows the samples
 * that it shows in the whole picture.
 * @param Handle The renderer.
 * @param Width Width of the whole picture in pixels, 1 to 1048576. 0, with a height of 0: frames show the whole picture (the
 * start).
 * @param Height Its height, likewise.
 * @param X Column of the whole picture at the left of the viewport, which lies within 1048576 of 0.
 * @param Y Row at the bottom of the viewport, 0 at the bottom of the picture, likewise.
 * @par Errors
 * "Invalid DisplayRenderingHandle specified. "; "A picture in parts must have 1 to 1048576 pixels a side. "
 * @thread Any thread; takes effect at the next frame.
 * @since 0.2
 */
OCT_API void setDisplayPart(DisplayRenderingHandle Handle, unsigned int Width, unsigned int Height, int X,
                            int Y);

/**
 * @brief Checks the handle and does nothing else: a pixel always shows the mean
 * of the samples that it covers.
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
 * @param Colormap @p Count colours of four bytes each: red, green, blue, alpha; copied before the call
 * returns.
 * @param Count Number of colours, up to the driver's texture limit (16384 on most); 0: transparent black.
 * @par Errors
 * "Invalid DisplayRenderingHandle specified. ";
 * "The number of colours must not be negative. "; "Colour map data must not be null. ". A
 * count above the driver's limit is reported by renderDisplay(), which draws nothing until there is another
 * map.
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
 * @thread As setDisplayData().
 */
OCT_API void setDisplayOverlayData(DisplayRenderingHandle Handle, int Size1, int Size2, const float* Data);

/**
 * @brief Sets the colour map of one overlay; its alpha blends the overlay over what was drawn before. The
 * start is a ramp from black to white, opaque.
 * @param Handle The renderer.
 * @param Overlay Index of the overlay, 0 to OCT_DISPLAY_OVERLAYS - 1.
 * @param Colormap As setDisplayColormap().
 * @param Count As setDisplayColormap().
 * @par Errors
 * As setDisplayColormap(); "The overlay index must be from 0 to 7. "
 * @thread Any thread; takes effect, whole, at the next frame.
 */
OCT_API void setDisplayOverlayColormap(DisplayRenderingHandle Handle, int Overlay, const void* Colormap,
                                       int Count);

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

/**
 * @brief Explains a picture that is empty: says in plain words why the last frame shows nothing or one colour only, and
 * what to do about it, with the numbers that count. Of several causes it names the first that suffices by itself.
 * What counts is what the frame was drawn with, not what was set since. The page "Empty pictures" lists the causes.
 * @param Handle The renderer.
 * @param Text Receives the explanation, cut to @p Size bytes with its end; "" when the frame shows something. Null:
 * nothing is stored.
 * @param Size Size of @p Text in bytes.
 * @return 0: the last frame shows something; 1: @p Text says why not; 0 on failure.
 * @par Errors
 * "Invalid DisplayRenderingHandle specified. "
 * @thread Any thread; waits for no frame.
 * @since 0.2
 */
OCT_API int explainDisplay(DisplayRenderingHandle Handle, char* Text, int Size);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* OCT_RENDERING_DISPLAY_H */
