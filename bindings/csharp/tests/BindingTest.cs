// The binding against the programs that draw the same in C++, and against what may go wrong between two languages.
// BindingTest.exe OCTRENDER DEVICE_LIBRARY FOLDER
using System;
using System.Collections.Concurrent;
using System.Collections.Generic;
using System.Diagnostics;
using System.IO;
using System.Linq;
using System.Runtime.CompilerServices;
using System.Runtime.InteropServices;
using System.Text;
using System.Threading;
using System.Windows.Media.Imaging;
using OctRendering;
using OctRendering.Wpf;
using PixelFormat = OctRendering.PixelFormat;

internal static class BindingTest {
  private static string octrender, deviceLibrary, folder;
  private static int failures;

  private static int Main(string[] arguments) {
    if (arguments.Length == 1 && arguments[0] == "exit") return ExitWithALoop();
    octrender = arguments[0];
    deviceLibrary = arguments[1];
    folder = arguments[2];
    foreach (Action test in new Action[] { Bscans, Volumes, Errors, Threads, ForgottenObjects, Loops,
                                           ExceptionsOfCallbacks, LiveVolumes, ControlOfWpf, EndOfTheProgram }) {
      int before = failures;
      var watch = Stopwatch.StartNew();
      try {
        test();
      } catch (Exception exception) {
        Expect(false, exception.ToString());
      }
      Console.WriteLine("{0} {1} ({2} ms)", failures == before ? "ok" : "FAILED", test.Method.Name,
                        watch.ElapsedMilliseconds);
    }
    return failures == 0 ? 0 : 1;
  }

  private static void Expect(bool condition, string what) {
    if (condition) return;
    ++failures;
    Console.WriteLine("  expected: " + what);
  }

  private static void ExpectSame(byte[] expected, byte[] actual, string what) {
    int differing = expected.Length == actual.Length ? expected.Where((value, i) => value != actual[i]).Count() : -1;
    Expect(differing == 0, what + ": " + differing + " of " + expected.Length + " bytes differ");
    Expect(actual.Distinct().Count() > 16, what + " shows something");
  }

  private static T ExpectThrown<T>(Action action, string what) where T : Exception {
    try {
      action();
    } catch (T exception) {
      return exception;
    }
    Expect(false, what + " throws " + typeof(T).Name);
    return null;
  }

  // ---- What is drawn, and the same by octrender

  private static readonly byte[] colors = Enumerable.Range(0, 256)
      .SelectMany(i => new[] { (byte)i, (byte)(255 - i), (byte)(i / 2 + 64), (byte)255 }).ToArray();

  // No two axes have the same length, and no two samples near each other the same value.
  private static float[,,] Samples() {
    var samples = new float[18, 26, 34];
    for (int b = 0; b < 18; ++b)
      for (int a = 0; a < 26; ++a)
        for (int z = 0; z < 34; ++z) samples[b, a, z] = ((b * 7 + a * 11 + z * 5) % 64) / 64f * (z > 8 ? 1 : 0.2f);
    return samples;
  }

  private static float[,] Image() {
    var image = new float[26, 34];
    Buffer.BlockCopy(Samples(), 0, image, 0, image.Length * sizeof(float));
    return image;
  }

  private static byte[] ByOctrender(string verb, string options, Array samples) {
    string raw = Path.Combine(folder, verb + ".npy"), map = Path.Combine(folder, "map.csv");
    string picture = Path.Combine(folder, verb + ".png");
    var lengths = Enumerable.Range(0, samples.Rank).Select(i => samples.GetLength(i).ToString());
    string header = "{'descr': '<f4', 'fortran_order': False, 'shape': (" + string.Join(", ", lengths) + "), }";
    header = header.PadRight(117) + "\n";
    var bytes = new byte[samples.Length * sizeof(float)];
    Buffer.BlockCopy(samples, 0, bytes, 0, bytes.Length);
    byte[] start = { 0x93, (byte)'N', (byte)'U', (byte)'M', (byte)'P', (byte)'Y', 1, 0, (byte)header.Length, 0 };
    File.WriteAllBytes(raw, start.Concat(Encoding.ASCII.GetBytes(header)).Concat(bytes).ToArray());
    File.WriteAllLines(map, Enumerable.Range(0, 256).Select(
        i => string.Join(",", colors.Skip(i * 4).Take(4).Select(value => value.ToString()))));
    Run(octrender, string.Format("{0} \"{1}\" -o \"{2}\" --transpose --range 0 1 --colormap \"{3}\" {4}", verb, raw,
                                 picture, map, options));
    return Png.Read(picture);
  }

  private static string Run(string program, string arguments) {
    var start = new ProcessStartInfo(program, arguments) {
      UseShellExecute = false, RedirectStandardOutput = true, RedirectStandardError = true
    };
    using (Process process = Process.Start(start)) {
      string error = null;
      var reader = new Thread(() => error = process.StandardError.ReadToEnd());
      reader.Start();
      string output = process.StandardOutput.ReadToEnd();
      reader.Join();
      process.WaitForExit();
      if (process.ExitCode != 0) throw new Exception(program + " " + arguments + ": " + process.ExitCode + error);
      return output;
    }
  }

  private static void Apply(Display display) {
    display.SetColormap(colors);
    display.SetColoringBoundaries(0, 1);
    display.SetData(Image());
  }

  private static void Bscans() {
    using (var target = new OffscreenTarget())
    using (var display = new Display()) {
      Apply(display);
      byte[] own = target.Draw(26, 34, display.Render);
      // One pixel per sample: entry i of the map stands at (i + 0.5) / 256.
      float[,] image = Image();
      int worst = 0;
      for (int y = 0; y < 34; ++y) {
        for (int x = 0; x < 26; ++x) {
          double place = Math.Min(Math.Max(image[x, y] * 256 - 0.5, 0), 255);
          worst = Math.Max(worst, (int)Math.Ceiling(Math.Abs(own[(y * 26 + x) * 4 + 2] - place) - 0.501));
        }
      }
      Expect(worst <= 0, "red is the place in the map, and differs by " + worst);
      ExpectSame(ByOctrender("bscan", "--size 26x34", image), own, "a B-scan");
      byte[] other = target.Draw(26, 34, display.Render, PixelFormat.Rgba);
      byte[] expected = Enumerable.Range(0, 34).Reverse().SelectMany(y => Enumerable.Range(y * 26, 26)).SelectMany(
          pixel => new[] { own[pixel * 4 + 2], own[pixel * 4 + 1], own[pixel * 4], own[pixel * 4 + 3] }).ToArray();
      ExpectSame(expected, other, "red first and the bottom row first");

      display.SetData(34, 26, image.Cast<float>().ToArray());
      display.SetFilters(true, true, false);
      display.SetFlip(true);
      ExpectSame(ByOctrender("bscan", "--size 101x73 --blur first --pepper --flip", image),
                 target.Draw(101, 73, display.Render), "a filtered B-scan");
    }
  }

  private static void Volumes() {
    using (var target = new OffscreenTarget())
    using (var volume = new Volume()) {
      VolumeRenderer renderer = volume.Renderer;
      renderer.SetColormap(colors);
      renderer.SetColoringBoundaries(0, 1);
      renderer.SetBackground(0x102030ff, 0x405060ff);
      renderer.SetBorder(false, true, false);
      renderer.SetPerspective(false);
      renderer.SetZoom(22);
      renderer.SetAngles(30, -50);
      renderer.SetSlices(90);
      volume.SetExtent(1, 2, 3);
      volume.Upload(Samples());
      const string view = " --size 120x90 --extent 1 2 3 --orthographic --zoom 22 --angles 30 -50 --slices 90 "
          + "--no-labels --background 102030 405060";
      foreach (string mode in new[] { "maximum", "composite", "sections" }) {
        if (mode == "sections") renderer.ShowSections(0.25f, null, 0.75f);
        else renderer.SetMode(mode == "maximum" ? VolumeMode.Maximum : VolumeMode.Composite);
        string sections = mode == "sections" ? " --sections 0.25 off 0.75" : "";
        ExpectSame(ByOctrender("volume", "--mode " + mode + sections + view, Samples()),
                   target.Draw(120, 90, volume.Render), "a volume by " + mode);
        Expect(renderer.Explain() == null, "nothing to explain: " + renderer.Explain());
      }
      Expect(renderer.Pick(60, 45).Kind == (int)PickKind.Slice, "a slice in the middle");
      renderer.ShowWhole();
      target.Draw(120, 90, volume.Render);
      Pick pick = renderer.Pick(60, 45);
      Expect(pick.Kind == (int)PickKind.Volume && pick.Value > 0 && pick.Value <= 1, "the volume in the middle");
      var lengths = new[] { 34, 26, 18 };
      for (int axis = 0; axis < 3; ++axis) {
        double expected = (pick.Voxel[axis] + 0.5) / lengths[axis] * (axis + 1);
        Expect(Math.Abs(pick.Millimetres[axis] - expected) < 1e-6, "millimetres of axis " + axis);
      }
      Expect(renderer.Pick(0, 0).Kind == (int)PickKind.Nothing, "the background");
      renderer.Show(false, false);
      target.Draw(120, 90, volume.Render);
      Expect(!string.IsNullOrEmpty(renderer.Explain()), "why the volume is not seen");
      RendererInfo info = Library.Info;
      Expect(Utf8.Text(info.Version)[0] >= '3' && info.MaxTextureSize >= 1024 && info.Max3dTextureSize >= 256
             && (info.Sharings & 1u << (int)SurfaceSharing.HostMemory) != 0, "what the context has to offer");
    }
  }

  // ---- Errors and threads

  private static void Errors() {
    using (var target = new OffscreenTarget())
    using (var display = new Display()) {
      var wrong = new Dictionary<string, KeyValuePair<ErrorKind, Action>> {
        { "The overlay index must be from 0 to 7. ", new KeyValuePair<ErrorKind, Action>(
            ErrorKind.Argument, () => display.SetOverlayColors(8, colors, 0, 1)) },
        { "Cannot generate a texture of the required size. ", new KeyValuePair<ErrorKind, Action>(
            ErrorKind.Argument, () => target.Draw(8, 8, display.Render)) },
        { "The device library \"no \u00e4\" could not be loaded: ", new KeyValuePair<ErrorKind, Action>(
            ErrorKind.Device, () => {
              Library.SetDeviceLibrary("no \u00e4");
              new LiveSource(new IntPtr(8), new IntPtr(8));
            }) },
      };
      foreach (var pair in wrong) {
        OctException thrown = ExpectThrown<OctException>(pair.Value.Value, pair.Key);
        if (thrown == null) continue;
        Expect(thrown.Message.StartsWith(pair.Key), pair.Key + " instead of " + thrown.Message);
        Expect(thrown.Kind == pair.Value.Key, pair.Value.Key + " instead of " + thrown.Kind + " for " + pair.Key);
      }
      ExpectThrown<ArgumentException>(() => display.SetData(3, 3, new float[8]), "too few samples");
      ExpectThrown<ArgumentException>(() => display.SetColormap(new byte[7]), "a part of a colour");
      ExpectThrown<ArgumentNullException>(() => display.SetData(null), "no samples");
      Exception own = ExpectThrown<FormatException>(
          () => target.Draw(8, 8, () => { throw new FormatException("mine"); }), "the client's own exception");
      Expect(own != null && own.Message == "mine", "the client's own exception");
      Apply(display);
      Expect(target.Draw(26, 34, display.Render).Length == 26 * 34 * 4, "the target goes on");
    }
  }

  private static Exception OnAnotherThread(Action action) {
    Exception thrown = null;
    var thread = new Thread(() => {
      try {
        action();
      } catch (Exception exception) {
        thrown = exception;
      }
    });
    thread.Start();
    thread.Join();
    return thrown;
  }

  private static void Threads() {
    using (var target = new OffscreenTarget()) {
      var display = new Display();
      Apply(display);
      Expect(OnAnotherThread(() => target.Draw(4, 4, display.Render)) is InvalidOperationException, "a target's thread");
      Expect(OnAnotherThread(display.Render) is InvalidOperationException, "a display's thread");
      byte[] before = target.Draw(26, 34, display.Render);
      Expect(OnAnotherThread(() => display.SetColoringBoundaries(0, 0.5)) == null, "settings have no thread");
      Expect(!before.SequenceEqual(target.Draw(26, 34, display.Render)), "a setting of another thread");
      display.Dispose();
      display.Dispose();
      // Each thread gets its own errors, all of them and no others.
      int wrong = 0;
      var threads = Enumerable.Range(0, 3).Select(number => new Thread(() => {
        using (var own = Native.createDisplayRendering()) {
          for (int i = 0; i < 300; ++i) {
            bool fails = i % 3 == number;
            Native.setDisplayMedianFilter(own, fails ? 7 : 0);
            Thread.Sleep(0);  // others fail meanwhile
            try {
              Library.Check();
              if (fails) Interlocked.Increment(ref wrong);
            } catch (OctException) {
              if (!fails) Interlocked.Increment(ref wrong);
            }
          }
        }
      })).ToList();
      threads.ForEach(thread => thread.Start());
      threads.ForEach(thread => thread.Join());
      Expect(wrong == 0, "a thread's own errors, and " + wrong + " were another one's");
      ExpectThrown<ObjectDisposedException>(display.Render, "a display that was disposed of");
    }
  }

  // ---- Objects that nobody disposes of

  [DllImport("oct_rendering", CallingConvention = CallingConvention.Cdecl)]
  private static extern void setDisplayFlip(IntPtr handle, int flip);
  [DllImport("oct_rendering", CallingConvention = CallingConvention.Cdecl)]
  private static extern void setZoom(IntPtr handle, double zoom);
  [DllImport("oct_rendering", CallingConvention = CallingConvention.Cdecl)]
  private static extern void setSizeZ(IntPtr handle, int size);
  [DllImport("oct_rendering", CallingConvention = CallingConvention.Cdecl)]
  private static extern void clearDataSource(IntPtr handle);

  private static int Living(IEnumerable<IntPtr> handles, Action<IntPtr> use) {
    int living = 0;
    var text = new byte[256];
    foreach (IntPtr handle in handles) {
      use(handle);
      if (Native.getRendererError(text, text.Length) == 0) ++living;
    }
    return living;
  }

  // The collector looks at a thread's stack as it is; a deep call leaves no handles there.
  [MethodImpl(MethodImplOptions.NoInlining)]
  private static void Forget(int depth, Action make) {
    if (depth > 0) Forget(depth - 1, make);
    else make();
  }

  private static void Collect() {
    for (int i = 0; i < 3; ++i) {
      GC.Collect();
      GC.WaitForPendingFinalizers();
    }
  }

  private static void ForgottenObjects() {
    using (var target = new OffscreenTarget()) {
      for (int i = 0; i < 50; ++i) new Volume().Dispose();
      var displays = new List<IntPtr>();
      var renderers = new List<IntPtr>();
      Forget(50, () => {
        for (int i = 0; i < 50; ++i) renderers.Add(new Volume().Renderer.Handle.DangerousGetHandle());
        // Last, because who makes a renderer frees what was left.
        for (int i = 0; i < 1000; ++i) displays.Add(Native.createDisplayRendering().DangerousGetHandle());
      });
      Collect();
      int left = Living(displays, handle => setDisplayFlip(handle, 1));
      Expect(left > 900, "a finalizer frees nothing on its own thread: " + left + " of 1000 are left");
      target.Draw(4, 4, () => { });
      Collect();
      target.Draw(4, 4, () => { });
      left = Living(displays, handle => setDisplayFlip(handle, 1));
      Expect(left < 50, "the next frame frees what was forgotten: " + left + " of 1000 displays are left");
      left = Living(renderers, handle => setZoom(handle, 40));
      Expect(left < 10, "after the volumes: " + left + " of 50 renderers are left");

      var renderer = new VolumeRenderer();
      var one = new[] { renderer.Handle.DangerousGetHandle() };
      using (new Volume(renderer)) {
        renderer.Dispose();
        Expect(Living(one, handle => setZoom(handle, 40)) == 1, "a volume keeps its renderer");
      }
      Expect(Living(one, handle => setZoom(handle, 40)) == 0, "no longer than it lives");
    }
  }

  // ---- Loops

  private static bool Until(Func<bool> condition) {
    for (var watch = Stopwatch.StartNew(); watch.ElapsedMilliseconds < 20000; Thread.Sleep(1)) {
      if (condition()) return true;
    }
    return false;
  }

  private static void Loops() {
    Display display = null;
    byte[] shown = null;
    int frames = 0, stopped = 0;
    using (var loop = new ControlLoop(new LoopFunctions {
      Started = () => {
        display = new Display();
        Apply(display);
      },
      Draw = id => display.Render(),
      Show = frame => {
        if (frame.Id == 5) shown = frame.CopyPixels();
        Interlocked.Increment(ref frames);
      },
      Stopped = () => {
        display.Dispose();
        ++stopped;
      }
    }, SurfaceSharing.HostMemory)) {
      loop.Resize(64, 48);
      for (int i = 0; i < 20; ++i) {
        int before = frames;
        loop.Request(i % 2 == 0 ? 0 : 5);
        GC.Collect();  // what C calls must not move or go
        Expect(Until(() => frames > before), "a frame");
      }
      byte[] snapshot = loop.Snapshot(64, 48);
      ExpectSame(loop.Snapshot(64, 48, PixelFormat.Bgra), shown, "a frame of a loop");
      using (var target = new OffscreenTarget())
      using (var own = new Display()) {
        Apply(own);
        ExpectSame(target.Draw(64, 48, own.Render), snapshot, "a snapshot");
      }
      OctException refused = ExpectThrown<OctException>(() => loop.Snapshot(64, 1 << 20), "a snapshot too large");
      Expect(refused == null || refused.Kind == ErrorKind.OpenGL, "its kind");
    }
    Expect(stopped == 1, "Stopped, before Dispose returns");
  }

  private static void ExceptionsOfCallbacks() {
    int draws = 0, frames = 0;
    string failed = null;
    Exception inside = null;
    ControlLoop loop = null;
    using (loop = new ControlLoop(new LoopFunctions {
      Draw = id => {
        if (++draws == 1) throw new FormatException("of Draw");
      },
      Show = frame => {
        Interlocked.Increment(ref frames);
        if (frames == 2) throw new FormatException("of Show");
        if (frames == 3) {
          try {
            loop.Dispose();
          } catch (Exception exception) {
            inside = exception;
          }
        }
      },
      Failed = message => failed = message
    }, SurfaceSharing.HostMemory)) {
      loop.Resize(8, 8);
      for (int i = 1; i <= 4; ++i) {
        loop.Request(i);
        int expected = i;
        Expect(Until(() => frames >= expected), "the loop goes on: " + frames);
        if (i > 2) continue;
        Exception thrown = null;
        Until(() => {
          try {
            loop.Resize(8, 8);
          } catch (InvalidOperationException exception) {
            thrown = exception.InnerException;
          }
          return thrown != null;
        });
        Expect(thrown != null && thrown.Message == (i == 1 ? "of Draw" : "of Show"), "what was thrown: " + thrown);
      }
    }
    Expect(failed == null, "no exception reaches the library: " + failed);
    Expect(inside is InvalidOperationException, "a loop is not disposed of in its own function: " + inside);
    var told = new List<string>();
    using (loop = new ControlLoop(new LoopFunctions {
      Draw = id => { throw new FormatException("told"); },
      Show = frame => Interlocked.Increment(ref frames),
      Threw = exception => told.Add(exception.Message)
    }, SurfaceSharing.HostMemory)) {
      loop.Resize(8, 8);
      int before = frames;
      loop.Request();
      Expect(Until(() => frames > before), "a frame");
      loop.Request();
    }
    Expect(told.Count > 0 && told.All(text => text == "told"), "who asked is told");
  }

  // With stand-ins for WPF: by host memory, where Direct3D does not work without being told.
  private static void ControlOfWpf() {
    byte[] drawn = null;
    var control = new OctImage();
    Display display = null;
    control.Open(new LoopFunctions {
      Started = () => Apply(display = new Display()),
      Draw = id => display.Render(),
      Stopped = () => display.Dispose()
    });
    Expect(control.Way == OctImageWay.HostMemory, "the way that works");
    foreach (double width in new[] { 40.0, 60.0 }) {
      control.Arrange(width, 20);
      int columns = (int)(width * 1.5);
      Expect(Until(() => {
        control.Dispatcher.Empty();
        var bitmap = control.Source as WriteableBitmap;
        drawn = bitmap == null ? null : bitmap.Written;
        return bitmap != null && bitmap.PixelWidth == columns && bitmap.PixelHeight == 30;
      }), "a picture in pixels of the screen");
      ExpectSame(control.Loop.Snapshot(columns, 30, PixelFormat.Bgra), drawn, "the control's picture");
    }
    control.Close();
    control.RequestFrame();
    Expect(control.Source == null && control.Loop == null, "closed");
    ExpectThrown<OctException>(() => control.Open(new LoopFunctions { Draw = id => { } }, OctImageWay.Direct3D),
                               "Direct3D where there is none");
    Expect(control.Loop == null, "nothing is left");
    control.Dispose();
  }

  private static int ExitWithALoop() {
    int frames = 0;
    var loop = new ControlLoop(new LoopFunctions {
      Draw = id => { },
      Show = frame => Interlocked.Increment(ref frames)
    }, SurfaceSharing.HostMemory);
    Native.OpenGLControlLoopMode(loop.Handle, (uint)LoopMode.Cycle);
    loop.Resize(8, 8);
    loop.Request();
    return Until(() => frames > 3) ? 7 : 8;
  }

  private static void EndOfTheProgram() {
    string self = typeof(BindingTest).Assembly.Location;
    var start = new ProcessStartInfo("mono", "\"" + self + "\" exit") { UseShellExecute = false };
    using (Process process = Process.Start(start)) {
      bool ended = process.WaitForExit(20000);
      if (!ended) process.Kill();
      Expect(ended && process.ExitCode == 7, "a program ends while a loop runs: " + (ended ? process.ExitCode : -1));
    }
  }

  // ---- Live volumes, by the simulated device

  [DllImport("oct_device", CallingConvention = CallingConvention.Cdecl)]
  private static extern IntPtr createSimulatedDevice(int phantom, int spectrum, uint seed);
  [DllImport("oct_device", CallingConvention = CallingConvention.Cdecl)]
  private static extern void clearSimulatedDevice(IntPtr device);
  [DllImport("oct_device", CallingConvention = CallingConvention.Cdecl)]
  private static extern IntPtr createSimulatedProcessing(IntPtr device);
  [DllImport("oct_device", CallingConvention = CallingConvention.Cdecl)]
  private static extern void clearSimulatedProcessing(IntPtr processing);
  [DllImport("oct_device", CallingConvention = CallingConvention.Cdecl)]
  private static extern IntPtr createSimulatedScanPattern(IntPtr device, int aScans, int bScans, double x, double y);
  [DllImport("oct_device", CallingConvention = CallingConvention.Cdecl)]
  private static extern void clearSimulatedScanPattern(IntPtr pattern);

  private static void LiveVolumes() {
    Library.SetDeviceLibrary(deviceLibrary);
    IntPtr device = createSimulatedDevice(0, 128, 1);
    IntPtr processing = createSimulatedProcessing(device);
    IntPtr pattern = createSimulatedScanPattern(device, 12, 10, 4.0, 4.0);
    var thrown = new ConcurrentQueue<string>();
    using (var target = new OffscreenTarget())
    using (var renderer = new VolumeRenderer()) {
      renderer.SetMode(VolumeMode.Maximum);
      renderer.SetColoringBoundaries(20, 60);
      using (var volume = new LiveVolume(renderer))
      using (var source = new LiveSource(device, processing)) {
        double intensity = -1;
        source.ReferenceIntensityMeasured += value => {
          intensity = value;
          throw new FormatException("of the intensity");
        };
        source.Threw += exception => thrown.Enqueue(exception.Message);
        source.MeasureReference(true);
        source.Start(volume, pattern);
        byte[] picture = null;
        Until(() => {
          picture = target.Draw(40, 30, volume.Render);
          return volume.Statistics.Shown >= 3 && thrown.Count >= 2;
        });
        LiveStatistics told = volume.Statistics;
        Expect(told.Shown >= 3 && told.Acquired >= told.Shown && told.LatencyMedianMs > 0, "volumes: " + told.Shown);
        Expect(picture.Distinct().Count() > 16, "they show something");
        Expect(intensity > 0 && intensity <= 1, "the reference intensity: " + intensity);
        Expect(source.IsRunning, "an exception of a callback ends nothing");
        Expect(thrown.Count >= 2 && thrown.All(text => text == "of the intensity"), "who asked is told");
        source.MeasureReference(false);
        source.Cancel();
        Expect(!source.IsRunning, "the end");
        target.Draw(40, 30, volume.Render);

        string failed = null;
        source.Failed += message => failed = message;
        Native.setSizeZ(source.Handle, 1000);
        source.Start(volume, pattern);
        Until(() => {
          target.Draw(40, 30, volume.Render);
          return failed != null;
        });
        Expect(failed == "Insufficient memory allocated.", "an error of the source: " + failed);
        var text2 = new byte[64];
        Expect(Native.getDataSourceError(source.Handle, text2, text2.Length) != 0 && Utf8.Text(text2) == failed,
               "the same for whoever polls");
      }
    }
    var forgotten = new List<IntPtr>();
    Forget(50, () => {
      for (int i = 0; i < 20; ++i) {
        forgotten.Add(Native.createOnlineDataSource(device, processing).DangerousGetHandle());
      }
    });
    Collect();
    Expect(Living(forgotten, handle => setSizeZ(handle, 8)) == 20, "no finalizer waits for threads that call back");
    forgotten.ForEach(clearDataSource);
    clearSimulatedScanPattern(pattern);
    clearSimulatedProcessing(processing);
    clearSimulatedDevice(device);
  }
}
