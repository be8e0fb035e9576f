/**
 * @file volume.h
 * @brief The volume renderer. Part of oct_rendering.h.
 */
#ifndef OCT_RENDERING_VOLUME_H
#define OCT_RENDERING_VOLUME_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @brief What lies under a pixel; see pickVolume(). */
typedef struct OctPick {
  unsigned int size;     /**< set by the caller to sizeof(OctPick); fields beyond it are left alone */
  int kind;              /**< an OctPickKind; where it is OCT_PICK_NOTHING the rest is 0 */
  double voxel[3];       /**< depth, A-scan, B-scan (OctAxis); the centres of voxels lie at whole numbers */
  double millimetres[3]; /**< the same from the corner of the box on, by the extents of setRange() */
  float value; /**< of the volume there, between voxels interpolated; of a surface its depth, in the unit of
                              its values */
} OctPick;

/**
 * @defgroup volume Volume renderer
 *
 * Draws a volume, and the scene around it, into the current framebuffer and viewport. The volume itself comes
 * from an owner that the renderer is attached to: see @ref offline.
 *
 * Order of calls: createVolumeRenderer(); with the context current initializeVolumeRenderer(); settings at
 * any time from any thread; frames through the owner; with the context current uninitializeVolumeRenderer()
 * and deleteVolumeRenderer(). A frame draws with the settings of the moment it begins; what is set while it is
 * drawn shows in the next one, and whoever sets it does not wait.
 *
 * The volume fills a box with corners at -1 and 1 on the model's axes: y is the axial direction (depth,
 * downwards on screen), x and z are the lateral ones. The box is scaled to the physical range, so that its
 * half diagonal is 2 whatever the unit. The camera looks at it from a distance of 5. setTranslation() may
 * bring the viewer into the box: he sees what lies before him.
 *
 * A frame covers the whole viewport with an opaque picture, translucent volumes
 * included: alpha is 255 everywhere.
 *
 * A voxel v is coloured by a colour map at (v - Lower) / (Upper - Lower); alpha is opacity. Entry i of Count
 * stands at (i + 0.5) / Count; between two entries the colour is linear, beyond the first and the last it is
 * theirs. The surface is coloured by its depth in the same way. Four colour maps
 * exist: of the volume, of the secondary data, of the overlay volume and of the surface. They live from
 * initializeVolumeRenderer() to uninitializeVolumeRenderer(); setting colours or boundaries outside of that
 * does nothing. Each starts as an opaque ramp from black to white with the boundaries 0 and 1.
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
 * @brief Frees a renderer. Waits for a frame that is being drawn. Objects that refer to the renderer must be
 * cleared before. OpenGL objects that are still held are deleted when their context is current and otherwise
 * left to die with it.
 * @param Handle The renderer.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Rendering thread, after every other call with this handle has returned.
 */
OCT_API void deleteVolumeRenderer(VolumeRendererHandle Handle);

/**
 * @brief Builds textures and colour maps in the current context, and the programs of the modes that are set. Those of
 * other modes, of an overlay and of a surface are built by the first frame that needs them. Loads OpenGL on the first
 * call of the process. Calling it again rebuilds everything, also in another context, and keeps the colours.
 * @param Handle The renderer.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "; "Could not load OpenGL. ";
 * "OpenGL 3.0 required. Version is currently ..."; "No OpenGL context is current on the calling thread. ";
 * "Vertex shader compilation failed"; "Fragment shader compilation failed"; "" (a program did not link, see
 * the log); "An OpenGL error in ... occured: ...". After an error the renderer is not initialised.
 * @thread Rendering thread.
 */
OCT_API void initializeVolumeRenderer(VolumeRendererHandle Handle);

/**
 * @brief Deletes programs, textures and colour maps. The other settings stay.
 * Does nothing when not initialised. In another context it only forgets them; see @ref contexts.
 * @param Handle The renderer.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Rendering thread, with the context of initializeVolumeRenderer() current.
 */
OCT_API void uninitializeVolumeRenderer(VolumeRendererHandle Handle);

/**
 * @brief Forgets the volume and shows neither volume nor surface until the owner
 * or setRenderElements() says so.
 * @param Handle The renderer.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits for no frame.
 */
OCT_API void clearVolumeRenderer(VolumeRendererHandle Handle);

/**
 * @brief Turns the volume: first about the screen's horizontal axis, within
 * that about the volume's axial one.
 * @param Handle The renderer.
 * @param X Angle about the x axis in degrees; brought into -180 to 180 by whole turns. The start is 0.
 * @param Y Angle about the y axis in degrees, likewise.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits for no frame.
 */
OCT_API void setAngles(VolumeRendererHandle Handle, double X, double Y);

/**
 * @brief Moves the volume. The start is the centre of the view.
 * @param Handle The renderer.
 * @param X To the right, in model units (the box's half diagonal is 2).
 * @param Y Upwards.
 * @param Z Towards the viewer, who is at a distance of 5. With perspective, planes at distances 3 and 8 limit
 * what is drawn.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits for no frame.
 */
OCT_API void setTranslation(VolumeRendererHandle Handle, double X, double Y, double Z);

/**
 * @brief Sets the physical extent of the volume, which gives the box its proportions and the scale marks
 * their numbers. Offline rendering sets it with every frame from setOfflineAspectRatio().
 * @param Handle The renderer.
 * @param Axial Extent along depth, in millimetres.
 * @param Lateral1 Extent along the second axis of the volume (model x).
 * @param Lateral2 Extent along the third axis (model z).
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits for no frame.
 */
OCT_API void setRange(VolumeRendererHandle Handle, double Axial, double Lateral1, double Lateral2);

/**
 * @brief Sets how much the view shows.
 * @param Handle The renderer.
 * @param Zoom With perspective, the vertical field of view less 5 degrees; orthographic, five times the
 * visible width in model units. The start is 40. Smaller is closer.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits for no frame.
 */
OCT_API void setZoom(VolumeRendererHandle Handle, double Zoom);

/**
 * @brief Sets the OpenGL viewport of the current context to the origin and the given size.
 * @param Width Width in pixels.
 * @param Height Height in pixels.
 * @par Errors
 * "Could not load OpenGL. "; "No OpenGL context is current on the calling thread. ";
 * "An OpenGL error in setViewportSize occured: ..."
 * @thread Rendering thread.
 */
OCT_API void setViewportSize(unsigned int Width, unsigned int Height);

/**
 * @brief Sets the number of steps that a ray takes along the box's diagonal.
 * @param Handle The renderer.
 * @param Slices 0 or more; the start is 128. More is finer and slower; more than 8192 are drawn as 8192.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "; "The number of rendering slices must not be negative. "
 * @thread Any thread; waits for no frame.
 */
OCT_API void setRenderingSlices(VolumeRendererHandle Handle, int Slices);

/**
 * @brief Chooses the projection.
 * @param Handle The renderer.
 * @param Perspective True (the start): perspective; false: orthographic.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits for no frame.
 */
OCT_API void setUsePerspective(VolumeRendererHandle Handle, bool Perspective);

/**
 * @brief Stores a value for clients; the picture does not depend on it.
 * @param Handle The renderer.
 * @param Voxels Lateral voxels per pixel; the start is 1.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits for no frame.
 */
OCT_API void setLateralVoxelsPerPixel(VolumeRendererHandle Handle, double Voxels);

/**
 * @brief Chooses between the whole volume and slices through it.
 * @param Handle The renderer.
 * @param Mode An OctRenderingMode. 0 (the start): ray casting; 1: sectional view.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "; "Invalid rendering mode selected."
 * @thread Any thread; waits for no frame.
 */
OCT_API void setRenderingMode(VolumeRendererHandle Handle, int Mode);

/**
 * @brief Chooses what a ray makes of the voxels it meets.
 * @param Handle The renderer.
 * @param Mode An OctVolumeMode. 0 (the start): composites them by the opacity of the colour map, voxels at the lower boundary
 * and below being invisible; 1: their maximum; 2: their mean; 3: as 0, with colours modulated by the
 * secondary data (nothing is drawn without a valid slice of them). With an overlay, mode 0 lays the overlay's
 * maximum along the ray over the result.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "; "Invalid rendering mode selected."
 * @thread Any thread; waits for no frame.
 */
OCT_API void setVolumeMode(VolumeRendererHandle Handle, int Mode);

/**
 * @brief Lights the composites (volume modes 0 and 3): a light at the eye, on both sides of what it shines on, in
 * the volume's real proportions (see setRange()). What is lit is where the volume changes; a sample whose
 * neighbours, a voxel away, differ from voxel to voxel by less than 10 % of the distance of the coloring boundaries
 * keeps its colour, from 30 % on it is lit in full. A lit colour is colour * (Ambient + Diffuse * c) + Specular *
 * c^32, c being the cosine between the line of sight and the direction in which the volume changes most. The
 * overlay that mode 0 lays over the result is not lit.
 *
 * 0, 0, 0 (the start) means no light, as 1, 0, 0 does: pictures are those of a renderer that knows none, to the byte
 * and in the same time. A good start is 0.3, 0.7, 0.2. With light a ray takes seven samples where it took one,
 * and a frame about three and a half times the time; the first one builds a program.
 * @param Handle The renderer.
 * @param Ambient Share of the colour that is there without light, 0 to 1000000.
 * @param Diffuse Share of the colour that faces the viewer, 0 to 1000000.
 * @param Specular Brightness of the white highlights, 0 to 1000000.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "; "The factors of the lighting must be numbers from 0 to
 * 1000000. "
 * @thread Any thread; waits for no frame.
 */
OCT_API void setVolumeLighting(VolumeRendererHandle Handle, double Ambient, double Diffuse, double Specular);

/**
 * @brief Lets the rays of neighbouring pixels begin at different places within their first step, in all volume
 * modes. The rings that few slices draw on what is smooth become a fine, even grain. A pixel of the viewport has the
 * same place in every frame, so that pictures do not flicker.
 * @param Handle The renderer.
 * @param Enable Non-zero: different places; 0 (the start): where the ray enters the volume.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits for no frame.
 */
OCT_API void setRayJitter(VolumeRendererHandle Handle, int Enable);

/**
 * @brief Tells what length of tissue has the opacity that the volume's colour map gives, in composites (volume
 * modes 0 and 3). A sample stands for the step that the ray takes: of an opacity a it has 1 - (1 - a)^(step /
 * Millimetres). So a picture keeps its density whatever the number of slices, the extent of the volume and the
 * direction of the view. Rays still end where an opacity of 0.9 is reached (0.99 below an overlay).
 * @param Handle The renderer.
 * @param Millimetres The length, in the unit of setRange(); finite, 0 or more. 0 (the start): the opacity is that of
 * a step, however long it is.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "; "The opacity length must be a finite number of millimetres, 0 or
 * more. "
 * @thread Any thread; waits for no frame.
 */
OCT_API void setOpacityLength(VolumeRendererHandle Handle, double Millimetres);

/**
 * @brief Chooses the slices of the sectional view. At the start all are shown, through the middle. Slices are
 * opaque, whatever the opacities of the colour map, and end where the filled part of the volume does.
 * @param Handle The renderer.
 * @param Show1 Non-zero shows the slice across model x (the volume's second axis).
 * @param Position1 Its position along that axis, 0 to 1.
 * @param Show2 Non-zero shows the slice across model y (depth).
 * @param Position2 Its position.
 * @param Show3 Non-zero shows the slice across model z (the third axis).
 * @param Position3 Its position.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "; "Slice positions of sectional view are out of range.
 * Values must be in range from 0.0 to 1.0. "
 * @thread Any thread; waits for no frame.
 */
OCT_API void setSectionalView(VolumeRendererHandle Handle, int Show1, float Position1, int Show2,
                              float Position2, int Show3, float Position3);

/**
 * @brief Cuts the volume and the surface by a plane that faces the viewer. The sectional view is not cut.
 * @param Handle The renderer.
 * @param Enable Non-zero cuts; 0 (the start) does not.
 * @param OpenCut Non-zero leaves the cut open: only what the box's own faces show is drawn. 0 (the start)
 * closes it.
 * @param Value Position of the plane: 0 (the start) just inside the far corner, so that almost everything is
 * cut away, 1 just inside the near corner.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits for no frame.
 */
OCT_API void setClipPlane(VolumeRendererHandle Handle, int Enable, int OpenCut, float Value);

/**
 * @brief Lets the clip plane turn with the volume instead of facing the viewer.
 * @param Handle The renderer.
 * @param Fix Non-zero keeps the orientation that the plane had in the last frame that it cut, or takes that of
 * the first; 0 (the start) follows the viewer.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits for no frame.
 */
OCT_API void fixClipPlane(VolumeRendererHandle Handle, int Fix);

/**
 * @brief Chooses what is drawn around the volume. At the start everything is.
 * @param Handle The renderer.
 * @param ScaleMarks Non-zero draws scale marks with labels: one edge per axis, in millimetres, as setRange()
 * gives the box's extent. Labels keep their size in pixels, a fortieth of the viewport's height (14 to 64).
 * @param Edges Non-zero draws the edges of the box.
 * @param Box Non-zero draws the translucent faces of the box, with the volume only.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. ". Where the machine has no font, every frame with scale
 * marks is drawn without labels and reports "No font was found for text labels. "
 * @thread Any thread; waits for no frame.
 */
OCT_API void setBorder(VolumeRendererHandle Handle, int ScaleMarks, int Edges, int Box);

/**
 * @brief Shows the part of the box that the clip plane cuts away as a ghost: its faces, translucent, in the
 * foreground colour.
 * @param Handle The renderer.
 * @param Remove Non-zero: on; 0 (the start): off.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits for no frame.
 */
OCT_API void setRemoveSegment(VolumeRendererHandle Handle, int Remove);

/**
 * @brief Shows or hides volume and surface. Both are hidden at the start; an upload shows the volume and
 * hides the surface.
 * @param Handle The renderer.
 * @param Volume Non-zero shows the volume.
 * @param Surface Non-zero shows the surface of setSurface().
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits for no frame.
 */
OCT_API void setRenderElements(VolumeRendererHandle Handle, int Volume, int Surface);

/**
 * @brief Sets the colours of the background, which runs from the one to the other.
 * @param Handle The renderer.
 * @param Bottom 0xRRGGBBAA, alpha ignored; the start is 0x000066FF.
 * @param Top The same; the start is 0x000019FF.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits for no frame.
 */
OCT_API void setRenderBackground(VolumeRendererHandle Handle, unsigned int Bottom, unsigned int Top);

/**
 * @brief Sets the colour of lines and labels.
 * @param Handle The renderer.
 * @param Color 0xRRGGBBAA, alpha ignored; the start is white.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits for no frame.
 */
OCT_API void setRenderForeground(VolumeRendererHandle Handle, unsigned int Color);

/**
 * @brief Lets frames show a part of a picture that is larger than what the driver draws at once, so that the parts fit
 * without seams: lines, labels and scale marks are laid out for the whole, and each frame shows what lies in its viewport.
 * Parts agree with the whole to within rounding. Lines that end at the viewport's edge may lack half of their width: let
 * parts overlap by some pixels. pickVolume() and explainFrame() answer for the whole picture, as if that had been the frame.
 * @param Handle The renderer.
 * @param Width Width of the whole picture in pixels, 1 to 1048576. 0, with a height of 0: frames show the whole picture (the
 * start).
 * @param Height Its height, likewise.
 * @param X Column of the whole picture at the left of the viewport, which lies within 1048576 of 0.
 * @param Y Row at the bottom of the viewport, 0 at the bottom of the picture, likewise.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "; "A picture in parts must have 1 to 1048576 pixels a side. "
 * @thread Any thread; waits for no frame.
 * @since 0.2
 */
OCT_API void setRendererPart(VolumeRendererHandle Handle, unsigned int Width, unsigned int Height, int X,
                             int Y);

/**
 * @brief Sets the colour map of the volume.
 * @param Handle The renderer.
 * @param Colormap @p Count colours of four bytes each: red, green, blue, alpha (opacity of one step of a
 * ray, nothing to slices); copied before the call returns.
 * @param Count Number of colours, up to the driver's texture limit (16384 on most); 0: one that is black
 * and transparent.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "; "The number of colours must not be negative. ";
 * "Colour map data must not be null. ". A count above the driver's limit is reported by every frame
 * until there is another map; none is drawn.
 * @thread Any thread; waits for no frame.
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
 * @thread Any thread; waits for no frame.
 */
OCT_API void setRendererColoringBoundaries(VolumeRendererHandle Handle, double Lower, double Upper);

/**
 * @brief Sets which values the ends of the secondary colour map stand for.
 * @param Handle The renderer.
 * @param Lower As setRendererColoringBoundaries(), in the unit of the secondary data.
 * @param Upper As setRendererColoringBoundaries().
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits for no frame.
 */
OCT_API void setRendererSecondaryColoringBoundaries(VolumeRendererHandle Handle, double Lower, double Upper);

/**
 * @brief Sets which values the ends of the overlay's colour map stand for.
 * @param Handle The renderer.
 * @param Lower As setRendererColoringBoundaries(), in the unit of the overlay volume.
 * @param Upper As setRendererColoringBoundaries().
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits for no frame.
 */
OCT_API void setOverlayRendererColoringBoundaries(VolumeRendererHandle Handle, double Lower, double Upper);

/**
 * @brief Chooses the image of the secondary data that colours the volume in volume mode 3.
 * @param Handle The renderer.
 * @param Index 0 to the number of images less one; outside of that mode 3 draws no volume. The start is 0.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits for no frame.
 */
OCT_API void setRendererSecondarySliceIndex(VolumeRendererHandle Handle, int Index);

/**
 * @brief Explains a picture that is empty: says in plain words why the last frame with this renderer shows nothing or
 * almost nothing, and what to do about it, with the numbers that count. Of several causes it names the first that
 * suffices by itself. What counts is what the frame was drawn with, not what was set since.
 *
 * From any thread it tells what is known without OpenGL: whether there is a volume, whether it is shown, where it
 * stands, what the clip plane leaves, and how the greatest value compares with the boundaries. On the rendering
 * thread, with the renderer's context current, it draws the volume once more into a picture of its own and looks at
 * it, if nothing has been uploaded since; there it also finds what only the pixels tell. A picture of one even colour,
 * as all values below the boundaries give with the maximum or slices, counts as showing almost nothing; so does one in
 * which no pixel differs from the background by more than 2 of 255 levels. The page "Empty pictures" lists the causes.
 * @param Handle The renderer.
 * @param Text Receives the explanation, cut to @p Size bytes with its end; "" when the frame shows something. Null:
 * nothing is stored.
 * @param Size Size of @p Text in bytes.
 * @return 0: the last frame shows something, or no reason is known why it should not; 1: @p Text says why not; 0 on
 * failure.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "; on the rendering thread "An OpenGL error in explainFrame
 * occured: ..."
 * @thread Any thread; waits for no frame of another thread. The frames, and what the client has set in OpenGL, stay as
 * they are.
 * @since 0.2
 */
OCT_API int explainFrame(VolumeRendererHandle Handle, char* Text, int Size);

/**
 * @brief Tells what lies under a pixel of the last frame with this renderer: position, value and kind. It follows the
 * ray that the picture was drawn with, sample by sample: clip plane, filled part, slices, jitter and opacity length
 * count as they did there.
 *
 * - Volume modes 0 and 3: where the ray has half of the opacity that it ends with.
 * - Volume modes 1 and 2: the brightest sample of the ray, the first of several that are equal; in mode 1 of all
 *   samples, those behind one that exceeds the upper boundary included.
 * - Slices: the one that is seen.
 * - A surface: where it hides what is behind, and where what lies before it covers less than half of it.
 * - An overlay over a composite (content type 2): where its weight exceeds one half, or nothing else shows, the place
 *   of its maximum along the ray, and its value there. On slices its value where its opacity exceeds one half. Alone
 *   (content type 1) it is the volume.
 *
 * Pixels that show none of these, or with an opacity of less than half of 1/255, give OCT_PICK_NOTHING; so do pixels
 * outside of the frame. Lines, labels and glass are nothing. Voxels are those of the volume that the frame showed; with a
 * surface alone, without any volume, they are -0.5.
 *
 * The frame is not drawn again, only this pixel of it. The first call in a mode builds a program.
 * @param Handle The renderer.
 * @param X Column of the pixel, 0 at the left of the viewport that the frame was drawn in.
 * @param Y Row, 0 at the bottom.
 * @param Pick Receives the answer; its size must be set.
 * @return The kind, an OctPickKind; OCT_PICK_NOTHING as well on failure, with @p Pick as it was.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "; "The size of the pick must be set. ", also for null; "Draw a frame
 * before picking. ", also after a frame that failed; "The volume has changed since the last frame. Draw a frame before
 * picking. " (something was uploaded, allocated or cleared); "No OpenGL context is current on the calling thread. ";
 * "The renderer was initialised in another OpenGL context. "; "OpenGL gave no target to pick with. "; "An OpenGL error in
 * pickVolume occured: ..."
 * @thread Rendering thread, with the context of the frame current. The next frame, and what the client has set in OpenGL,
 * stay as they are.
 * @since 0.2
 */
OCT_API int pickVolume(VolumeRendererHandle Handle, int X, int Y, OctPick* Pick);

/**
 * @brief Sets the surface, a height map over the two lateral axes. It is opaque and hides what lies behind it,
 * of the volume, of slices and of lines; the clip plane cuts it with the volume.
 * @param Handle The renderer.
 * @param Width Number of samples along the first lateral axis. 0 samples take the surface away.
 * @param Height Number of samples along the second lateral axis.
 * @param Scale Depth of the whole box in the unit of @p Values.
 * @param Values Width * Height floats, row by row: the depth of each sample; copied before the call returns.
 * A sample that is not finite leaves a hole.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "; "The size of a surface must not be negative. ";
 * "Surface data must not be null. "; "The scale of a surface must be a number other than zero. ";
 * "The surface has too many samples. "
 * @thread Any thread; waits for no frame.
 */
OCT_API void setSurface(VolumeRendererHandle Handle, int Width, int Height, double Scale,
                        const float* Values);

/**
 * @brief Sets the depths between which the surface runs through its colour map. Call after setSurface(),
 * whose scale it uses.
 * @param Handle The renderer.
 * @param Lower First depth, in the unit of the surface's values.
 * @param Upper Second depth.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits for no frame.
 */
OCT_API void setSurfaceDepths(VolumeRendererHandle Handle, double Lower, double Upper);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* OCT_RENDERING_VOLUME_H */
