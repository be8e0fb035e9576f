using System;
using System.Collections.Generic;
using System.Runtime.InteropServices;

namespace OctRendering {

/// <summary>A frame, until the function that receives it returns.</summary>
public struct Frame {
  /// <summary>The id of the request.</summary>
  public uint Id;
  /// <summary>Pixels.</summary>
  public int Width;
  /// <summary>Pixels.</summary>
  public int Height;
  /// <summary>IDirect3DSurface9*, or a HostSurface in memory.</summary>
  public IntPtr Surface;

  /// <summary>The pixels of a frame in host memory.</summary>
  /// <returns>Four bytes a pixel: blue, green, red, alpha, the bottom row first, unless Native.setHostPixelFormat said
  /// otherwise before the loop was made.</returns>
  public byte[] CopyPixels() {
    var surface = (HostSurface)Marshal.PtrToStructure(Surface, typeof(HostSurface));
    var pixels = new byte[Width * Height * 4];
    for (int row = 0; row < Height; ++row) {
      Marshal.Copy(IntPtr.Add(surface.Pixels, checked(row * (int)surface.StrideBytes)), pixels, row * Width * 4,
                   Width * 4);
    }
    return pixels;
  }
}

/// <summary>What a loop calls. Everything may be null but Draw.</summary>
public sealed class LoopFunctions {
  /// <summary>On the render thread, its context current, before the first frame: make renderers and volumes.</summary>
  public Action Started;
  /// <summary>On the render thread: draws the frame of an id.</summary>
  public Action<uint> Draw;
  /// <summary>On the return thread: receives finished frames.</summary>
  public Action<Frame> Show;
  /// <summary>On the render thread, after the last frame: dispose of what Started made.</summary>
  public Action Stopped;
  /// <summary>On the render thread: the reason for which it ends by itself. Stopped is not called then.</summary>
  public Action<string> Failed;
  /// <summary>
  /// On the thread where one of these functions threw. Without it the exception comes out of the next Request, Snapshot
  /// or Resize.
  /// </summary>
  public Action<Exception> Threw;
}

/// <summary>
/// Two threads that draw frames and hand them over. It lives, with what its functions refer to, until Dispose, or until
/// the program ends.
/// </summary>
public sealed class ControlLoop : IDisposable {
  private readonly CallbackGuard guard;
  // C keeps pointers to these.
  private readonly OctLoopFunction started, stopped;
  private readonly OctErrorFunction failed;
  private readonly OctRenderFunction draw;
  private readonly OctImageReadyFunction show;

  /// <summary>Starts a loop that draws each request once.</summary>
  /// <param name="functions">What it calls.</param>
  /// <param name="sharing">What frames are handed over in; null: what was set last.</param>
  public ControlLoop(LoopFunctions functions, SurfaceSharing? sharing = null) {
    if (functions == null || functions.Draw == null) throw new ArgumentNullException("functions");
    guard = new CallbackGuard(this, () => functions.Threw);
    started = () => guard.Run(() => Call(functions.Started));
    stopped = () => guard.Run(() => {
      Call(functions.Stopped);
      OwnThread.FreeWhatWasLeft();
    });
    failed = message => guard.Run(() => {
      if (functions.Failed != null) functions.Failed(Utf8.Text(message));
      OwnThread.FreeWhatWasLeft();
    });
    draw = id => guard.Run(() => {
      OwnThread.FreeWhatWasLeft();
      functions.Draw(id);
    });
    show = (id, width, height, surface) => guard.Run(() => {
      functions.Show(new Frame { Id = id, Width = (int)width, Height = (int)height, Surface = surface });
    });
    lock (creation) {
      if (sharing.HasValue) Native.setSurfaceSharing((int)sharing.Value);
      Library.Check();
      Handle = Library.Checked(Native.createOpenGLControlLoopCB(started, stopped, failed));
    }
    Living.Add(this);
    Native.registerOpenGLControlLoopRenderCallback(Handle, draw);
    if (functions.Show != null) Native.registerOpenGLControlLoopCallback(Handle, show);
    Native.OpenGLControlLoopMode(Handle, (uint)LoopMode.Once);
    Library.Check();
  }

  /// <summary>For the functions of Native.</summary>
  public OpenGLControlLoopHandle Handle { get; private set; }

  /// <summary>Sets the size of the frames; without one nothing is drawn.</summary>
  /// <param name="width">Pixels.</param>
  /// <param name="height">Pixels.</param>
  public void Resize(int width, int height) {
    guard.ThrowPending();
    Native.resizeOpenGLControlLoop(Handle, (uint)width, (uint)height);
    Library.Check();
  }

  /// <summary>Asks for a frame and returns at once.</summary>
  /// <param name="id">For Draw and Show.</param>
  public void Request(int id = 0) {
    guard.ThrowPending();
    Native.renderMultOpenGLControlLoop(Handle, id);
  }

  /// <summary>Draws a frame of any size and waits for it. Not on the loop's render thread.</summary>
  /// <param name="width">Pixels.</param>
  /// <param name="height">Pixels.</param>
  /// <param name="format">At first that of bitmaps: blue, green, red, alpha, the top row first.</param>
  /// <returns>Four bytes a pixel, without gaps between the rows.</returns>
  public byte[] Snapshot(int width, int height, PixelFormat format = PixelFormat.BgraTopDown) {
    guard.ThrowPending();
    var pixels = new byte[checked(width * height * 4)];
    using (var pinned = new Pinned(pixels)) {
      Native.snapshotOpenGLControlLoopAs(Handle, width, height, (int)format, pinned.Pointer);
    }
    Library.Check();
    guard.ThrowPending();
    return pixels;
  }

  /// <summary>Ends both threads and waits for their functions. Not in one of them.</summary>
  public void Dispose() {
    guard.RefuseInside();
    Handle.Dispose();
    Living.Remove(this);
  }

  private static readonly object creation = new object();

  private static void Call(Action action) {
    if (action != null) action();
  }
}

// What has threads that call back: alive until it is disposed of, and disposed of when the program ends, while there
// still is somebody to call.
internal static class Living {
  private static readonly HashSet<IDisposable> objects = new HashSet<IDisposable>();

  static Living() {
    AppDomain.CurrentDomain.ProcessExit += (sender, arguments) => End();
    AppDomain.CurrentDomain.DomainUnload += (sender, arguments) => End();
  }

  public static void Add(IDisposable value) {
    lock (objects) objects.Add(value);
  }

  public static void Remove(IDisposable value) {
    lock (objects) objects.Remove(value);
  }

  private static void End() {
    IDisposable[] left;
    lock (objects) {
      left = new IDisposable[objects.Count];
      objects.CopyTo(left);
    }
    foreach (IDisposable value in left) value.Dispose();
  }
}

// Between C and a function of the client's: no exception passes.
internal sealed class CallbackGuard {
  [ThreadStatic]
  private static object inside;
  private readonly object owner;
  private readonly Func<Action<Exception>> told;
  private readonly object gate = new object();
  private Exception pending;

  public CallbackGuard(object owner, Func<Action<Exception>> told) {
    this.owner = owner;
    this.told = told;
  }

  public void Run(Action action) {
    object before = inside;
    inside = owner;
    try {
      action();
    } catch (Exception exception) {
      Keep(exception);
    }
    inside = before;
  }

  public void ThrowPending() {
    Exception thrown;
    lock (gate) {
      thrown = pending;
      pending = null;
    }
    if (thrown != null) throw new InvalidOperationException("A function that was called back threw.", thrown);
  }

  public void RefuseInside() {
    if (inside == owner) throw new InvalidOperationException("Not in a function that the object itself calls.");
  }

  private void Keep(Exception exception) {
    Action<Exception> threw = told();
    if (threw != null) {
      try {
        threw(exception);
        return;
      } catch (Exception second) {
        exception = second;
      }
    }
    lock (gate) {
      if (pending == null) pending = exception;
    }
  }
}
}
