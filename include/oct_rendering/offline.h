/**
 * @file offline.h
 * @brief Volumes that a client uploads. Part of oct_rendering.h.
 */
#ifndef OCT_RENDERING_OFFLINE_H
#define OCT_RENDERING_OFFLINE_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup offline Offline volumes
 *
 * Shows a volume that the client holds in memory. Order of calls, on the rendering thread:
 * createOfflineRendering(); setOfflineRenderingRenderer() with an initialised volume renderer;
 * setOfflineAspectRatio(); allocateOfflineVolume(); uploads; renderOfflineVolume() per frame;
 * clearOfflineRendering(). The renderer must live as long as it is attached. Several objects, and live volumes, may
 * share one renderer: each frame shows what its own object has, in that object's aspect ratio.
 *
 * A volume is Width * Height * Depth floats with Width (depth in the tissue, samples of an A-scan) fastest
 * and Depth (slices, B-scans) slowest in memory. It is kept with 16 bits per voxel; values keep 11 bits of
 * precision and must lie within -65504 to 65504. An extent may reach the driver's limit for 3-D textures
 * (2048 on most).
 *
 * Where another context is current than that of allocateOfflineVolume(), nothing is allocated: uploads say so, frames
 * show the scene without the volume, and allocateOfflineVolume() allocates there. The same holds for the overlay
 * and the secondary data.
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
OCT_API void setOfflineAspectRatio(OfflineRenderingHandle Handle, float Axial, float Lateral1,
                                   float Lateral2);

/**
 * @brief Makes the texture of the volume in the current context. The sizes it has there already: nothing happens and
 * the contents stay.
 * Other sizes: the new volume is empty and shows nothing until something is uploaded, and the volume before is gone
 * with its overlay and secondary data. For a moment the driver holds both. After an error the picture stays as it
 * was, and uploads are refused until an allocation succeeds.
 * @param Handle The object, with a renderer attached.
 * @param Width Voxels along the first axis, 0 or more.
 * @param Height Voxels along the second axis.
 * @param Depth Voxels along the third axis, the slices.
 * @par Errors
 * "The specified OfflineRenderingHandle is invalid. ";
 * "Attach a volume renderer before allocating a volume. "; "Volume sizes must not be negative. "; "A volume
 * of ... voxels is too large: this OpenGL driver allows ... voxels along each axis. "; "A volume of ...
 * voxels needs a texture of ... MB, more than this OpenGL driver allows. "; "An OpenGL error in
 * OfflineVolumeRendering::allocate, glTexImage3D occured: ... A volume of ... voxels needs a texture of ...
 * MB, which the driver could not provide. "; "No OpenGL context is current on the calling thread. "
 * @thread Rendering thread.
 */
OCT_API void allocateOfflineVolume(OfflineRenderingHandle Handle, int Width, int Height, int Depth);

/**
 * @brief Uploads the whole volume and shows it.
 * @param Handle The object.
 * @param Volume Width * Height * Depth floats; read before the call returns.
 * @par Errors
 * "The specified OfflineRenderingHandle is invalid. "; "Volume data must not be null. ";
 * "Allocate a volume before uploading one. ";
 * "An OpenGL error in OfflineVolumeRendering::upload occured: ..."
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
 * @param Block Width * Height * (End - First) floats, starting with slice First; read before the call
 * returns. Null: the volume counts as empty from now on.
 * @par Errors
 * "The specified OfflineRenderingHandle is invalid. "; "Allocate a volume before uploading one. ";
 * "The slices lie outside the allocated volume. ";
 * "An OpenGL error in OfflineVolumeRendering::upload occured: ..."
 * @thread Rendering thread.
 */
OCT_API void uploadOfflineSubVolume(OfflineRenderingHandle Handle, int First, int End, const float* Block);

/**
 * @brief Uploads one slice and shows the volume up to, and without, that slice.
 * @param Handle The object.
 * @param Index Index of the slice.
 * @param Slice Width * Height floats; read before the call returns.
 * @par Errors
 * "The specified OfflineRenderingHandle is invalid. "; "Slice data must not be null. ";
 * "Allocate a volume before uploading one. "; "The slices lie outside the allocated volume. ";
 * "An OpenGL error in OfflineVolumeRendering::upload occured: ..."
 * @thread Rendering thread.
 */
OCT_API void uploadOfflineVolumeSlice(OfflineRenderingHandle Handle, int Index, const float* Slice);

/**
 * @brief Uploads a volume that is laid over the first one.
 * @param Handle The object, with a volume allocated.
 * @param Volume As many floats as the allocated volume has voxels; read before the call returns. Null frees
 * the overlay.
 * @par Errors
 * "The specified OfflineRenderingHandle is invalid. "; "Allocate a volume before uploading one. "; reasons of
 * size as allocateOfflineVolume(); "An OpenGL error in OfflineVolumeRendering::upload_overlay occured: ..."
 * @thread Rendering thread.
 */
OCT_API void uploadOverlayOfflineVolume(OfflineRenderingHandle Handle, const float* Volume);

/**
 * @brief Uploads images over the two lateral axes that colour the volume in volume mode 3, whole or in
 * blocks. A block that starts at 0 begins anew.
 * @param Handle The object, with a renderer attached.
 * @param Height Samples along the first lateral axis (model x), the second of the texture.
 * @param Depth Samples along the second lateral axis (model z), the third of the texture.
 * @param Width Number of images, the first axis of the texture and fastest in memory.
 * @param First First sample of the block along @p Depth.
 * @param Count Number of samples of the block along @p Depth.
 * @param Data Width * Height * Count floats; read before the call returns. Null frees the secondary data.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. " (a null handle, or no renderer attached);
 * "The secondary data lies outside its texture. "; "The first block of secondary data must start at 0. ";
 * reasons of size as allocateOfflineVolume();
 * "An OpenGL error in OfflineVolumeRendering::upload_secondary_data occured: ..."
 * @thread Rendering thread.
 */
OCT_API void uploadOfflineSecondaryData(OfflineRenderingHandle Handle, int Height, int Depth,
                                        unsigned int Width, unsigned int First, unsigned int Count,
                                        const float* Data);

/**
 * @brief Draws one frame into the current framebuffer and viewport. Does nothing while no renderer is
 * attached; without a volume the frame shows the rest of the scene.
 * @param Handle The object.
 * @param ContentType An OctContentType. 0: the volume; 1: the overlay volume alone, in its own colours; 2: the volume with the
 * overlay.
 * @par Errors
 * "The specified OfflineRenderingHandle is invalid. "; "Content type is not supported for rendering. ";
 * "Program has not been compiled yet." (the renderer is not initialised); "The renderer was initialised in another
 * OpenGL context. "; "Could not create OpenGL buffer. ";
 * "Invalid texture for rendering...."; those of a program that the frame is the first to need: "Vertex shader
 * compilation failed"; "Fragment shader compilation failed"; "" (it did not link, see the log), and the next frame tries
 * again; "An OpenGL error occured. Framebuffer is not complete: ...";
 * "An OpenGL error in ... occured: ...". What a frame could not upload is uploaded by the next.
 * @par OpenGL state
 * Given back as it was; see docs/opengl_state.md.
 * @thread Rendering thread.
 */
OCT_API void renderOfflineVolume(OfflineRenderingHandle Handle, int ContentType);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* OCT_RENDERING_OFFLINE_H */
