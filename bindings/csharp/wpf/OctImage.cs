// A control for WPF that shows the frames of a control loop. Needs PresentationCore, PresentationFramework and
// WindowsBase; it is compiled into the program, see the README.
using System;
using System.Collections.Generic;
using System.Threading;
using System.Windows;
using System.Windows.Controls;
using System.Windows.Interop;
using System.Windows.Media;
using System.Windows.Media.Imaging;
using System.Windows.Threading;

namespace OctRendering.Wpf {

/// <summary>How frames come to the screen.</summary>
public enum OctImageWay {
  /// <summary>By Direct3D surfaces, and by host memory in a remote session or where surfaces do not work.</summary>
  Automatic,
  /// <summary>A D3DImage over Direct3D surfaces. Frames stay on the graphics card.</summary>
  Direct3D,
  /// <summary>A WriteableBitmap over host memory. Works everywhere.</summary>
  HostMemory
}

/// <summary>
/// Shows what a loop draws, at the size of the control in pixels of the screen. All members are for the dispatcher's
/// thread, but for RequestFrame.
/// </summary>
public sealed class OctImage : Image, IDisposable {
  private LoopFunctions functions;
  private ControlLoop loop;
  private ISink sink;
  private bool disposed;

  /// <summary>An empty control; see Open.</summary>
  public OctImage() {
    Stretch = Stretch.Fill;
    // The library's bottom row comes first.
    RenderTransformOrigin = new Point(0.5, 0.5);
    RenderTransform = new ScaleTransform(1, -1);
    SizeChanged += (sender, arguments) => Fit();
    Loaded += (sender, arguments) => Fit();
  }

  /// <summary>The loop ended by itself and no other way is left: the text of its error. On the dispatcher.</summary>
  public event Action<string> Failed;

  /// <summary>The way in use; Automatic before Open.</summary>
  public OctImageWay Way { get; private set; }

  /// <summary>Starts to draw.</summary>
  /// <param name="drawing">Started, Draw and Stopped run on the render thread, as those of a ControlLoop; where
  /// Automatic changes the way, a new loop calls Started again. Show is ignored, Failed as well.</param>
  /// <param name="way">How frames come to the screen.</param>
  public void Open(LoopFunctions drawing, OctImageWay way = OctImageWay.Automatic) {
    if (disposed) throw new ObjectDisposedException("OctImage");
    Close();
    functions = drawing;
    bool direct3D = way == OctImageWay.Direct3D;
    // WPF composes a remote session in software, and reads a surface back for each of its frames: host memory is faster.
    if (way == OctImageWay.Automatic) direct3D = !SystemParameters.IsRemoteSession && RenderCapability.Tier > 0;
    Start(direct3D, way == OctImageWay.Automatic);
  }

  /// <summary>Asks for a frame, from any thread.</summary>
  public void RequestFrame() {
    ControlLoop running = Volatile.Read(ref loop);
    if (running == null) return;
    try {
      running.Request();
    } catch (ObjectDisposedException) {
      // Closed meanwhile: nobody sees the frame.
    }
  }

  /// <summary>The loop, for snapshots; null while closed.</summary>
  public ControlLoop Loop {
    get { return loop; }
  }

  /// <summary>Ends the loop. The picture goes.</summary>
  public void Close() {
    ControlLoop ending = loop;
    Volatile.Write(ref loop, null);
    Source = null;
    if (sink != null) sink.Close();
    sink = null;
    if (ending != null) ending.Dispose();
  }

  /// <summary>Closes for good.</summary>
  public void Dispose() {
    Close();
    disposed = true;
  }

  private void Start(bool direct3D, bool mayChange) {
    Way = direct3D ? OctImageWay.Direct3D : OctImageWay.HostMemory;
    ISink own = direct3D ? (ISink)new SurfaceSink(Dispatcher) : new BitmapSink(Dispatcher);
    own.SourceChanged += source => Source = source;
    sink = own;
    var called = new LoopFunctions {
      Started = functions.Started, Draw = functions.Draw, Stopped = functions.Stopped, Threw = functions.Threw,
      Show = own.Show,
      Failed = message => Dispatcher.BeginInvoke(new Action(() => Ended(own, direct3D && mayChange, message)))
    };
    try {
      var started = new ControlLoop(called, direct3D ? SurfaceSharing.Direct3D : SurfaceSharing.HostMemory);
      own.Loop = started;
      Volatile.Write(ref loop, started);
    } catch (OctException) {
      Close();
      if (!direct3D || !mayChange) throw;
      Start(false, false);
      return;
    }
    Fit();
  }

  private void Ended(ISink ofLoop, bool change, string message) {
    if (sink != ofLoop) return;  // closed or replaced meanwhile
    Close();
    if (change) {
      Start(false, false);
    } else if (Failed != null) {
      Failed(message);
    }
  }

  private void Fit() {
    PresentationSource screen = PresentationSource.FromVisual(this);
    if (loop == null || screen == null || screen.CompositionTarget == null) return;
    Matrix scale = screen.CompositionTarget.TransformToDevice;
    int width = (int)Math.Round(ActualWidth * scale.M11), height = (int)Math.Round(ActualHeight * scale.M22);
    if (width < 1 || height < 1) return;
    loop.Resize(width, height);
    loop.Request();
  }

  // Takes frames on the loop's return thread and shows them on the dispatcher's.
  private interface ISink {
    event Action<ImageSource> SourceChanged;
    ControlLoop Loop { set; }
    void Show(Frame frame);
    void Close();  // on the dispatcher, while the loop still is there
  }

  // Posts one action at a time: the dispatcher must not drown in frames. The return thread never waits for it.
  private sealed class Post {
    private readonly Dispatcher dispatcher;
    private readonly Action action;
    private int waiting;

    public Post(Dispatcher dispatcher, Action action) {
      this.dispatcher = dispatcher;
      this.action = action;
    }

    public void Once() {
      if (Interlocked.Exchange(ref waiting, 1) != 0) return;
      dispatcher.BeginInvoke(DispatcherPriority.Render, new Action(() => {
        Interlocked.Exchange(ref waiting, 0);
        action();
      }));
    }
  }

  private sealed class BitmapSink : ISink {
    private readonly object gate = new object();
    private readonly Post post;
    private byte[] pixels;
    private int width, height;
    private bool closed;
    private WriteableBitmap bitmap;

    public BitmapSink(Dispatcher dispatcher) { post = new Post(dispatcher, Present); }

    public event Action<ImageSource> SourceChanged;

    public ControlLoop Loop {
      set { }
    }

    public void Show(Frame frame) {
      byte[] copied = frame.CopyPixels();
      lock (gate) {
        pixels = copied;
        width = frame.Width;
        height = frame.Height;
      }
      post.Once();
    }

    private void Present() {
      byte[] shown;
      int columns, rows;
      lock (gate) {
        shown = pixels;
        columns = width;
        rows = height;
        pixels = null;
      }
      if (closed || shown == null) return;
      if (bitmap == null || bitmap.PixelWidth != columns || bitmap.PixelHeight != rows) {
        bitmap = new WriteableBitmap(columns, rows, 96, 96, PixelFormats.Bgr32, null);
        SourceChanged(bitmap);
      }
      bitmap.WritePixels(new Int32Rect(0, 0, columns, rows), shown, columns * 4, 0);
    }

    public void Close() { closed = true; }
  }

  // Two surfaces in turn: WPF reads the one that is shown whenever it composes, while the return thread copies the next
  // frame into the other one.
  private sealed class SurfaceSink : ISink {
    private sealed class Kept {
      public IntPtr Surface;
      public int Width, Height;
    }

    private readonly object gate = new object();
    private readonly Post post;
    private readonly D3DImage image = new D3DImage();
    private readonly List<Kept> retired = new List<Kept>();
    private ControlLoop loop;
    private Kept next, shown;
    private bool fresh, closed, told;

    public SurfaceSink(Dispatcher dispatcher) {
      post = new Post(dispatcher, Present);
      // The front buffer goes with the session, the screen saver, a driver; when it comes back WPF has forgotten ours.
      image.IsFrontBufferAvailableChanged += (sender, arguments) => {
        if (image.IsFrontBufferAvailable) Present(true);
      };
    }

    public event Action<ImageSource> SourceChanged;

    public ControlLoop Loop {
      set {
        lock (gate) loop = value;
      }
    }

    public void Show(Frame frame) {
      lock (gate) {
        if (loop == null || closed) return;
        if (next != null && (next.Width != frame.Width || next.Height != frame.Height)) {
          retired.Add(next);
          next = null;
        }
        if (next == null) {
          IntPtr surface = Native.createDXSurface(loop.Handle, (uint)frame.Width, (uint)frame.Height);
          Library.Check();
          next = new Kept { Surface = surface, Width = frame.Width, Height = frame.Height };
        }
        Native.copyDXSurface(loop.Handle, frame.Surface, next.Surface);
        Library.Check();
        fresh = true;
      }
      post.Once();
    }

    private void Present() { Present(false); }

    private void Present(bool again) {
      if (closed) return;
      image.Lock();  // waits until WPF has read what is shown
      try {
        lock (gate) {
          if (fresh) {
            Kept before = shown;
            shown = next;
            next = before;
            fresh = false;
          } else if (!again) {
            return;
          }
          if (shown == null) return;
          // The third argument lets WPF read the surface back where it composes in software.
          image.SetBackBuffer(D3DResourceType.IDirect3DSurface9, shown.Surface, true);
          image.AddDirtyRect(new Int32Rect(0, 0, image.PixelWidth, image.PixelHeight));
          Free(retired);
        }
      } finally {
        image.Unlock();
      }
      if (told) return;
      told = true;
      SourceChanged(image);
    }

    public void Close() {
      image.Lock();
      image.SetBackBuffer(D3DResourceType.IDirect3DSurface9, IntPtr.Zero);
      image.Unlock();
      lock (gate) {
        closed = true;
        foreach (Kept kept in new[] { next, shown }) {
          if (kept != null) retired.Add(kept);
        }
        next = shown = null;
        Free(retired);
      }
    }

    private void Free(List<Kept> surfaces) {
      foreach (Kept kept in surfaces) Native.destroyDXSurface(loop.Handle, kept.Surface);
      surfaces.Clear();
    }
  }
}
}
