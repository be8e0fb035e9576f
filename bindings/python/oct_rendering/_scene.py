"""What volumes and live volumes share: a renderer of volumes, its view and its colours."""
import ctypes
import functools
import threading
from typing import Any, Callable, Dict, NamedTuple, Optional, Sequence, Tuple, TypeVar

from . import raw
from ._calls import Handle, checked, explanation, is_forked
from ._contexts import Home, own_context
from .arrays import Range
from .colors import Color, Colormap, colormap, packed, with_opacity_ramp
from .errors import ArgumentError, StateError
from .pictures import Picture

Size = Tuple[int, int]
_Scene = TypeVar("_Scene", bound="Scene")

_PERSPECTIVE_ZOOM = 52.0  # the box with its labels, whatever the angles
_ORTHOGRAPHIC_ZOOM = 30.0
_MODES = ("composite", "maximum", "mean", "sections")
_KINDS = ("nothing", "volume", "slice", "surface")


class Pick(NamedTuple):
    """What lies under a pixel. Positions are in the order of the array: B-scan, A-scan, depth; the centres of voxels are at
    whole numbers."""

    kind: str  # "volume", "slice" or "surface"
    voxel: Tuple[float, float, float]
    millimetres: Tuple[float, float, float]  # from the corner of the box
    value: float  # the sample's; a surface's depth


class Owner:
    """What refers to the renderer of a scene and is freed before it: `uninit` with OpenGL, `free` without."""

    def uninit(self) -> None:
        pass

    def free(self) -> None:
        pass


def free_renderer(home: Home, owner: Owner, value: int) -> None:
    def uninit() -> None:
        owner.uninit()
        raw.uninitializeVolumeRenderer(value)

    def free() -> None:
        owner.free()
        raw.deleteVolumeRenderer(value)
    home.discard(uninit, free)


class Scene:
    """A view of a volume. Settings may be made from any thread and show in the next frame; frames are drawn on one thread, that
    of the first one. Close it, or use it in a `with` statement; it is also closed when nobody refers to it any more."""

    def __init__(self, owner: Owner) -> None:
        self._home = Home()
        self._settings = threading.Lock()
        free = functools.partial(free_renderer, self._home, owner)
        self._renderer = Handle(checked(raw.createVolumeRenderer), free, type(self).__name__)
        self._mode = "composite"
        self._secondary = False
        self._colormap: Colormap = None
        self._range: Optional[Range] = None
        self._opacity = 0.25
        self._stale: Dict[str, Callable[[], None]] = {}
        self._rows: Optional[int] = None  # of the last picture
        self.set_view()
        self.set_look()
        self.set_box()

    def __enter__(self: _Scene) -> _Scene:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def __del__(self) -> None:
        if not is_forked() and hasattr(self, "_renderer"):
            self.close()

    def close(self) -> None:
        """Frees everything; again: nothing. On another thread than that of the frames the OpenGL objects are freed before the
        next frame there."""
        self._renderer.close()

    def set_view(self, angles: Tuple[float, float] = (25, -35), zoom: Optional[float] = None, perspective: bool = True,
                 translation: Tuple[float, float, float] = (0, 0, 0)) -> None:
        """`angles`: degrees about the horizontal axis and about the depth axis. `zoom`: smaller is closer; with perspective the
        field of view less 5 degrees, without five times the visible width, the box's half diagonal being 2; None: the whole
        box. `translation`: right, up, towards the viewer."""
        whole = _PERSPECTIVE_ZOOM if perspective else _ORTHOGRAPHIC_ZOOM
        self._renderer.call(raw.setAngles, *angles)
        self._renderer.call(raw.setZoom, whole if zoom is None else zoom)
        self._renderer.call(raw.setUsePerspective, perspective)
        self._renderer.call(raw.setTranslation, *translation)

    def turn(self, x: float, y: float) -> None:
        """Sets the angles alone: degrees about the horizontal axis and about the depth axis."""
        self._renderer.call(raw.setAngles, x, y)

    def set_look(self, mode: str = "composite", slices: int = 256, light: Optional[Tuple[float, float, float]] = None,
                 jitter: bool = False, opacity_length: float = 0) -> None:
        """`mode`: "composite", "maximum", "mean" or "sections". `slices`: steps of a ray along the box's diagonal. `light`:
        ambient, diffuse and specular shares, (0.3, 0.7, 0.2) is a good start. `opacity_length`: millimetres of tissue that have
        the opacity of the colour map; 0: a step of a ray has it."""
        if mode not in _MODES:
            raise ArgumentError(f"There is no mode {mode!r}: {', '.join(_MODES)}.")
        self._renderer.call(raw.setRenderingSlices, slices)
        self._renderer.call(raw.setVolumeLighting, *(light or (0, 0, 0)))
        self._renderer.call(raw.setRayJitter, int(jitter))
        self._renderer.call(raw.setOpacityLength, opacity_length)
        self._mode = mode
        self._change("mode", self._apply_mode)
        self._change("colors", self._apply_colors)

    def set_colors(self, colormap: Colormap = None, range: Optional[Range] = None, opacity: float = 0.25) -> None:
        """`colormap`: a name, or an array of colours, whose own alpha then counts; None: inferno, gray for sections. `range`: the
        values of its first and its last colour; None: percentiles. `opacity`: the highest of one step of a ray."""
        self._colormap, self._range, self._opacity = colormap, range, opacity
        self._checked_colors()
        self._change("colors", self._apply_colors)

    def set_clip(self, value: Optional[float], open: bool = False, ghost: bool = False, fixed: bool = False) -> None:
        """Cuts by a plane that faces the viewer: 0 leaves almost nothing, 1 almost everything, None does not cut. `open`: the cut
        is not closed; `ghost`: the part that is cut away shows; `fixed`: the plane turns with the volume."""
        self._renderer.call(raw.setClipPlane, int(value is not None), int(open), 0.5 if value is None else value)
        self._renderer.call(raw.setRemoveSegment, int(ghost and value is not None))
        self._renderer.call(raw.fixClipPlane, int(fixed))

    def set_sections(self, a_scan: Optional[float] = 0.5, depth: Optional[float] = 0.5, b_scan: Optional[float] = 0.5) -> None:
        """Positions of the slices of the mode "sections" across the three axes, 0 to 1; None hides one."""
        arguments = [part for position in (a_scan, depth, b_scan)
                     for part in (int(position is not None), 0.5 if position is None else position)]
        self._renderer.call(raw.setSectionalView, *arguments)

    def set_box(self, edges: bool = True, scale_marks: bool = True, faces: bool = False) -> None:
        """What is drawn around the volume."""
        self._renderer.call(raw.setBorder, int(scale_marks), int(edges), int(faces))

    def set_background(self, bottom: Color = 0x000066, top: Color = 0x000019, foreground: Color = 0xFFFFFF) -> None:
        """Colours of the background, and of lines and labels."""
        self._renderer.call(raw.setRenderBackground, packed(bottom) << 8 | 0xFF, packed(top) << 8 | 0xFF)
        self._renderer.call(raw.setRenderForeground, packed(foreground) << 8 | 0xFF)

    def draw(self, _id: int = 0) -> None:
        """Draws into the frame of the loop in whose draw function it is called."""
        with self._renderer as renderer:
            if self._home.enter(type(self).__name__):
                checked(raw.initializeVolumeRenderer, renderer)
                self._home.settle()
                self._settled()
            self._apply_changes()
            self._draw_frame()

    def explain(self) -> str:
        """Why the last frame shows nothing or almost nothing, and what to do about it; "" when it shows something. On the thread
        of the frames it draws the volume once more."""
        return explanation(self._renderer, raw.explainFrame)

    def render(self, size: Size = (1024, 768)) -> Picture:
        """A picture of so many pixels, width and height."""
        self._rows = None
        picture = own_context().picture(*size, self.draw)
        self._rows = size[1]
        return picture

    def pick(self, column: int, row: int) -> Optional[Pick]:
        """What lies under a pixel of the last picture that render() gave, the top row being 0; None for nothing. On the thread of
        the pictures."""
        if self._rows is None:
            raise StateError("Draw a picture by render() before picking.")
        found = raw.OctPick()
        found.size = ctypes.sizeof(found)
        with own_context().frame():
            self._renderer.call(raw.pickVolume, column, self._rows - 1 - row, ctypes.pointer(found))
        if found.kind == 0:
            return None
        depth, a_scan, b_scan = found.voxel
        along_depth, along_a_scans, along_b_scans = found.millimetres
        return Pick(_KINDS[found.kind], (b_scan, a_scan, depth), (along_b_scans, along_a_scans, along_depth), found.value)

    # What the two kinds of volumes do in their own way.

    def _settled(self) -> None:
        self._change("mode", self._apply_mode)
        self._change("colors", self._apply_colors)

    def _draw_frame(self) -> None:
        raise NotImplementedError

    def _automatic_range(self, mode: str) -> Range:
        raise NotImplementedError

    # Colours and data exist in the renderer only where it is initialised: they are set before the frame that shows them.

    def _change(self, name: str, apply: Callable[[], None]) -> None:
        with self._settings:
            self._stale[name] = apply

    def _apply_changes(self) -> None:
        order: Sequence[str] = ("data", "overlay", "secondary", "surface", "mode", "colors", "elements")
        for name in order:
            with self._settings:
                apply = self._stale.pop(name, None)
            if apply is None:
                continue
            try:
                apply()
            except BaseException:
                with self._settings:
                    self._stale.setdefault(name, apply)  # the next frame tries again, unless it was set anew
                raise

    def _apply_mode(self) -> None:
        mode = {"maximum": 1, "mean": 2}.get(self._mode, 3 if self._secondary else 0)
        self._renderer.call(raw.setRenderingMode, int(self._mode == "sections"))
        self._renderer.call(raw.setVolumeMode, mode)

    def _apply_colors(self) -> None:
        lower, upper = self._range or self._automatic_range(self._mode)
        self._send_colors(raw.setRendererColormap, self._checked_colors())
        self._renderer.call(raw.setRendererColoringBoundaries, lower, upper)

    def _checked_colors(self) -> Any:
        plain = "gray" if self._mode == "sections" or self._secondary else "inferno"
        chosen = plain if self._colormap is None else self._colormap
        colors = colormap(chosen)
        own_alpha = not isinstance(chosen, str) and len(chosen[0]) == 4
        return colors if self._mode != "composite" or own_alpha else with_opacity_ramp(colors, self._opacity)

    def _send_colors(self, function: Callable[..., Any], colors: Any) -> None:
        self._renderer.call(function, colors.ctypes.data, len(colors))
