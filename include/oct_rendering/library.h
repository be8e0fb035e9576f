/**
 * @file library.h
 * @brief The library itself: version, errors, log. Part of oct_rendering.h.
 */
#ifndef OCT_RENDERING_LIBRARY_H
#define OCT_RENDERING_LIBRARY_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup library Library
 *
 * The library tells on the standard output when it is loaded and unloaded, which OpenGL it found and when a loop has
 * ended. A program whose output is read by others keeps these lines away by the environment variable
 * OCT_RENDERING_QUIET, set to anything but "0" or nothing before the library is loaded, or for good by OCT_QUIET_PROGRAM
 * in one of its source files. Errors go to the standard error stream all the same.
 */
/** @{ */

/** @cond */
#if defined(_WIN32)
#define OCT_QUIET_PROGRAM_EXPORT __declspec(dllexport)
#else
#define OCT_QUIET_PROGRAM_EXPORT __attribute__((visibility("default")))
#endif
#ifdef __cplusplus
#define OCT_QUIET_PROGRAM_LINKAGE extern "C"
#else
#define OCT_QUIET_PROGRAM_LINKAGE extern
#endif
/** @endcond */

/**
 * @brief Marks the program that it stands in, at namespace scope in one file: the library writes nothing to its standard
 * output. A program on Linux that loads the library by name exports the mark to it
 * (-Wl,--export-dynamic-symbol=oct_rendering_quiet); one that is linked with it does so by itself.
 * @since 0.2
 */
#define OCT_QUIET_PROGRAM                                                           \
  OCT_QUIET_PROGRAM_LINKAGE OCT_QUIET_PROGRAM_EXPORT const int oct_rendering_quiet; \
  const int oct_rendering_quiet = 1

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
 * @brief Reads and clears one pending error: the calling thread's own, else that of the thread with the
 * lowest identifier.
 * @param Message Receives the text with its terminating NUL, at most @p Size bytes in all; a longer text is
 *        cut. Null discards the text. Untouched when no error is pending. A text that concerns the whole
 * process
 *        ("Processor with SSE 4.2 required for proper operation.") stays pending after it was read.
 * @param Size Size of @p Message in bytes; with 0 or less nothing is written.
 * @return OCT_RENDERER_ERROR when an error was pending, else 0.
 * @thread Any thread.
 */
OCT_API int getRendererError(char* Message, int Size);

/**
 * @brief Reads and clears the pending error of the calling thread, and of no other: what a program asks after a call
 * that has threads which fail at the same time. getRendererErrorKind() then tells its kind.
 * @param Message As getRendererError().
 * @param Size As getRendererError().
 * @return OCT_RENDERER_ERROR when the thread had an error pending, else 0.
 * @thread Any thread.
 * @since 0.2
 */
OCT_API int getOwnRendererError(char* Message, int Size);

/**
 * @brief Tells the kind of the calling thread's pending error, or of the error that it read last when it has none
 * pending: also after getRendererError() has taken the text, also where that was another thread's. Consumes nothing.
 * Kinds stay the same from version to version, as the texts do; docs/errors.md has both.
 * @return A value of OctErrorKind; OCT_ERROR_NONE on a thread without an error of its own that has read none.
 * @thread Any thread.
 * @since 0.2
 */
OCT_API int getRendererErrorKind(void);

/**
 * @brief What an OpenGL context has to offer; see getRendererInfo().
 */
typedef struct OctRendererInfo {
  unsigned int size; /**< set by the caller to sizeof(OctRendererInfo); fields beyond it are left alone */
  unsigned int
      sharings; /**< bit n: surface sharing n works (OctSurfaceSharing); 0 where the library cannot draw */
  char vendor[128];                     /**< of the driver; texts of more than 127 bytes are cut */
  char renderer[128];                   /**< the graphics card, or what draws in its place */
  char version[128];                    /**< of OpenGL, and of the driver after it */
  unsigned int max_texture_size;        /**< samples along each axis of an image */
  unsigned int max_3d_texture_size;     /**< voxels along each axis of a volume; memory may end before */
  unsigned long long free_video_memory; /**< bytes; 0 where the driver does not tell */
} OctRendererInfo;

/**
 * @brief Tells about the OpenGL context that is current on the calling thread, whatever its version; where none is, about
 * one of the library's own, which is made for the question. What is current stays current.
 * @param Info Receives it; size must be set. Size itself is never changed.
 * @par Errors
 * "The size of the information must be set. " for null as well. Without a context those of createOffscreenTarget().
 * @thread Any thread.
 * @since 0.2
 */
OCT_API void getRendererInfo(OctRendererInfo* Info);

/**
 * @brief Sets the file that the library log is appended to, for every process that has the library loaded.
 * @param FileName Path of the file as a NUL-terminated string of at most 1024 bytes; null or empty: no file.
 * The text is copied. A file that cannot be opened loses the log, nothing else.
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

/**
 * @brief setErrorCallback() with a pointer for the callback. A source has one such function: the one
 * that was set last, whichever way.
 * @param DataSource The source.
 * @param Callback As there, with @p user.
 * @param user Handed to the callback; it must last until no call with it is running any more, which is certain once the
 * source has been stopped or cleared.
 * @par Errors
 * "The specified LiveDataSourceHandle is invalid. "
 * @thread Any thread.
 * @since 0.2
 */
OCT_API void setErrorCallbackWithUser(LiveDataSourceHandle DataSource, OctErrorFunctionWithUser Callback,
                                      void* user);

/** @} */

/** @defgroup traces Traces */
/** @{ */

/**
 * @brief Writes what the library does, and when, to a file in Chrome's trace format, as docs/tracing.md describes.
 *
 * The environment variable OCT_RENDERING_TRACE does the same from the loading of the library on.
 * @param FileName Path of the file, which is overwritten; "%p" in it stands for the number of the process. A trace that
 *        is being written ends. Null or empty: it ends, and no other one begins. The file is valid JSON at any time;
 *        up to 0.2 seconds of events are in memory until the trace or the process ends.
 * @par Errors
 * "The trace file could not be opened: " and "The trace file could not be written: ", each followed by the reason of the
 * system; the trace that was being written goes on. A trace that can no longer be written, for example because
 * the disk is full, ends with such a line on the standard error stream and in the log.
 * @thread Any thread.
 * @since 0.2
 */
OCT_API void setRendererTraceFile(const char* FileName);

/**
 * @brief Hands timing marks to the profiler of a host.
 *
 * Phases of one thread nest. Of a phase that had begun before the functions were set they hear nothing.
 * @param Begin Called when a phase begins, on the thread that it is of; null: not told.
 * @param End Called when it ends, with the same name, on the same thread; null: not told.
 * @param Instant Called at points in time; null: not told.
 * @param user Handed back to the functions.
 *
 * Replaces the functions that were set before, which hear the end of each phase that they have heard begin: of those that
 * are still open before this returns, on the calling thread, with the number of the phase's thread. No call of them
 * is running or comes after this has returned. Three null functions: nobody is called any more. Do not hold a lock
 * that the functions take.
 *
 * What the functions do costs the library's threads time. Marks that the library would set within them are not told. From
 * within one of the functions this replaces them at once: they get no further ends, but other threads may still be
 * within a call.
 * @par Errors
 * "Too many listen to the timing marks. "
 * @thread Any thread.
 * @since 0.2
 */
OCT_API void setRendererTimingCallback(OctTimingFunction Begin, OctTimingFunction End,
                                       OctTimingFunction Instant, void* user);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* OCT_RENDERING_LIBRARY_H */
