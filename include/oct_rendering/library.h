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

#ifdef __cplusplus
}
#endif

#endif /* OCT_RENDERING_LIBRARY_H */
