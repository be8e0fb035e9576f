using System;

namespace OctRendering {

/// <summary>How volumes are drawn. Made and used on the thread of an OpenGL context that is current.</summary>
public sealed class VolumeRenderer : IDisposable {
  /// <summary>Makes a renderer and what it needs in the current context.</summary>
  public VolumeRenderer() {
    OwnThread.FreeWhatWasLeft();
    Handle = Library.Checked(Native.createVolumeRenderer());
    try {
      Native.initializeVolumeRenderer(Handle);
      Library.Check();
    } catch {
      Handle.Dispose();
      throw;
    }
  }

  /// <summary>For the functions of Native; whatever has no method here is set through it.</summary>
  public VolumeRendererHandle Handle { get; private set; }

  /// <summary>Sets what a ray makes of the voxels that it meets.</summary>
  /// <param name="mode">The start is VolumeMode.Composite.</param>
  public void SetMode(VolumeMode mode) {
    Native.setVolumeMode(Handle, (int)mode);
    Library.Check();
  }

  /// <summary>Turns the volume.</summary>
  /// <param name="x">Degrees about the screen's horizontal axis.</param>
  /// <param name="y">Degrees about the axis of depth.</param>
  public void SetAngles(double x, double y) {
    Native.setAngles(Handle, x, y);
    Library.Check();
  }

  /// <summary>Sets how much the view shows.</summary>
  /// <param name="zoom">The start is 40; smaller is closer.</param>
  public void SetZoom(double zoom) {
    Native.setZoom(Handle, zoom);
    Library.Check();
  }

  /// <summary>Chooses the projection.</summary>
  /// <param name="perspective">The start is true; false is orthographic.</param>
  public void SetPerspective(bool perspective) {
    Native.setUsePerspective(Handle, perspective);
    Library.Check();
  }

  /// <summary>Sets the steps that a ray takes along the diagonal of the box.</summary>
  /// <param name="slices">The start is 128.</param>
  public void SetSlices(int slices) {
    Native.setRenderingSlices(Handle, slices);
    Library.Check();
  }

  /// <summary>Shows slices, each at 0 to 1 along its axis; null shows none there.</summary>
  /// <param name="aScan">Across the A-scans.</param>
  /// <param name="depth">Across depth.</param>
  /// <param name="bScan">Across the B-scans.</param>
  public void ShowSections(float? aScan, float? depth, float? bScan) {
    Native.setSectionalView(Handle, aScan.HasValue ? 1 : 0, aScan ?? 0, depth.HasValue ? 1 : 0, depth ?? 0,
                            bScan.HasValue ? 1 : 0, bScan ?? 0);
    Library.Check();
    Native.setRenderingMode(Handle, (int)RenderingMode.Sections);
    Library.Check();
  }

  /// <summary>Shows the whole volume, as at the start.</summary>
  public void ShowWhole() {
    Native.setRenderingMode(Handle, (int)RenderingMode.RayCasting);
    Library.Check();
  }

  /// <summary>Sets the colour map of the volume.</summary>
  /// <param name="colors">Four bytes each: red, green, blue, alpha (opacity of a step).</param>
  public void SetColormap(byte[] colors) {
    using (var pinned = new Pinned(colors)) {
      Native.setRendererColormap(Handle, pinned.Pointer, Colormap.Count(colors));
    }
    Library.Check();
  }

  /// <summary>Sets which values the ends of the colour map stand for.</summary>
  /// <param name="lower">The first colour.</param>
  /// <param name="upper">The last one.</param>
  public void SetColoringBoundaries(double lower, double upper) {
    Native.setRendererColoringBoundaries(Handle, lower, upper);
    Library.Check();
  }

  /// <summary>Sets the background.</summary>
  /// <param name="bottom">0xRRGGBBAA</param>
  /// <param name="top">The same.</param>
  public void SetBackground(uint bottom, uint top) {
    Native.setRenderBackground(Handle, bottom, top);
    Library.Check();
  }

  /// <summary>Chooses what is drawn around the volume.</summary>
  /// <param name="scaleMarks">Scale marks with labels.</param>
  /// <param name="edges">The edges of the box.</param>
  /// <param name="box">Its translucent faces.</param>
  public void SetBorder(bool scaleMarks, bool edges, bool box) {
    Native.setBorder(Handle, scaleMarks ? 1 : 0, edges ? 1 : 0, box ? 1 : 0);
    Library.Check();
  }

  /// <summary>Shows or hides volume and surface.</summary>
  /// <param name="volume">An upload shows it.</param>
  /// <param name="surface">An upload hides it.</param>
  public void Show(bool volume, bool surface) {
    Native.setRenderElements(Handle, volume ? 1 : 0, surface ? 1 : 0);
    Library.Check();
  }

  /// <summary>What lies under a pixel of the last frame.</summary>
  /// <param name="x">From the left.</param>
  /// <param name="y">From the bottom: the height of the picture less one less the row of a picture.</param>
  /// <returns>Its place and value; its Kind is 0 where nothing is.</returns>
  public Pick Pick(int x, int y) {
    Handle.RequireThread();
    Pick pick = OctRendering.Pick.Sized();
    Native.pickVolume(Handle, x, y, ref pick);
    Library.Check();
    return pick;
  }

  /// <summary>Why the last frame shows nothing or almost nothing, in plain words.</summary>
  /// <returns>Null when it shows something.</returns>
  public string Explain() {
    Handle.RequireThread();
    var text = new byte[1024];
    return Library.Checked(Native.explainFrame(Handle, text, text.Length)) == 0 ? null : Utf8.Text(text);
  }

  /// <summary>Frees it, on the thread that made it, after the volumes that it draws.</summary>
  public void Dispose() {
    if (Handle.IsClosed) return;
    Native.uninitializeVolumeRenderer(Handle);
    Library.DiscardErrors();
    Handle.Dispose();
  }
}

/// <summary>A volume in memory, on the graphics card. Made and used on the thread of an OpenGL context.</summary>
public sealed class Volume : IDisposable {
  private readonly bool ownsRenderer;

  /// <summary>Makes a volume with a renderer of its own.</summary>
  public Volume() : this(new VolumeRenderer(), true) { }

  /// <summary>Makes a volume that shares a renderer with others.</summary>
  /// <param name="renderer">Freed by its owner.</param>
  public Volume(VolumeRenderer renderer) : this(renderer, false) { }

  private Volume(VolumeRenderer renderer, bool owns) {
    Renderer = renderer;
    ownsRenderer = owns;
    try {
      Handle = Library.Checked(Native.createOfflineRendering());
      Handle.Needs(renderer.Handle);
      Native.setOfflineRenderingRenderer(Handle, renderer.Handle);
      Library.Check();
      SetExtent(1, 1, 1);
    } catch {
      Dispose();
      throw;
    }
  }

  /// <summary>How it is drawn.</summary>
  public VolumeRenderer Renderer { get; private set; }

  /// <summary>For the functions of Native.</summary>
  public OfflineRenderingHandle Handle { get; private set; }

  /// <summary>Sets the physical extent. The start is a cube.</summary>
  /// <param name="axial">Along depth, in millimetres.</param>
  /// <param name="lateral1">Along the A-scans of a B-scan.</param>
  /// <param name="lateral2">Along the B-scans.</param>
  public void SetExtent(float axial, float lateral1, float lateral2) {
    Native.setOfflineAspectRatio(Handle, axial, lateral1, lateral2);
    Library.Check();
  }

  /// <summary>Uploads and shows a volume; it is read before this returns, without a copy on the way.</summary>
  /// <param name="samples">By B-scan, A-scan and depth.</param>
  public void Upload(float[,,] samples) {
    if (samples == null) throw new ArgumentNullException("samples");
    Handle.RequireThread();
    Native.allocateOfflineVolume(Handle, samples.GetLength(2), samples.GetLength(1), samples.GetLength(0));
    Library.Check();
    using (var pinned = new Pinned(samples)) Native.uploadOfflineVolume(Handle, pinned.Pointer);
    Library.Check();
  }

  /// <summary>Draws into the current frame.</summary>
  /// <param name="content">With an overlay, or that alone.</param>
  public void Render(ContentType content) {
    Handle.RequireThread();
    Native.renderOfflineVolume(Handle, (int)content);
    Library.Check();
  }

  /// <summary>Draws the volume into the current frame.</summary>
  public void Render() { Render(ContentType.Volume); }

  /// <summary>Frees it, on the thread that made it.</summary>
  public void Dispose() {
    if (Handle != null) Handle.Dispose();
    if (ownsRenderer) Renderer.Dispose();
  }
}
}
