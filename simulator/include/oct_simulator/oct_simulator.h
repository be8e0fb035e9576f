/** @file
 * Creates and frees the objects of the simulated OCT device that the device functions only use.
 *
 * The simulated device computes spectral interferograms of a phantom, with source spectrum, dispersion, noise
 * and a camera of 12 bits, and processes them as an instrument does; or it plays recorded volumes back.
 * Errors and threads: see oct_device.h.
 */
#ifndef OCT_SIMULATOR_OCT_SIMULATOR_H
#define OCT_SIMULATOR_OCT_SIMULATOR_H

#include "oct_device/oct_device_types.h"

#ifdef __cplusplus
extern "C" {
#endif

/** What the simulated device looks at. */
enum {
  OCT_PHANTOM_FINGER_PAD = 0, /**< finger pad with fingerprint and sweat ducts; 1300 nm, 3.6 mm depth range */
  OCT_PHANTOM_RETINA = 1,     /**< retina with the fovea in the middle; 850 nm, 2.4 mm depth range */
  OCT_PHANTOM_MIRROR = 2,     /**< tilted mirror, 1 mm deep in the middle; 1300 nm, 3.6 mm depth range */
  /** flat layers: gel from 0.4 mm, a plate of 45 degrees retardation with its slow axis at 30 degrees from
     0.8 to 0.9 mm, gel, depolarizing gel from 1.4 to 1.8 mm, stretched fibres of the same axis from there to
      2.6 mm; 1300 nm, 3.6 mm depth range */
  OCT_PHANTOM_POLARIZATION_TARGET = 3
};

/**
 * Creates a simulated device.
 * The depth range does not depend on the spectrum length: a longer spectrum covers a wider band of the light
 * and resolves finer depths.
 * @param phantom one of the OCT_PHANTOM_ values
 * @param spectrumLength camera pixels per spectrum: even, 64 to 4096; 2048 gives 1024 depth samples
 * @param seed chooses the individual phantom and its noise; the same seed gives the same volumes
 * @return the device, to be freed by clearSimulatedDevice(); null and a pending
 * error if an argument is invalid
 */
OCT_DEVICE_API OCTDeviceHandle createSimulatedDevice(int phantom, int spectrumLength, unsigned int seed);

/**
 * Creates a simulated device with two sensors for two polarizations of the light. The finger pad's dermis and
 * the retina's nerve fibres and sclera retard light, the retina's pigment epithelium depolarizes it.
 * Make one processing for each sensor.
 * @param phantom one of the OCT_PHANTOM_ values
 * @param spectrumLength as for createSimulatedDevice()
 * @param seed as for createSimulatedDevice()
 * @return the device, to be freed by clearSimulatedDevice(); null and a pending
 * error if an argument is invalid
 */
OCT_DEVICE_API OCTDeviceHandle createSimulatedPolarizationDevice(int phantom, int spectrumLength,
                                                                 unsigned int seed);

/**
 * Creates a device that plays recorded volumes back instead of measuring: one after the other and from the
 * first again, in the size and extent of the recording whatever the scan pattern says. A volume costs little
 * more than a copy of its samples: executeProcessing() writes them, and getRawDataEx() only refers to them.
 * Pacing and analog input work as with a phantom. Motion changes nothing; complex output is an error.
 * Half of the device's spectrum length is the depth of the recording.
 * @param samples size1 * size2 * size3 * volumes finite decibels, sample (i1, i2, i3) of a volume at
 *        i1 + size1 * (i2 + size2 * i3); copied before the call returns
 * @param size1 depth samples per A-scan, 4 to 65536
 * @param size2 A-scans per B-scan, 1 or more
 * @param size3 B-scans per volume, 1 or more
 * @param volumes successive volumes in the recording, 1 or more
 * @param depthMm optical depth of a whole A-scan in millimetres, above 0
 * @param widthMm width of a B-scan in millimetres, above 0
 * @param lengthMm extent from the first to the last B-scan in millimetres, above 0
 * @param noise standard deviation of normal noise in decibels that is added to every sample and differs from
 *        volume to volume; 0: the samples are played as they are
 * @param seed chooses the noise and the analog input; the same seed gives the same volumes
 * @return the device, to be freed by clearSimulatedDevice(); null and a pending error if an argument is
 *         invalid or there is no memory for the copy
 */
OCT_DEVICE_API OCTDeviceHandle createSimulatedPlayback(const float* samples, int size1, int size2, int size3,
                                                       int volumes, double depthMm, double widthMm,
                                                       double lengthMm, double noise, unsigned int seed);

/**
 * Frees a simulated device; a running measurement is stopped.
 * @param device the device; processings and scan patterns made for it stay valid
 */
OCT_DEVICE_API void clearSimulatedDevice(OCTDeviceHandle device);

/**
 * Creates a processing that is calibrated for the spectra of a simulated device.
 * @param device the device
 * @return the processing, to be freed by clearSimulatedProcessing(); null and a pending error if it fails
 */
OCT_DEVICE_API ProcessingHandle createSimulatedProcessing(OCTDeviceHandle device);

/** Frees a processing. @param processing the processing */
OCT_DEVICE_API void clearSimulatedProcessing(ProcessingHandle processing);

/**
 * Creates a polarization processing.
 * @param device a device with two sensors; another one is an error
 * @return the processing, to be freed by clearSimulatedPolarizationProcessing(); null
 * and a pending error if it fails
 */
OCT_DEVICE_API PolarizationProcessingHandle createSimulatedPolarizationProcessing(OCTDeviceHandle device);

/** Frees a polarization processing. @param processing the polarization processing */
OCT_DEVICE_API void clearSimulatedPolarizationProcessing(PolarizationProcessingHandle processing);

/**
 * Creates a scan pattern: a grid of A-scans around the middle of the phantom.
 * @param device the device
 * @param aScans A-scans per B-scan, 1 or more
 * @param bScans B-scans per volume, 1 or more; a single B-scan runs through the middle
 * @param widthMm width of a B-scan in millimetres, above 0
 * @param lengthMm extent from the first to the last B-scan in millimetres, above 0
 * @return the pattern, to be freed by clearSimulatedScanPattern(); null and a pending error if an argument is
 *         invalid
 */
OCT_DEVICE_API ScanPatternHandle createSimulatedScanPattern(OCTDeviceHandle device, int aScans, int bScans,
                                                            double widthMm, double lengthMm);

/** Frees a scan pattern. @param pattern the pattern */
OCT_DEVICE_API void clearSimulatedScanPattern(ScanPatternHandle pattern);

/**
 * Counts the objects of every kind that were created and not cleared, to find leaks in programs under test.
 * @return the count
 */
OCT_DEVICE_API int getSimulatedObjectCount(void);

/** When volumes arrive. */
enum {
  OCT_PACING_FREE = 0, /**< as fast as they can be computed, none is lost */
  OCT_PACING_REAL_TIME =
      1 /**< at the A-scan rate; a volume that is not fetched before the next is complete is lost */
};

/**
 * Sets how fast a device measures; at first 100,000 A-scans per second, without pacing. Motion goes by the
 * same clock, so that a slow scan shows it as distortion. Holds from the next startMeasurement() on.
 * @param device the device
 * @param aScansPerSecond A-scans per second, above 0
 * @param pacing one of the OCT_PACING_ values
 */
OCT_DEVICE_API void setSimulatedScanRate(OCTDeviceHandle device, double aScansPerSecond, int pacing);

/**
 * Changes the scan pattern in the middle of a measurement, and with it the size of the volumes, as if somebody
 * turned a knob. Holds from the next volume on: one that is being fetched, or that another sensor has yet to give,
 * has the size before. By a paced device's clock the first new volume begins with this call. A playback device
 * takes the setting without error and keeps the size of its recording.
 * May be called while another thread measures.
 * @param device the device; it is an error if it does not measure
 * @param pattern the scan pattern
 */
OCT_DEVICE_API void setSimulatedScanPattern(OCTDeviceHandle device, ScanPatternHandle pattern);

/** How the phantom moves. */
enum {
  OCT_MOTION_NONE = 0,
  OCT_MOTION_BREATHING = 1, /**< to and from the device, as a sine */
  OCT_MOTION_DRIFT = 2 /**< mostly sideways, in curves that do not repeat, as a finger that is held still */
};

/**
 * Sets how the phantom moves, from the next volume on. Spectra of a phantom at rest are computed once; those
 * of a moving one have to be computed for every volume, which takes about as long as the first volume.
 * @param device the device; one that plays a recording back does not move, and takes the setting without
 * error
 * @param motion one of the OCT_MOTION_ values
 * @param amplitudeMm largest way from the resting place in millimetres, 0 to 1
 * @param periodSeconds time of one breath, or of one turn of the drift, above 0
 */
OCT_DEVICE_API void setSimulatedMotion(OCTDeviceHandle device, int motion, double amplitudeMm,
                                       double periodSeconds);

/**
 * Makes calls of a device function fail: the function does nothing but leave a pending error. Several scripts
 * may be active for the same function.
 * @param function name of a function of oct_device.h other than isError() and getError()
 * @param call which call from now on: 1 for the next, 0 for every call
 * @param message text of the error, which the function's name precedes
 */
OCT_DEVICE_API void failSimulatedCall(const char* function, int call, const char* message);

/** Takes all scripts of failSimulatedCall() back. */
OCT_DEVICE_API void clearSimulatedFailures(void);

/**
 * Makes calls of a device function take long or hang, as with a cable that is being pulled or a driver in trouble.
 * The function waits before it does anything, and nothing but releaseSimulatedCalls() ends that: neither
 * stopMeasurement() nor clearing the device. Then it does its work, or fails if failSimulatedCall() says so.
 * Other calls go on meanwhile. Several scripts may be active for the same function.
 * @param function name of a function of oct_device.h other than isError() and getError()
 * @param call which call from now on: 1 for the next, 0 for every call
 * @param milliseconds how long; below 0: until releaseSimulatedCalls()
 */
OCT_DEVICE_API void delaySimulatedCall(const char* function, int call, int milliseconds);

/** Takes all scripts of delaySimulatedCall() back; calls that wait go on. */
OCT_DEVICE_API void releaseSimulatedCalls(void);

/**
 * Counts the calls that wait because of delaySimulatedCall(), to know that a thread has come so far.
 * @return the count
 */
OCT_DEVICE_API int getSimulatedWaitingCalls(void);

#ifdef __cplusplus
}
#endif

#endif
