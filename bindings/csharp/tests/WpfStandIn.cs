// The few types of WPF that the control needs, as far as it uses them: declared as WPF documents them, with a dispatcher
// whose queue a test empties. That the control compiles with them and runs is no proof of what WPF itself does.
using System;
using System.Collections.Generic;

namespace System.Windows {
public delegate void DependencyPropertyChangedEventHandler(object sender, DependencyPropertyChangedEventArgs e);
public struct DependencyPropertyChangedEventArgs { }
public delegate void RoutedEventHandler(object sender, EventArgs e);
public delegate void SizeChangedEventHandler(object sender, EventArgs e);

public struct Point {
  public Point(double x, double y) { }
}

public struct Int32Rect {
  public readonly int Width, Height;
  public Int32Rect(int x, int y, int width, int height) {
    Width = width;
    Height = height;
  }
}

public static class SystemParameters {
  public static bool IsRemoteSession { get; set; }
}

public class PresentationSource {
  public Media.CompositionTarget CompositionTarget = new Media.CompositionTarget();
  public static PresentationSource FromVisual(object visual) { return new PresentationSource(); }
}

public class FrameworkElement {
  public double ActualWidth, ActualHeight;
  public Point RenderTransformOrigin { get; set; }
  public object RenderTransform { get; set; }
  public Threading.Dispatcher Dispatcher = new Threading.Dispatcher();
  public event SizeChangedEventHandler SizeChanged;
  public event RoutedEventHandler Loaded;
  public void Arrange(double width, double height) {
    ActualWidth = width;
    ActualHeight = height;
    SizeChanged(this, EventArgs.Empty);
    Loaded(this, EventArgs.Empty);
  }
}
}

namespace System.Windows.Controls {
public class Image : FrameworkElement {
  public Media.ImageSource Source { get; set; }
  public Media.Stretch Stretch { get; set; }
}
}

namespace System.Windows.Threading {
public enum DispatcherPriority { Normal, Render }

public class Dispatcher {
  private readonly Queue<Delegate> queue = new Queue<Delegate>();
  public void BeginInvoke(Delegate method) {
    lock (queue) queue.Enqueue(method);
  }
  public void BeginInvoke(DispatcherPriority priority, Delegate method) { BeginInvoke(method); }
  public void Empty() {
    for (;;) {
      Delegate next;
      lock (queue) {
        if (queue.Count == 0) return;
        next = queue.Dequeue();
      }
      next.DynamicInvoke();
    }
  }
}
}

namespace System.Windows.Media {
public enum Stretch { None, Fill }
public class ImageSource { }
public class ScaleTransform {
  public ScaleTransform(double x, double y) { }
}
public struct Matrix {
  public double M11, M22;
}
public class CompositionTarget {
  public Matrix TransformToDevice = new Matrix { M11 = 1.5, M22 = 1.5 };
}
public static class RenderCapability {
  public static int Tier = 0x20000;
}
public struct PixelFormat { }
public static class PixelFormats {
  public static PixelFormat Bgr32;
}
}

namespace System.Windows.Media.Imaging {
public class BitmapPalette { }
public class WriteableBitmap : ImageSource {
  public WriteableBitmap(int width, int height, double dpiX, double dpiY, PixelFormat format, BitmapPalette palette) {
    PixelWidth = width;
    PixelHeight = height;
  }
  public int PixelWidth, PixelHeight;
  public byte[] Written;
  public void WritePixels(Int32Rect rectangle, Array pixels, int stride, int offset) { Written = (byte[])pixels; }
}
}

namespace System.Windows.Interop {
public enum D3DResourceType { IDirect3DSurface9 }
public class D3DImage : Media.ImageSource {
  public event DependencyPropertyChangedEventHandler IsFrontBufferAvailableChanged;
  public bool IsFrontBufferAvailable = true;
  public int PixelWidth, PixelHeight;
  public void Lock() { }
  public void Unlock() { }
  public void SetBackBuffer(D3DResourceType type, IntPtr surface) { SetBackBuffer(type, surface, false); }
  public void SetBackBuffer(D3DResourceType type, IntPtr surface, bool enableSoftwareFallback) {
    if (surface != IntPtr.Zero) IsFrontBufferAvailableChanged(this, new DependencyPropertyChangedEventArgs());
  }
  public void AddDirtyRect(Int32Rect rectangle) { }
}
}
