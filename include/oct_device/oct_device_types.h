/** @file
 * Handle types of the device functions.
 *
 * A handle is an opaque value of pointer size. Null is the invalid handle. A handle is valid from the call
 * that creates it to the call that clears it and is never given out again afterwards.
 *
 * A program that has these types from another header, that of its device library, defines OCT_DEVICE_HANDLES
 * before it includes this file or oct_rendering.h: then none is declared here. Whatever they are there, they
 * must be pointers.
 *
 * Whoever builds a device library defines OCT_DEVICE_BUILD while compiling it, so that the functions of
 * oct_device.h are exported; or OCT_DEVICE_API itself, as whatever its compiler wants in front of a
 * declaration (nothing, where a list of exports decides). Programs define neither.
 */
#ifndef OCT_DEVICE_OCT_DEVICE_TYPES_H
#define OCT_DEVICE_OCT_DEVICE_TYPES_H

#ifndef OCT_DEVICE_API
#if !defined(_WIN32)
#define OCT_DEVICE_API __attribute__((visibility("default")))
#elif defined(OCT_DEVICE_BUILD)
#define OCT_DEVICE_API __declspec(dllexport)
#else
#define OCT_DEVICE_API /* functions are found without an attribute */
#endif
#endif

#ifndef OCT_DEVICE_HANDLES
#define OCT_DEVICE_HANDLES

/** An OCT device: light source, interferometer, scanner and camera. */
typedef struct OctDevice* OCTDeviceHandle;

/** The chain of computations that turns the raw spectra of one sensor into a depth-resolved picture. */
typedef struct OctProcessing* ProcessingHandle;

/** The lateral positions at which a volume is measured. */
typedef struct OctScanPattern* ScanPatternHandle;

/** The computation of polarization quantities from the light of two sensors. */
typedef struct OctPolarizationProcessing* PolarizationProcessingHandle;

/** The camera readings of one volume. */
typedef struct OctRawData* RawDataHandle;

/** A processed volume of 32-bit floats with its sizes and physical ranges. */
typedef struct OctData* DataHandle;

/** A processed volume of complex numbers: amplitude and phase of the light. */
typedef struct OctComplexData* ComplexDataHandle;

#endif

#endif
