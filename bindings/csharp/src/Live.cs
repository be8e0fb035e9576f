using System;

namespace OctRendering {

/// <summary>Takes live volumes to the graphics card and draws them, on the thread of an OpenGL context.</summary>
public sealed class LiveVolume : IDisposable {
  /// <summary>Makes one.</summary>
  /// <param name="renderer">Draws the volumes; freed by its owner.</param>
  public LiveVolume(VolumeRenderer renderer) {
    Renderer = renderer;
    Handle = Library.Checked(Native.createLiveRendering());
    Handle.Needs(renderer.Handle);
    Native.setLiveVolumeRenderingRenderer(Handle, renderer.Handle);
    Library.Check();
    renderer.Show(true, false);
  }

  /// <summary>How they are drawn.</summary>
  public VolumeRenderer Renderer { get; private set; }

  /// <summary>For the functions of Native.</summary>
  public LiveVolumeRenderingHandle Handle { get; private set; }

  /// <summary>Draws the latest volume into the current frame. One more, after the source has stopped, frees what it
  /// has on the graphics card.</summary>
  public void Render() {
    Renderer.Handle.RequireThread();
    Native.renderVolume(Handle);
    Library.Check();
  }

  /// <summary>What became of the volumes.</summary>
  public LiveStatistics Statistics {
    get {
      LiveStatistics statistics = LiveStatistics.Sized();
      Native.getLiveStatistics(Handle, ref statistics);
      Library.Check();
      return statistics;
    }
  }

  /// <summary>Frees it.</summary>
  public void Dispose() { Handle.Dispose(); }
}

/// <summary>
/// Acquires volumes on a thread of its own. It lives, with what its functions refer to, until Dispose, or until the
/// program ends.
/// </summary>
public sealed class LiveSource : IDisposable {
  private readonly CallbackGuard guard;
  // C keeps pointers to these.
  private readonly OctErrorFunction error;
  private readonly OctIntensityFunction intensity;

  /// <summary>Makes a source for a device with one sensor.</summary>
  /// <param name="device">OCTDeviceHandle</param>
  /// <param name="processing">ProcessingHandle</param>
  public LiveSource(IntPtr device, IntPtr processing)
      : this(Library.Checked(Native.createOnlineDataSource(device, processing))) { }

  /// <summary>Makes a source for a polarization-sensitive device with two sensors.</summary>
  /// <param name="device">OCTDeviceHandle</param>
  /// <param name="processing0">ProcessingHandle of sensor 0</param>
  /// <param name="processing1">ProcessingHandle of sensor 1</param>
  /// <param name="polarization">PolarizationProcessingHandle</param>
  public LiveSource(IntPtr device, IntPtr processing0, IntPtr processing1, IntPtr polarization)
      : this(Library.Checked(Native.createOnlineDataSource_PS(device, processing0, processing1, polarization))) { }

  private LiveSource(LiveDataSourceHandle handle) {
    Handle = handle;
    guard = new CallbackGuard(this, () => Threw);
    error = message => guard.Run(() => {
      if (Failed != null) Failed(Utf8.Text(message));
    });
    intensity = value => guard.Run(() => {
      if (ReferenceIntensityMeasured != null) ReferenceIntensityMeasured(value);
    });
    Living.Add(this);
    Native.setErrorCallback(Handle, error);
    Library.Check();
  }

  /// <summary>On the acquisition thread: an error of the device, or what ended the thread.</summary>
  public event Action<string> Failed;

  /// <summary>On the acquisition thread: the reference intensity of a volume, 0 to 1; see MeasureReference.</summary>
  public event Action<double> ReferenceIntensityMeasured;

  /// <summary>On the acquisition thread: what one of the functions above threw. Without it that comes out of the next
  /// Start or Stop.</summary>
  public event Action<Exception> Threw;

  /// <summary>What draws the volumes; null while none are acquired.</summary>
  public LiveVolume Volume { get; private set; }

  /// <summary>For the functions of Native, which set what has no method here.</summary>
  public LiveDataSourceHandle Handle { get; private set; }

  /// <summary>Asks the device for the reference intensity after every volume, or no more.</summary>
  /// <param name="enable">The start is false.</param>
  public void MeasureReference(bool enable) {
    Native.setRefIntensityCallback(Handle, enable ? intensity : null);
    Library.Check();
  }

  /// <summary>Whether its thread acquires.</summary>
  public bool IsRunning {
    get { return Library.Checked(Native.isDataSourceRunning(Handle)); }
  }

  /// <summary>Starts acquisition.</summary>
  /// <param name="volume">Draws the volumes; kept while they are acquired.</param>
  /// <param name="pattern">ScanPatternHandle</param>
  public void Start(LiveVolume volume, IntPtr pattern) {
    guard.ThrowPending();
    Native.startDataSource(volume.Handle, Handle, pattern);
    Library.Check();
    Volume = volume;
  }

  /// <summary>Ends acquisition when the volume under way has come.</summary>
  public void Stop() {
    Native.stopDataSource(Handle);
    Library.Check();
    Volume = null;
    guard.ThrowPending();
  }

  /// <summary>Ends acquisition without waiting for the volume under way.</summary>
  public void Cancel() {
    Native.cancelDataSource(Handle);
    Library.Check();
    Volume = null;
    guard.ThrowPending();
  }

  /// <summary>Stops and frees it. Not in one of its functions.</summary>
  public void Dispose() {
    guard.RefuseInside();
    Handle.Dispose();
    Volume = null;
    Living.Remove(this);
  }
}
}
