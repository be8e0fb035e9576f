using System;

namespace OctRendering {

/// <summary>
/// An OpenGL context without a window, and pictures that are drawn in it. It belongs to the thread that makes it,
/// and so do the displays and volumes that are made after it on that thread.
/// </summary>
public sealed class OffscreenTarget : IDisposable {
  /// <summary>Makes the context and leaves it current on this thread.</summary>
  public OffscreenTarget() {
    OwnThread.FreeWhatWasLeft();
    Handle = Library.Checked(Native.createOffscreenTarget());
  }

  /// <summary>For the functions of Native.</summary>
  public OffscreenTargetHandle Handle { get; private set; }

  /// <summary>Draws a picture.</summary>
  /// <param name="width">Pixels.</param>
  /// <param name="height">Pixels.</param>
  /// <param name="draw">Draws it, by Display.Render and the like. What it throws comes out of this function.</param>
  /// <param name="format">At first that of bitmaps: blue, green, red, alpha, the top row first.</param>
  /// <returns>Four bytes a pixel, without gaps between the rows.</returns>
  public byte[] Draw(int width, int height, Action draw, PixelFormat format = PixelFormat.BgraTopDown) {
    Handle.RequireThread();
    OwnThread.FreeWhatWasLeft();
    Native.beginOffscreenFrame(Handle, (uint)width, (uint)height);
    Library.Check();
    byte[] pixels = null;
    try {
      draw();
      pixels = new byte[checked(width * height * 4)];
    } finally {
      using (var pinned = new Pinned(pixels)) {
        Native.finishOffscreenFrameAs(Handle, (int)format, pinned.Pointer);
      }
      if (pixels == null) Library.DiscardErrors();
    }
    Library.Check();
    return pixels;
  }

  /// <summary>Frees the context, on the thread that made it. Dispose of what was made in it first.</summary>
  public void Dispose() { Handle.Dispose(); }
}
}
