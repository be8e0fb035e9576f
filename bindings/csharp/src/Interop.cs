// Texts and arrays on their way between C# and C.
using System;
using System.Runtime.InteropServices;
using System.Text;

namespace OctRendering {

/// <summary>Texts as the library has them: UTF-8 with an end of one zero byte.</summary>
public static class Utf8 {
  /// <summary>For a parameter that is read before the call returns.</summary>
  /// <param name="text">Null stays null.</param>
  /// <returns>The bytes with their end.</returns>
  public static byte[] Bytes(string text) {
    return text == null ? null : Encoding.UTF8.GetBytes(text + '\0');
  }

  /// <summary>A text that the library filled in, up to its end.</summary>
  /// <param name="bytes">The buffer, or an array of a struct.</param>
  /// <returns>The text.</returns>
  public static string Text(byte[] bytes) {
    int end = Array.IndexOf(bytes, (byte)0);
    return Encoding.UTF8.GetString(bytes, 0, end < 0 ? bytes.Length : end);
  }

  /// <summary>A text in the library's memory.</summary>
  /// <param name="pointer">Null gives null.</param>
  /// <returns>A copy.</returns>
  public static string Text(IntPtr pointer) {
    if (pointer == IntPtr.Zero) return null;
    int length = 0;
    while (Marshal.ReadByte(pointer, length) != 0) ++length;
    var bytes = new byte[length];
    Marshal.Copy(pointer, bytes, 0, length);
    return Encoding.UTF8.GetString(bytes);
  }
}

/// <summary>Keeps an array where it is, so that C reads or writes it without a copy.</summary>
public sealed class Pinned : IDisposable {
  private GCHandle handle;

  /// <summary>Pins until Dispose.</summary>
  /// <param name="array">Of numbers, of any rank; null gives a null pointer.</param>
  public Pinned(Array array) {
    if (array != null) handle = GCHandle.Alloc(array, GCHandleType.Pinned);
  }

  /// <summary>The first element.</summary>
  public IntPtr Pointer {
    get { return handle.IsAllocated ? handle.AddrOfPinnedObject() : IntPtr.Zero; }
  }

  /// <summary>Lets the array move again.</summary>
  public void Dispose() {
    if (handle.IsAllocated) handle.Free();
  }
}
}
