using System;

namespace OctRendering {

/// <summary>Draws B-scans. Made and used on the thread of an OpenGL context that is current.</summary>
public sealed class Display : IDisposable {
  /// <summary>Makes a renderer and what it needs in the current context.</summary>
  public Display() {
    OwnThread.FreeWhatWasLeft();
    Handle = Library.Checked(Native.createDisplayRendering());
    try {
      Native.initDisplayRendering(Handle);
      Library.Check();
    } catch {
      Handle.Dispose();
      throw;
    }
  }

  /// <summary>For the functions of Native.</summary>
  public DisplayRenderingHandle Handle { get; private set; }

  /// <summary>Sets the image; it is read before this returns, without a copy on the way.</summary>
  /// <param name="samples">By A-scan and depth: an A-scan is a row of the array.</param>
  public void SetData(float[,] samples) { Set(Native.setDisplayData, samples); }

  /// <summary>Sets the image from a one-dimensional array.</summary>
  /// <param name="depth">Samples per A-scan, which follow each other.</param>
  /// <param name="aScans">Their number.</param>
  /// <param name="samples">depth * aScans of them.</param>
  public void SetData(int depth, int aScans, float[] samples) {
    if (samples == null) throw new ArgumentNullException("samples");
    if (samples.LongLength != (long)depth * aScans) {
      throw new ArgumentException("The array has another number of samples than the image.", "samples");
    }
    using (var pinned = new Pinned(samples)) Native.setDisplayData(Handle, depth, aScans, pinned.Pointer);
    Library.Check();
  }

  /// <summary>Sets the image that all overlays draw.</summary>
  /// <param name="samples">As that of SetData.</param>
  public void SetOverlayData(float[,] samples) { Set(Native.setDisplayOverlayData, samples); }

  /// <summary>Sets how many overlays are drawn.</summary>
  /// <param name="count">0 to Native.DisplayOverlays.</param>
  public void SetOverlays(int count) {
    Native.setDisplayNumberOverlays(Handle, 0, count);
    Library.Check();
  }

  /// <summary>Sets the colours and boundaries of one overlay.</summary>
  /// <param name="overlay">Its index.</param>
  /// <param name="colors">Four bytes each: red, green, blue, alpha.</param>
  /// <param name="lower">Value of the first colour.</param>
  /// <param name="upper">Value of the last one.</param>
  public void SetOverlayColors(int overlay, byte[] colors, double lower, double upper) {
    using (var pinned = new Pinned(colors)) {
      Native.setDisplayOverlayColormap(Handle, overlay, pinned.Pointer, Colormap.Count(colors));
    }
    Library.Check();
    Native.setDisplayOveralyColoringBoundaries(Handle, overlay, lower, upper);
    Library.Check();
  }

  /// <summary>Sets the colour map.</summary>
  /// <param name="colors">Four bytes each: red, green, blue, alpha.</param>
  public void SetColormap(byte[] colors) {
    using (var pinned = new Pinned(colors)) {
      Native.setDisplayColormap(Handle, pinned.Pointer, Colormap.Count(colors));
    }
    Library.Check();
  }

  /// <summary>Sets which values the ends of the colour map stand for.</summary>
  /// <param name="lower">The first colour.</param>
  /// <param name="upper">The last one.</param>
  public void SetColoringBoundaries(double lower, double upper) {
    Native.setDisplayColoringBoundaries(Handle, lower, upper);
    Library.Check();
  }

  /// <summary>Switches the filters, in the order in which they run.</summary>
  /// <param name="blurFirst">A Gaussian before the pepper filter.</param>
  /// <param name="pepper">The pepper filter.</param>
  /// <param name="blurLast">A Gaussian after it.</param>
  public void SetFilters(bool blurFirst, bool pepper, bool blurLast) {
    Native.setDisplayBlur(Handle, blurFirst ? 1 : 0, blurLast ? 1 : 0);
    Native.setDisplayPepperFilter(Handle, pepper ? 1 : 0);
    Library.Check();
  }

  /// <summary>Turns the picture upside down.</summary>
  /// <param name="flip">Whether depth runs up the screen.</param>
  public void SetFlip(bool flip) {
    Native.setDisplayFlip(Handle, flip ? 1 : 0);
    Library.Check();
  }

  /// <summary>Draws into the current frame.</summary>
  public void Render() {
    Handle.RequireThread();
    Native.renderDisplay(Handle);
    Library.Check();
  }

  /// <summary>Why the last frame shows nothing or almost nothing, in plain words.</summary>
  /// <returns>Null when it shows something.</returns>
  public string Explain() {
    Handle.RequireThread();
    var text = new byte[1024];
    return Library.Checked(Native.explainDisplay(Handle, text, text.Length)) == 0 ? null : Utf8.Text(text);
  }

  /// <summary>Frees it, on the thread that made it.</summary>
  public void Dispose() {
    if (Handle.IsClosed) return;
    Native.uninitDisplayRendering(Handle);
    Library.DiscardErrors();
    Handle.Dispose();
  }

  private delegate void Setter(DisplayRenderingHandle handle, int depth, int aScans, IntPtr samples);

  private void Set(Setter setter, float[,] samples) {
    if (samples == null) throw new ArgumentNullException("samples");
    using (var pinned = new Pinned(samples)) {
      setter(Handle, samples.GetLength(1), samples.GetLength(0), pinned.Pointer);
    }
    Library.Check();
  }
}

internal static class Colormap {
  public static int Count(byte[] colors) {
    if (colors == null) throw new ArgumentNullException("colors");
    if (colors.Length % 4 != 0) throw new ArgumentException("A colour has four bytes.", "colors");
    return colors.Length / 4;
  }
}
}
