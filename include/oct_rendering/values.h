/**
 * @file values.h
 * @brief Names for the numbers that select something. Part of oct_rendering.h.
 *
 * Functions take these values as plain ints, so that programs in any language can pass the numbers.
 */
#ifndef OCT_RENDERING_VALUES_H
#define OCT_RENDERING_VALUES_H

/** @defgroup values Named values */
/** @{ */

/** @brief Kind of an error: what getRendererErrorKind() returns. */
typedef enum OctErrorKind {
  OCT_ERROR_NONE = 0,     /**< no error */
  OCT_ERROR_ARGUMENT = 1, /**< a handle, a number or a pointer that the function cannot work with */
  OCT_ERROR_STATE = 2,  /**< the call comes at the wrong time, on the wrong thread or in the wrong context */
  OCT_ERROR_OPENGL = 3, /**< OpenGL, Direct3D or what they share: a driver that is too old, or failed */
  OCT_ERROR_MEMORY = 4, /**< no memory, on the host or on the graphics card */
  OCT_ERROR_DEVICE = 5, /**< the device library: missing, incomplete, or with an error of its own */
  OCT_ERROR_SYSTEM = 6  /**< the operating system: files, threads, windows, fonts */
} OctErrorKind;

/** @brief What a volume renderer draws; see setRenderingMode(). */
typedef enum OctRenderingMode {
  OCT_RENDERING_RAY_CASTING = 0, /**< the whole volume */
  OCT_RENDERING_SECTIONS = 1     /**< slices through it */
} OctRenderingMode;

/** @brief What a ray makes of the voxels that it meets; see setVolumeMode(). */
typedef enum OctVolumeMode {
  OCT_VOLUME_COMPOSITE = 0,    /**< composited by the opacity of the colour map */
  OCT_VOLUME_MAXIMUM = 1,      /**< the brightest */
  OCT_VOLUME_MEAN = 2,         /**< their mean */
  OCT_VOLUME_DUAL_COLORING = 3 /**< composited, in colours modulated by the secondary data */
} OctVolumeMode;

/** @brief Which offline volume a frame shows; see renderOfflineVolume(). */
typedef enum OctContentType {
  OCT_CONTENT_VOLUME = 0,            /**< the volume */
  OCT_CONTENT_OVERLAY = 1,           /**< the overlay volume alone, in its own colours */
  OCT_CONTENT_VOLUME_AND_OVERLAY = 2 /**< both */
} OctContentType;

/** @brief What a control loop does with its requests; see OpenGLControlLoopMode(). */
typedef enum OctLoopMode {
  OCT_LOOP_ONCE = 0,  /**< every request is drawn once */
  OCT_LOOP_CYCLE = 1, /**< all requests are drawn in turn, for ever */
  OCT_LOOP_REPEAT = 2 /**< the first request is drawn again and again; in force during snapshots */
} OctLoopMode;

/** @brief What frames are handed over in; see setSurfaceSharing(). */
typedef enum OctSurfaceSharing {
  OCT_SHARING_DIRECT3D = 0,   /**< Direct3D 9Ex surfaces, IDirect3DSurface9* */
  OCT_SHARING_HOST_MEMORY = 1 /**< host memory, OctHostSurface* */
} OctSurfaceSharing;

/** @brief The order of pixels in memory, 8 bits a channel; see finishOffscreenFrameAs(). */
typedef enum OctPixelFormat {
  OCT_PIXELS_BGRA = 0,          /**< blue, green, red, alpha; the bottom row first */
  OCT_PIXELS_RGBA = 1,          /**< red, green, blue, alpha; the bottom row first */
  OCT_PIXELS_BGRA_TOP_DOWN = 2, /**< blue, green, red, alpha; the top row first */
  OCT_PIXELS_RGBA_TOP_DOWN = 3  /**< red, green, blue, alpha; the top row first */
} OctPixelFormat;

/** @brief What a polarization-sensitive source draws; see selectOnlineDataSource_PS(). */
typedef enum OctPolarizationOutput {
  OCT_POLARIZATION_INTENSITY = 0,
  OCT_POLARIZATION_RETARDATION = 1,
  OCT_POLARIZATION_OPTIC_AXIS = 2,
  OCT_POLARIZATION_DOPU = 3,     /**< degree of polarization uniformity */
  OCT_POLARIZATION_Q = 4,        /**< Stokes Q */
  OCT_POLARIZATION_U = 5,        /**< Stokes U */
  OCT_POLARIZATION_V = 6,        /**< Stokes V */
  OCT_POLARIZATION_SENSOR_0 = 7, /**< intensity of sensor 0, without polarization processing */
  OCT_POLARIZATION_SENSOR_1 = 8  /**< intensity of sensor 1, without polarization processing */
} OctPolarizationOutput;

/** @brief What lies under a pixel; see pickVolume(). */
typedef enum OctPickKind {
  OCT_PICK_NOTHING = 0, /**< the background, or what is too transparent to be seen */
  OCT_PICK_VOLUME = 1,  /**< the volume that is cast */
  OCT_PICK_SLICE = 2,   /**< a slice of the sectional view */
  OCT_PICK_SURFACE = 3  /**< the surface of setSurface() */
} OctPickKind;

/** @brief Axes of a volume, the fastest in memory first: indices of the positions in OctPick. */
typedef enum OctAxis {
  OCT_AXIS_DEPTH = 0,  /**< axial: samples of an A-scan; model y */
  OCT_AXIS_A_SCAN = 1, /**< lateral: A-scans of a B-scan; model x */
  OCT_AXIS_B_SCAN = 2  /**< lateral: B-scans; model z */
} OctAxis;

/** @} */

#endif /* OCT_RENDERING_VALUES_H */
