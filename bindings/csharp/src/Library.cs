// The library itself: its version, its errors and its log.
using System;

namespace OctRendering {

/// <summary>What the library says about a call that failed.</summary>
public sealed class OctException : Exception {
  internal OctException(ErrorKind kind, string message) : base(message) { Kind = kind; }

  /// <summary>What kind of failure it is, for programs; the text is for people.</summary>
  public ErrorKind Kind { get; private set; }
}

public static partial class Native {
  /// <summary>oct_rendering.dll, liboct_rendering.so: the system's search adds the rest.</summary>
  public const string LibraryName = "oct_rendering";
}

/// <summary>The library itself.</summary>
public static class Library {
  /// <summary>"major.minor.patch"</summary>
  public static string Version {
    get { return Utf8.Text(Native.getRendererVersion()); }
  }

  /// <summary>What the current OpenGL context has to offer, or one made for the question; texts by Utf8.Text.</summary>
  public static RendererInfo Info {
    get {
      RendererInfo info = RendererInfo.Sized();
      Native.getRendererInfo(ref info);
      Check();
      return info;
    }
  }

  /// <summary>Sets the file that the library's log is appended to.</summary>
  /// <param name="fileName">Null or empty: none.</param>
  public static void SetLogFile(string fileName) {
    Native.setRendererLogFile(Utf8.Bytes(fileName));
    Check();
  }

  /// <summary>Sets which device library live sources call.</summary>
  /// <param name="nameOrPath">Null or empty: the default.</param>
  public static void SetDeviceLibrary(string nameOrPath) {
    Native.setDeviceLibrary(Utf8.Bytes(nameOrPath));
    Check();
  }

  /// <summary>Throws the error that calls of this thread have left, if there is one.</summary>
  public static void Check() {
    if (Native.isRendererError() == 0) return;
    var text = new byte[4096];
    if (Native.getOwnRendererError(text, text.Length) == 0) return;
    throw new OctException((ErrorKind)Native.getRendererErrorKind(), Utf8.Text(text));
  }

  /// <summary>The result of a call, unless that failed: Library.Checked(Native.createVolumeRenderer()).</summary>
  /// <param name="result">Of the call.</param>
  /// <returns>The same.</returns>
  public static T Checked<T>(T result) {
    Check();
    return result;
  }

  // After what has nobody to report to. A thread has one error at most.
  internal static void DiscardErrors() { Native.getOwnRendererError(null, 0); }
}
}
