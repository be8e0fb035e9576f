/**
 * @file types.h
 * @brief Handles, callbacks and constants. Part of oct_rendering.h.
 */
#ifndef OCT_RENDERING_TYPES_H
#define OCT_RENDERING_TYPES_H

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
 * @brief Receives a finished frame on the return thread: its key (the id of the request), its size in pixels,
 * and its surface, which nobody draws into until the function returns.
 */
typedef void (*OctImageReadyFunction)(unsigned int index, unsigned int width, unsigned int height,
                                      void* surface);

/**
 * @brief The same callbacks with a pointer of the client's, which they get back as it was given to the function that set
 * them. Its lifetime is the client's affair: it must last as long as the callback may be called.
 */
typedef void (*OctErrorFunctionWithUser)(const char* message, void* user);
typedef void (*OctLoopFunctionWithUser)(void* user);                    /**< see OctLoopFunction */
typedef void (*OctRenderFunctionWithUser)(unsigned int id, void* user); /**< see OctRenderFunction */
typedef void (*OctImageReadyFunctionWithUser)(unsigned int index, unsigned int width, unsigned int height,
                                              void* surface, void* user); /**< see OctImageReadyFunction */

/**
 * @brief A surface in host memory. Pixels have 8 bits each of blue, green, red and alpha, in this order, and the
 * first row is the bottom one, unless setHostPixelFormat() chose otherwise before the loop was made.
 */
typedef struct OctHostSurface {
  unsigned int width;        /**< pixels */
  unsigned int height;       /**< pixels */
  unsigned int stride_bytes; /**< from one row to the next */
  unsigned char* pixels;     /**< stride_bytes for each row */
} OctHostSurface;

/**
 * @brief Receives a timing mark: its name, which is valid until the function returns, the system's number of the thread
 * that set it, and the time in nanoseconds of the system's monotonic clock (CLOCK_MONOTONIC, QueryPerformanceCounter).
 */
typedef void (*OctTimingFunction)(const char* name, unsigned int thread, unsigned long long nanoseconds,
                                  void* user);

/** @brief Result of the error functions while an error is pending: 0xE0000000 as a signed 32-bit number. */
#define OCT_RENDERER_ERROR (-536870912)

/** @brief Number of overlay layers that a display renderer holds. */
#define OCT_DISPLAY_OVERLAYS 8

#endif /* OCT_RENDERING_TYPES_H */
