"""Arrays on their way into the library: floats of 32 bits, depth fastest."""
from typing import Any, Optional, Tuple

import numpy as np

from .errors import ArgumentError

Range = Tuple[float, float]

# Parts of the samples that lie below the two ends of an automatic range. Speckle has few very bright samples, and more
# than one percent of dark ones carry no tissue; most voxels of a volume are air or noise, and would veil the rest.
IMAGE_SHARES = (0.01, 0.995)
COMPOSITE_SHARES = (0.6, 0.998)
MEAN_SHARES = (0.01, 0.98)
VOLUME_SHARES = (0.01, 0.998)
MAP_SHARES = (0.01, 0.99)

_ENOUGH_SAMPLES = 4_000_003  # a prime keeps out of step with the axes


def as_samples(array: Any, axes: str) -> Any:
    """The array itself where it is contiguous and of 32-bit floats, else one copy that is. `axes` names the axes."""
    given = np.asarray(array)
    dimensions = axes.count(",") + 1
    if given.ndim != dimensions:
        raise ArgumentError(f"An array of {dimensions} axes ({axes}) is needed; this one has the shape {given.shape}.")
    if given.size == 0:
        raise ArgumentError(f"The array of the shape {given.shape} is empty.")
    if given.dtype.kind not in "fiub":
        raise ArgumentError(f"Samples must be real numbers; these are of the type {given.dtype}.")
    return np.ascontiguousarray(given, np.float32)


def address(samples: Any) -> int:
    return int(samples.ctypes.data)


def automatic_range(samples: Any, shares: Tuple[float, float], quick: bool = False) -> Range:
    """The percentiles of the finite samples; where they are equal the extremes, or one unit. `quick` looks at some millions
    of samples at most."""
    flat = samples.reshape(-1)
    if quick:
        flat = flat[::flat.size // _ENOUGH_SAMPLES + 1]
    finite = flat[np.isfinite(flat)]
    if finite.size == 0:
        raise ArgumentError("The array holds no finite sample.")
    lower, upper = (_quantile(finite, share) for share in shares)
    if lower == upper:
        lower, upper = float(finite.min()), float(finite.max())
    return lower, upper if lower != upper else lower + 1


def _quantile(values: Any, share: float) -> float:
    rank: float = share * (values.size - 1)
    below = int(rank)
    above = min(below + 1, values.size - 1)
    parted = np.partition(values, (below, above))
    lower, upper = float(parted[below]), float(parted[above])
    return lower + (upper - lower) * (rank - below)


def chosen_range(given: Optional[Range], samples: Any, shares: Tuple[float, float], quick: bool = False) -> Range:
    if given is None:
        return automatic_range(samples, shares, quick)
    lower, upper = (float(value) for value in given)
    if not (np.isfinite(lower) and np.isfinite(upper)) or lower == upper:
        raise ArgumentError("A range needs two different finite values.")
    return lower, upper


def without_gaps(samples: Any, range_: Range) -> Any:
    """Shaders may do anything with NaN and infinity. In a copy NaN and minus infinity become the lower end of the range,
    infinity the upper."""
    if all(bool(np.isfinite(part).all()) for part in samples):  # by parts, for the memory
        return samples
    changed = samples.copy()
    gaps = ~np.isfinite(changed)
    changed[gaps] = np.where(changed[gaps] > 0, np.float32(range_[1]), np.float32(range_[0]))
    return changed
