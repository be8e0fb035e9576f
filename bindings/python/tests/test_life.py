"""Objects, threads, processes and callbacks: what begins, ends and fails."""
import gc
import inspect
import os
import re
import sys
import threading
import time

import numpy as np
import pytest

import oct_rendering as oct
from conftest import blob_volume, run_python
from oct_rendering import raw
from oct_rendering._library import Library, library

VOLUME = blob_volume()
IMAGE = VOLUME[10]


def on_a_thread(function):
    """What a function raises on a thread of its own, or gives."""
    result = []

    def run():
        try:
            result.append(function())
        except Exception as error:
            result.append(error)
    thread = threading.Thread(target=run, name="other")
    thread.start()
    thread.join(60)
    return result[0]


def wait_until(condition, seconds=30):
    end = time.monotonic() + seconds
    while not condition() and time.monotonic() < end:
        time.sleep(0.005)
    assert condition()


def test_the_functions_are_those_of_the_list():
    stubs = open(raw.__file__.replace(".py", ".pyi"), encoding="utf-8").read()
    for name, (since, result, arguments) in library._prototypes.items():
        function = getattr(raw, name)
        assert library[name].restype is result and function.__doc__ and f"def {name}(" in stubs, name
        assert len(inspect.signature(function).parameters) == len(arguments), name
    assert len(library._prototypes) > 125 and raw.getRendererVersion().decode() == oct.__version__
    assert "Thread: Any thread" in raw.setZoom.__doc__ and "  Zoom: With perspective" in raw.setZoom.__doc__


def test_a_library_is_chosen_by_its_variable_and_missing_ones_are_told(monkeypatch):
    monkeypatch.setenv("OCT_TEST_LIBRARY", "/nowhere/liboct_rendering.so")
    other = Library("oct_rendering", "OCT_TEST_LIBRARY")
    other.declare("0.2.0", {"futureFunction": ("0.9", None, ())})
    with pytest.raises(oct.LibraryNotFound, match="/nowhere/liboct.*OCT_TEST_LIBRARY chooses"):
        other["futureFunction"]()
    monkeypatch.setenv("OCT_TEST_LIBRARY", oct.library_path())
    with pytest.raises(oct.LibraryNotFound, match="no function futureFunction, which came with version 0.9"):
        other["futureFunction"]()
    code, output, errors = run_python("import oct_rendering as o; print(o.library_path())",
                                      environment={"OCT_RENDERING_LIBRARY": os.path.realpath(oct.library_path())})
    assert (code, output.split("\n")[-2], errors) == (0, os.path.realpath(oct.library_path()), "")


def test_a_thousand_objects_leave_nothing_behind():
    def used():
        status = open("/proc/self/status").read()
        return int(re.search(r"VmRSS:\s*(\d+)", status)[1]), len(os.listdir("/proc/self/fd")), len(os.listdir("/proc/self/task"))

    image, volume = np.eye(256, 200, dtype=np.float32), np.zeros((64, 64, 64), np.float32)

    def make(count):
        for i in range(count):
            display = oct.Display(image, (0, 1))
            display.render((16, 16))
            if i % 10 == 0:
                scene = oct.Volume(volume.copy(), range=(0, 1))
                scene.set_look(slices=8)
                if i % 50 == 0:
                    scene.set_overlay(volume, (0, 1))
                scene.render((16, 16))
                if i % 100 == 0:
                    on_a_thread(lambda: oct.render_bscan(image, (16, 16), range=(0, 1)))  # a context that ends with its thread
                    with oct.Loop(display.draw, (16, 16)):
                        pass
            if i % 2:
                display.close()
        gc.collect()
    make(200)
    before = used()
    make(800)
    after = used()
    # Without any of the images or volumes being freed it would be 160 and 80 MB.
    assert after[0] - before[0] < 40000 and after[1:] == before[1:], (before, after)


def test_each_object_draws_on_the_thread_of_its_first_frame():
    for item in (oct.Display(IMAGE), oct.Volume(VOLUME)):
        expected = item.render((60, 40))
        name = type(item).__name__
        error = on_a_thread(lambda: item.render((60, 40)))
        assert isinstance(error, oct.StateError) and f"This {name} draws on the thread 'MainThread' and cannot draw on " \
            "the thread 'other'" in error.text
        with pytest.raises(oct.StateError, match="draws into the frame of a loop"):
            item.draw()
        with oct.Loop(item, (60, 40)) as loop, pytest.raises(oct.StateError, match="drawing thread of a loop"):
            loop.snapshot(60, 40)
        assert np.array_equal(item.render((60, 40)), expected)  # and none of that did harm
        on_a_thread(item.close)  # anybody may close it; freed by the next frame here
        with pytest.raises(oct.StateError, match=f"This {name} is closed"):
            item.render((60, 40))


def test_an_object_moves_when_its_thread_or_loop_is_gone():
    with oct.Volume(VOLUME, (2, 3, 4)) as volume:
        volume.set_overlay(VOLUME[::-1])
        first = on_a_thread(lambda: volume.render((60, 40)))
        with oct.Loop(volume) as loop:
            assert np.array_equal(loop.snapshot(60, 40), first)
        assert np.array_equal(volume.render((60, 40)), first)


def test_settings_of_another_thread_show_in_the_next_frame():
    with oct.Volume(VOLUME) as volume, oct.Volume(VOLUME, colormap="gray") as other:
        other.set_look("maximum", slices=90)
        other.set_clip(0.5)
        other.turn(5, 6)
        volume.render((60, 40))
        on_a_thread(lambda: (volume.set_colors("gray"), volume.set_look("maximum", slices=90), volume.set_clip(0.5), volume.turn(5, 6)))
        assert np.array_equal(volume.render((60, 40)), other.render((60, 40)))


def test_a_loop_hands_its_pictures_over():
    frames, threads = [], set()
    display = oct.Display(IMAGE)

    def draw(id):
        threads.add(threading.get_ident())
        display.draw()
    with oct.Loop(draw, (60, 40), lambda picture, id: frames.append((id, picture)), end=display.close) as loop:
        loop.request(7)
        wait_until(lambda: frames)
        snapshot = loop.snapshot(30, 20)
        loop.resize(50, 30)
        loop.request(8)
        wait_until(lambda: any(id == 8 for id, _ in frames))
    assert threads.isdisjoint({threading.get_ident()}) and snapshot.shape == (20, 30, 4)
    assert np.array_equal(frames[0][1], oct.render_bscan(IMAGE, (60, 40))) and frames[-1][1].shape == (30, 50, 4)
    with pytest.raises(oct.StateError, match="This Loop is closed"):
        loop.request()


def test_exceptions_of_callbacks_are_raised_by_the_next_call(monkeypatch):
    reported = []
    monkeypatch.setattr(sys, "unraisablehook", lambda report: reported.append(report.exc_value))

    def draw(id):
        raise KeyError(id)
    loop = oct.Loop(draw, (8, 8))
    for id in (4, 5):  # the loop goes on
        loop.request(id)
        wait_until(lambda: loop._reports._first is not None)
        with pytest.raises(KeyError, match=str(id)):
            loop.resize(9, 9)
    for id in (6, 6, 7, 6, 7):
        loop._handle.call(raw.renderMultOpenGLControlLoop, id)
        wait_until(lambda: ("6" if not reported else "7") in str(loop._reports._told))
    wait_until(lambda: reported)  # 7, while 6 waits; and each is told once
    with pytest.raises(KeyError):
        loop.snapshot(8, 8)
    loop.close()
    assert [str(error) for error in reported] == ["7"] and not oct.loop.open_loops

    inside = []

    def closes(picture, id):
        inside.append(1)
        other.close()
    with pytest.raises(oct.StateError, match="from its own functions"), oct.Loop(lambda id: None, (8, 8), closes) as other:
        other.request()
        wait_until(lambda: inside)


def test_live_volumes_come_and_errors_of_the_device_are_raised():
    intensities = []
    with oct.SimulatedDevice(a_scans=16, b_scans=12, spectrum_length=128) as device:
        samples = device.measure()
        assert samples.shape == (12, 16, 64) and samples.std() > 3
        with oct.Live(device, intensity=intensities.append) as live:
            live.start()
            empty = live.render((60, 40))
            picture = live.wait_for_volumes(3, size=(60, 40))
            numbers = live.statistics()
            assert live.running and numbers.shown >= 3 and numbers.acquired >= numbers.handed_over >= numbers.shown
            assert not np.array_equal(picture, empty) and intensities and 0 < intensities[0] <= 1
            wrong = on_a_thread(lambda: live.render((60, 40)))
            assert isinstance(wrong, oct.StateError)
            live.stop()
            assert not live.running
            live.start()
            live.wait_for_volumes(numbers.shown + 1, size=(60, 40))
            with pytest.raises(oct.OctError, match="already running"):
                live.start()
            oct._device.failSimulatedCall(b"executeProcessing", 0, b"the cable was pulled")
            try:
                with pytest.raises(oct.DeviceError, match="cable was pulled"):
                    live.wait_for_volumes(10**6, size=(8, 8))
            finally:
                oct._device.clearSimulatedFailures()
    device = oct.SimulatedDevice(recording=VOLUME)
    with oct.Live(device, range=(20, 60)) as live:
        device.close()  # what is measuring stays until that ends
        live.start()
        live.wait_for_volumes(1, size=(60, 40))
    assert oct._device.getSimulatedObjectCount() == 0
    with pytest.raises(oct.ArgumentError, match="range"):
        oct.Live((1, 2, 3))


def test_a_live_volume_draws_in_a_loop():
    with oct.SimulatedDevice(a_scans=16, b_scans=12, spectrum_length=128) as device, oct.Live(device) as live:
        live.start()
        with oct.Loop(live, (60, 40), mode="cycle") as loop:
            loop.request()
            wait_until(lambda: live.statistics().shown >= 3)


def test_a_forked_child_is_told_and_ends():
    code, output, errors = run_python("""
import os, sys, oct_rendering as o, numpy as np
if os.fork() == 0:  # nothing made yet: the child may use it
    o.render_bscan(np.eye(5)); print("early", flush=True); sys.exit(0)
os.wait()
display = o.Display(np.eye(5)); display.render()
volume = o.Volume(np.ones((3, 3, 3))); loop = o.Loop(lambda id: None, (8, 8)); loop.request()
device = o.SimulatedDevice(a_scans=4, b_scans=4); live = o.Live(device); live.start()
if os.fork() == 0:
    told = []
    for call in (display.render, volume.render, loop.request, live.stop, lambda: o.render_bscan(np.eye(5)), lambda: loop.snapshot(4, 4),
                 device.measure, lambda: o.Loop(display)):
        try: call()
        except o.StateError as error: told.append("forked" in error.text)
    loop.close(); live.close(); display.close(); device.close(); del display, volume
    print("late", told, flush=True)
    sys.exit(3)
print("exit code", os.waitstatus_to_exitcode(os.wait()[1]))
display.render(); live.wait_for_volumes(1, size=(8, 8))
""")
    lines = [line for line in output.split("\n") if line.startswith(("early", "late", "exit"))]
    assert (code, lines) == (0, ["early", "late " + str([True] * 8), "exit code 3"]), (output, errors)


@pytest.mark.parametrize("ending", ["", "sys.exit(5)", "raise ValueError('planned')"])
def test_the_program_ends_while_loops_and_devices_run(ending):
    code, output, errors = run_python("""
import sys, threading, time, oct_rendering as o, numpy as np
device = o.SimulatedDevice(a_scans=16, b_scans=12, spectrum_length=128)
live = o.Live(device); live.start()
volume = o.Volume(np.random.rand(9, 9, 9))
drawn = threading.Event(); seen = threading.Event()
def draw(id):
    (volume, live)[id].draw(); drawn.set()
loop = o.Loop(draw, (64, 48), lambda picture, id: seen.set(), mode="cycle")
loop.request(0); loop.request(1)
other = o.Loop(lambda id: 1 / 0, (8, 8)); other.request()
drawn.wait(20); seen.wait(20); time.sleep(0.1)
threading.Thread(target=o.render_bscan, args=(np.eye(9),)).start()
""" + ending)
    assert code == (5 if "exit" in ending else 1 if "raise" in ending else 0), errors
    assert "ZeroDivisionError" in errors and ("planned" in errors) == ("planned" in ending)
    assert "Fatal" not in errors and "An error occured" not in errors
