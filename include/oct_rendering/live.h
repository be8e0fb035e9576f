/**
 * @file live.h
 * @brief Live volumes: from a device that measures to the screen. Part of oct_rendering.h.
 */
#ifndef OCT_RENDERING_LIVE_H
#define OCT_RENDERING_LIVE_H

/* OCTDeviceHandle, ProcessingHandle, PolarizationProcessingHandle, ScanPatternHandle: objects of the device library,
   passed through and never freed. A program that has these types already defines OCT_DEVICE_HANDLES first. */
#include "../oct_device/oct_device_types.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @brief Carries live volumes to a volume renderer. Null is the invalid handle. */
typedef struct OctLiveVolumeRendering* LiveVolumeRenderingHandle;

/** @brief Receives the reference intensity of the volume acquired last, 0 to 1. */
typedef void (*OctIntensityFunction)(double intensity);

/** @brief OctIntensityFunction with a pointer of the client's, which it gets back. */
typedef void (*OctIntensityFunctionWithUser)(double intensity, void* user);

/**
 * @brief Receives the samples of a live volume; see setVolumeCallbackWithUser().
 *
 * The samples are 32-bit floats, depth fastest, then A-scans, then B-scans, as they are drawn: decibels or a polarization's
 * quantity, of each A-scan as many samples as setSizeZ() keeps. They may be read until the function returns. The index counts
 * the volumes that the device has given without an error since startDataSource(), from 0 on; one that is missing came while
 * another function was set, or none. The time is that of the end of the volume's processing, in nanoseconds of the system's
 * monotonic clock (CLOCK_MONOTONIC, QueryPerformanceCounter).
 */
typedef void (*OctVolumeFunctionWithUser)(const float* samples, int depth, int a_scans, int b_scans,
                                          unsigned long long index, unsigned long long nanoseconds,
                                          void* user);

/**
 * @brief What became of the volumes of a live renderer; see getLiveStatistics().
 */
typedef struct OctLiveStatistics {
  unsigned int size; /**< set by the caller to sizeof(OctLiveStatistics); fields beyond it are left alone */
  unsigned int reserved;                /**< 0 */
  unsigned long long acquired;          /**< volumes that the device gave without an error */
  unsigned long long handed_over;       /**< copied to where the driver reads them */
  unsigned long long shown;             /**< drawn by a frame */
  unsigned long long dropped_no_frame;  /**< no frame had made a buffer free within 100 ms */
  unsigned long long dropped_withdrawn; /**< on their way at a stop, or when another source took over */
  unsigned long long dropped_by_driver; /**< the driver lost the buffer, or no frame could be drawn with it */
  unsigned long long
      dropped_by_device;     /**< left out by the device because nobody fetched them in time; 0 for a
                                             device library that does not tell */
  double volumes_per_second; /**< shown within the last second */
  double
      latency_median_ms; /**< from the end of the processing to the end of the renderVolume() that shows it, */
  double latency_p99_ms;   /**< of the last 1,000 volumes; 99 of 100 came earlier */
  double latency_worst_ms; /**< the worst of these 1,000 */
} OctLiveStatistics;

/**
 * @defgroup live Live volumes
 *
 * A data source acquires volumes on a thread of its own; a live renderer takes each to the graphics card and
 * draws it. Order of calls:
 *  - on the rendering thread, with an initialised volume renderer: createLiveRendering(),
 *    setLiveVolumeRenderingRenderer();
 *  - createOnlineDataSource() or createOnlineDataSource_PS(), its settings, startDataSource();
 *  - renderVolume() once per frame on the rendering thread; the first call does what the source waits for;
 *  - stopDataSource(); one more renderVolume() frees the OpenGL objects;
 *    clearDataSource(), clearLiveRendering().
 *
 * The volumes are drawn when setRenderElements() shows the volume, their surface when it shows the surface.
 * The volume renderer's range follows the device: depth, divided by the refractive index, and the two lateral
 * axes, in millimetres. A volume for which no buffer is free within 100 ms is not drawn; acquisition goes on.
 *
 * Errors of the device reach the function of setErrorCallback(), on the acquisition thread: one at the first
 * volume ends the thread, and so does any of a polarization-sensitive source. At a later volume of a
 * standard source nothing is handed over, and the source tries again after a pause, which grows from 10 to
 * 500 ms while errors follow each other. Other failures on that thread arrive there as well and end it:
 * "Insufficient memory allocated." (the device's volume, or its analog input, is smaller than what is to be
 * drawn), "Volume sizes must not be negative. ", "The volume has too many voxels for live rendering. ", what
 * renderVolume() says when it cannot make the OpenGL objects,
 * "The live renderer of the source was cleared. ". Without such a function they go to the standard
 * error stream and to the log. After its thread has ended a source can be started again, with
 * stopDataSource() first or without.
 *
 * A live renderer draws one source: one that is started takes it over, and the one before measures on
 * without a picture.
 */
/** @{ */

/**
 * @brief Sets which device library live sources call.
 * @param NameOrPath Name without prefix and suffix (default "oct_device"), or a path; null or empty: the
 * default. The text is copied. The library is bound at the next createOnlineDataSource() or
 * createOnlineDataSource_PS(): a module of that name that the process has loaded, else the one that the
 * system's safe search finds. It stays loaded. Sources keep the library they were made with.
 * @thread Any thread.
 */
OCT_API void setDeviceLibrary(const char* NameOrPath);

/**
 * @brief Makes a live renderer. Does no OpenGL work.
 * @return The object, to be freed with clearLiveRendering(); null on failure.
 * @thread Any thread.
 */
OCT_API LiveVolumeRenderingHandle createLiveRendering(void);

/**
 * @brief Frees a live renderer. Its OpenGL objects are freed by renderVolume() after stopDataSource().
 * @param Handle The live renderer. A source that is running with it ends with an error,
 * "The live renderer of the source was cleared. ".
 * @par Errors
 * "Cannot lock nullptr. "
 * @thread Any thread that does not hold up a frame: it waits for the one in progress, and for a copy of the
 * acquisition thread.
 */
OCT_API void clearLiveRendering(LiveVolumeRenderingHandle Handle);

/**
 * @brief Sets the volume renderer that draws the volumes.
 * @param Handle The live renderer.
 * @param Renderer The volume renderer, which stays the client's and must live as long as it is set: until this
 * function has set another one, clearLiveRendering() has returned, or, when no source is running, the last
 * renderVolume().
 * @par Errors
 * "Invalid Live Rendering Handle specified. "; "Cannot lock nullptr. " for a null renderer
 * @thread Any thread; waits for the frame in progress and for what the acquisition thread is setting on the
 * one before.
 */
OCT_API void setLiveVolumeRenderingRenderer(LiveVolumeRenderingHandle Handle, VolumeRendererHandle Renderer);

/**
 * @brief Tells whether a live renderer is in use, from startDataSource() to the renderVolume() that follows
 *        stopDataSource().
 * @param Handle The live renderer.
 * @return True unless it is stopped.
 * @par Errors
 * "Cannot lock nullptr. "
 * @thread Any thread; waits for the frame in progress.
 */
OCT_API bool isLiveVolumeRunning(LiveVolumeRenderingHandle Handle);

/**
 * @brief Draws one frame: takes the latest volume to the graphics card, hands the acquisition thread the next
 * buffer, draws the volume renderer's scene into the current target. The first frame after startDataSource()
 * makes the OpenGL objects and draws nothing; so does the one after stopDataSource(), which frees them. A
 * live renderer that is stopped draws nothing.
 * @param Handle The live renderer.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "; "No OpenGL context is current on the calling thread. ";
 * "A volume of ... voxels is too large: this OpenGL driver allows ... voxels along each axis. "; "A volume of
 * ... voxels needs a texture of ... MB, more than this OpenGL driver allows. "; "This is an error." (the
 * driver gave no buffer); "The renderer was initialised in another OpenGL context. " (than
 * that of the first frame after startDataSource());
 * "An OpenGL error in FastOpenGLVolumeRenderer::... occured: ..."; those of the volume renderer's frame
 * @thread Rendering thread.
 */
OCT_API void renderVolume(LiveVolumeRenderingHandle Handle);

/**
 * @brief Volumes per second, measured between the last two that were uploaded in this process.
 * @param Handle The live renderer.
 * @return The rate; 0 before the first volume; infinite when less than a
 * millisecond had passed, as at the first.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread; waits for the frame in progress.
 */
OCT_API double getRenderedVolumesPerSec(LiveVolumeRenderingHandle Handle);

/**
 * @brief How many volumes came to the screen since createLiveRendering(), and how many did not. A volume
 * whose acquisition was stopped on its way counts as neither.
 * @param Handle The live renderer.
 * @param Drawn Receives the number of volumes that renderVolume() has shown; may be null.
 * @param Dropped Receives the number of volumes for which no buffer was free within 100 ms, or whose buffer
 * the driver lost; may be null. Both begin anew after 4,294,967,295.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "
 * @thread Any thread, callbacks of a source among them; never waits.
 */
OCT_API void getLiveVolumeCounts(LiveVolumeRenderingHandle Handle, unsigned int* Drawn,
                                 unsigned int* Dropped);

/**
 * @brief Tells what became of every volume since createLiveRendering(), how often volumes come to the screen
 * and how old they are then.
 * @param Handle The live renderer.
 * @param Statistics Receives the numbers; its size must be set.
 * @par Errors
 * "The specified VolumeRendererHandle is invalid. "; "The size of the statistics must be set. ", also for
 * null
 * @thread Any thread, callbacks of a source among them; never waits.
 */
OCT_API void getLiveStatistics(LiveVolumeRenderingHandle Handle, OctLiveStatistics* Statistics);

/**
 * @brief Size of the live volumes in voxels; 0 before the first measurement.
 * @param Handle The live renderer.
 * @param X Receives the depth samples per A-scan that are drawn; may be null.
 * @param Y Receives the A-scans per B-scan; may be null.
 * @param Z Receives the B-scans; may be null.
 * @par Errors
 * "The specified LiveDataSourceHandle is invalid. "
 * @thread Any thread.
 */
OCT_API void getLiveVolumeRenderingSize(LiveVolumeRenderingHandle Handle, int* X, int* Y, int* Z);

/**
 * @brief Makes a source of live volumes.
 * @param Dev The device.
 * @param Proc The processing of its spectra. Both must outlive the source.
 * @return The source, to be freed with clearDataSource(); null on failure.
 * @par Errors
 * "The specifided OCTDeviceHandle is invalid. "; "The specifided ProcessingHandle is invalid. "; "The device
 * library
 * "..." could not be loaded: ... "; "The device library "..." has no function "...". "
 * @thread Any thread.
 */
OCT_API LiveDataSourceHandle createOnlineDataSource(OCTDeviceHandle Dev, ProcessingHandle Proc);

/**
 * @brief Makes a source of polarization-sensitive volumes from a device with two sensors.
 * @param Dev The device.
 * @param Proc0 The processing of sensor 0.
 * @param Proc1 The processing of sensor 1.
 * @param PS_Proc The polarization processing. All four must outlive the source.
 * @return The source, to be freed with clearDataSource(); null on failure.
 * @par Errors
 * "The specifided OCTDeviceHandle is invalid. ";
 * "The specifided ProcessingHandle for camera/sensor-0 is invalid. ";
 * "The specifided ProcessingHandle for camera/sensor-1 is invalid. ";
 * "The specifided PolarizationProcessingHandle is invalid. ";
 * "The device library "..." could not be loaded: ... "; "The device library "..." has no function "...". "
 * @thread Any thread.
 */
OCT_API LiveDataSourceHandle createOnlineDataSource_PS(OCTDeviceHandle Dev, ProcessingHandle Proc0,
                                                       ProcessingHandle Proc1,
                                                       PolarizationProcessingHandle PS_Proc);

/**
 * @brief Stops the source, waits for its thread and frees it.
 * @param DataSource The source; null is ignored.
 * @par Errors
 * The system's text for a resource deadlock, from one of the source's own callbacks: the
 * source stops and is not freed.
 * @thread Any thread but the source's own.
 */
OCT_API void clearDataSource(LiveDataSourceHandle DataSource);

/**
 * @brief Starts acquisition.
 * @param Renderer The live renderer that draws the volumes.
 * @param DataSource The source.
 * @param Pattern The scan pattern; it must outlive the measurement.
 * @par Errors
 * In this order: "The specified LiveDataSourceHandle is invalid. " (source);
 * "The specified VolumeRendererHandle is invalid. " (live renderer);
 * "The specified ScanPatternHandle is invalid. "; then "BrennickDataSource already running". A
 * running source is left as it is.
 * @thread Any thread but the source's own; waits for the frame in progress.
 */
OCT_API void startDataSource(LiveVolumeRenderingHandle Renderer, LiveDataSourceHandle DataSource,
                             ScanPatternHandle Pattern);

/**
 * @brief Ends acquisition and waits until the volume in progress has arrived. The rendering thread need not
 * render meanwhile.
 * @param DataSource The source; one that is not running is left as it is.
 * @par Errors
 * "The specified LiveDataSourceHandle is invalid. "; the system's text for a resource deadlock, from one of
 * the source's own callbacks: the source stops all the same, without anybody waiting for it.
 * @thread Any thread but the source's own.
 */
OCT_API void stopDataSource(LiveDataSourceHandle DataSource);

/**
 * @brief Ends acquisition as stopDataSource() does, without waiting for the volume in progress: the device
 * is told to give it up. A device that does not listen to that is waited for.
 * @param DataSource The source; one that is not running is left as it is.
 * @par Errors
 * Those of stopDataSource()
 * @thread Any thread but the source's own.
 */
OCT_API void cancelDataSource(LiveDataSourceHandle DataSource);

/**
 * @brief Tells whether a source acquires volumes.
 * @param DataSource The source.
 * @return True from startDataSource() until its thread ends: after a stop, or by itself after an error.
 * False while it waits for its stop because no volume renderer is set.
 * @par Errors
 * "The specified LiveDataSourceHandle is invalid. "
 * @thread Any thread; never waits.
 */
OCT_API bool isDataSourceRunning(LiveDataSourceHandle DataSource);

/**
 * @brief Reads and clears the earliest error of a source that nobody has read: for programs that cannot be called
 * back. It is what setErrorCallback() is about; with such a function errors arrive there and here.
 * @param DataSource The source.
 * @param Message Receives the text with its terminating NUL, at most @p Size bytes in all; a longer text is
 *        cut, and so are more than 511 bytes. Null discards the text. Untouched when there is no error.
 * @param Size Size of @p Message in bytes; with 0 or less nothing is written.
 * @return OCT_RENDERER_ERROR when there was an error, else 0. It stays over stops and starts until it is read; later
 * ones are not kept meanwhile.
 * @par Errors
 * "The specified LiveDataSourceHandle is invalid. "
 * @thread Any thread; never waits.
 * @since 0.2
 */
OCT_API int getDataSourceError(LiveDataSourceHandle DataSource, char* Message, int Size);

/**
 * @brief The reference intensity of the volume acquired last, for programs that cannot be called back. The source
 * asks the device for it after every volume but the first, from the first call of this function on, as it does for
 * setRefIntensityCallback().
 * @param DataSource The source.
 * @return 0 to 1; -1 before a volume for which the device was asked.
 * @par Errors
 * "The specified LiveDataSourceHandle is invalid. "
 * @thread Any thread; never waits.
 * @since 0.2
 */
OCT_API double getRefIntensity(LiveDataSourceHandle DataSource);

/**
 * @brief Sets how many depth samples of each A-scan are drawn, from the surface of the range downwards. At
 * first all of them: half the length of a spectrum. Holds from the next startDataSource() on.
 * @param DataSource The source.
 * @param Size Samples, 1 or more. More than the device delivers ends the acquisition thread with
 * "Insufficient memory allocated."
 * @par Errors
 * "The specified LiveDataSourceHandle is invalid. "; "At least one depth sample must be kept. "
 * @thread Any thread.
 */
OCT_API void setSizeZ(LiveDataSourceHandle DataSource, int Size);

/**
 * @brief Sets the refractive index that depths are divided by. Holds from the next startDataSource() on.
 * @param DataSource The source; null is ignored.
 * @param Index Above zero; 1 at first.
 * @par Errors
 * "The refractive index must be above zero. "
 * @thread Any thread.
 */
OCT_API void setOnlineRefractiveIndex(LiveDataSourceHandle DataSource, double Index);

/**
 * @brief Sets whether the analog input is acquired as secondary data. Holds from
 * the next startDataSource() on.
 * @param DataSource The source; null is ignored.
 * @param Enable At first false.
 * @par Errors
 * "Analog input not supported in PS Live mode." for true and a polarization-sensitive source
 * @thread Any thread.
 */
OCT_API void setOnlineAnalogInputConfiguration(LiveDataSourceHandle DataSource, bool Enable);

/**
 * @brief Sets the camera whose volumes are drawn, from the next volume on. Not for
 * polarization-sensitive sources.
 * @param DataSource The source; null is ignored.
 * @param Camera Index of the camera, at first 0. One that the device lacks is the device's error.
 * @thread Any thread.
 */
OCT_API void selectOnlineDataSource_Camera(LiveDataSourceHandle DataSource, int Camera);

/**
 * @brief Selects what a polarization-sensitive source draws, from the next volume on.
 * @param DataSource The source; null, and a source of another kind, are ignored.
 * @param Output An OctPolarizationOutput. 0 intensity (at first), 1 retardation, 2 optic axis, 3 degree of polarization uniformity
 * (DOPU), 4, 5, 6 Stokes Q, U, V; 7, 8 intensity of sensor 0, 1 without polarization processing; any other:
 * volumes are acquired and the picture stays; a source that was started so draws nothing before it is started
 * again, because sizes are read at the start.
 * @thread Any thread.
 */
OCT_API void selectOnlineDataSource_PS(LiveDataSourceHandle DataSource, int Output);

/**
 * @brief Sets over how much Stokes vectors are averaged, from the next volume on. Values below 1 count as 1.
 * @param DataSource The source; null, and a source of another kind, are ignored.
 * @param Depth Depth samples.
 * @param AScans A-scans.
 * @param BScans B-scans.
 * @param Volumes Successive volumes.
 * @thread Any thread.
 */
OCT_API void setOnlineAveraging_PS(LiveDataSourceHandle DataSource, int Depth, int AScans, int BScans,
                                   int Volumes);

/**
 * @brief Sets the size of the DOPU filter, from the next volume on; at first 3 x 3 x 3. A size is taken as
 * given if the one before was at least 3, else it becomes 3.
 * @param DataSource The source; null, and a source of another kind, are ignored.
 * @param Depth Depth samples.
 * @param AScans A-scans.
 * @param BScans B-scans.
 * @param Reserved Stored; without effect.
 * @thread Any thread.
 */
OCT_API void setOnlineDOPU_PS(LiveDataSourceHandle DataSource, int Depth, int AScans, int BScans,
                              int Reserved);

/**
 * @brief Sets the intensity below which the other quantities are set to 0, from the next volume on.
 * @param DataSource The source; null, and a source of another kind, are ignored.
 * @param Threshold Decibels, at first 0.
 * @param Enable At first false.
 * @thread Any thread.
 */
OCT_API void setOnlineDataThreshold_PS(LiveDataSourceHandle DataSource, double Threshold, bool Enable);

/**
 * @brief Sets the function that receives the reference intensity after every volume but the first.
 * @param DataSource The source.
 * @param Callback Called on the acquisition thread; null removes the one set before, which may still be
 * running when this returns.
 * @par Errors
 * "The specified LiveDataSourceHandle is invalid. "
 * @thread Any thread.
 */
OCT_API void setRefIntensityCallback(LiveDataSourceHandle DataSource, OctIntensityFunction Callback);

/**
 * @brief setRefIntensityCallback() with a pointer for the callback. A source has one such function: the one
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
OCT_API void setRefIntensityCallbackWithUser(LiveDataSourceHandle DataSource,
                                             OctIntensityFunctionWithUser Callback, void* user);

/**
 * @brief Sets the function that receives the samples of every volume, the first one included, once it has been handed to the
 * live renderer or dropped: the picture does not wait for the function. Volumes with an error of the device are left out, and
 * so are those of polarization outputs of which nothing is made. Volumes come as well while setRenderElements() hides them.
 * @param DataSource The source.
 * @param Callback Called on the acquisition thread, which acquires no volume meanwhile; stopDataSource() waits for it. Null
 * removes the one set before, which may still be running when this returns. Without a function nothing is copied or asked of
 * the device; with one, samples are copied only where setSizeZ() keeps a part. Exceptions must not leave it; one of C++ that
 * does ends the source, and is told as its error.
 * @param user Handed to the callback; it must last until no call with it is running any more, which is certain once the
 * source has been stopped or cleared.
 * @par Errors
 * "The specified LiveDataSourceHandle is invalid. "
 * @thread Any thread.
 * @since 0.2
 */
OCT_API void setVolumeCallbackWithUser(LiveDataSourceHandle DataSource, OctVolumeFunctionWithUser Callback,
                                       void* user);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* OCT_RENDERING_LIVE_H */
