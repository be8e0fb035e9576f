/**
 * @file version.h
 * @brief Version of these headers. Part of oct_rendering.h.
 *
 * The library that a program runs with may be a later one: getRendererVersion() tells which. Functions that are younger
 * than the first version say since when they exist; a program that wants to be built with earlier headers as well asks
 * these numbers.
 */
#ifndef OCT_RENDERING_VERSION_H
#define OCT_RENDERING_VERSION_H

#define OCT_RENDERING_VERSION_MAJOR 0 /**< @brief Another one breaks programs. */
#define OCT_RENDERING_VERSION_MINOR 2 /**< @brief Another one has more functions. */
#define OCT_RENDERING_VERSION_PATCH 0 /**< @brief Another one has faults mended. */

#endif /* OCT_RENDERING_VERSION_H */
