// What becomes of a handle: freed by Dispose, and by the finalizer only where the library allows that thread.
using System;
using System.Collections.Concurrent;
using System.Collections.Generic;
using System.Runtime.InteropServices;

namespace OctRendering {

/// <summary>An object of the library. Null is the invalid one.</summary>
public abstract class OctHandle : SafeHandle {
  private readonly Action<IntPtr> free;
  private List<SafeHandle> needed;

  internal OctHandle(Action<IntPtr> free) : base(IntPtr.Zero, true) { this.free = free; }

  /// <summary>Whether there is no object.</summary>
  public override bool IsInvalid {
    get { return handle == IntPtr.Zero; }
  }

  // The other object is freed after this one, whatever the order of Dispose and of finalizers.
  internal void Needs(SafeHandle other) {
    bool added = false;
    other.DangerousAddRef(ref added);
    if (needed == null) needed = new List<SafeHandle>();
    needed.Add(other);
  }

  // What the library says about it is nobody's result; left pending it would be taken for an error of the next call.
  internal void Free(IntPtr freed) {
    free(freed);
    Library.DiscardErrors();
    if (needed == null) return;
    foreach (SafeHandle other in needed) other.DangerousRelease();
    needed = null;
  }
}

/// <summary>One that any thread may free, a finalizer's too.</summary>
public abstract class AnyThreadHandle : OctHandle {
  internal AnyThreadHandle(Action<IntPtr> free) : base(free) { }

  /// <summary>Frees it.</summary>
  protected override bool ReleaseHandle() {
    Free(handle);
    return true;
  }
}

/// <summary>
/// One that is freed on the thread that made it. Elsewhere, as in a finalizer, it is left for that thread, which
/// frees it at its next frame, or when it makes its next display or renderer. Where the thread has ended the object stays.
/// </summary>
public abstract class OwnThreadHandle : OctHandle {
  private readonly OwnThread owner = OwnThread.Current;

  internal OwnThreadHandle(Action<IntPtr> free) : base(free) { }

  /// <summary>Frees it, or leaves it for its thread.</summary>
  protected override bool ReleaseHandle() {
    IntPtr freed = handle;
    if (owner == OwnThread.Current) {
      Free(freed);
    } else {
      owner.Leave(() => Free(freed));
    }
    return true;
  }

  internal void RequireThread() {
    if (IsClosed) throw new ObjectDisposedException(GetType().Name);
    if (owner != OwnThread.Current) {
      throw new InvalidOperationException("An object of a thread's OpenGL context was used on another thread.");
    }
  }
}

/// <summary>
/// One with threads that call back. Only Dispose frees it: a finalizer must neither wait for these threads nor take
/// away what they call. One that is forgotten lives on.
/// </summary>
public abstract class ExplicitHandle : OctHandle {
  internal ExplicitHandle(Action<IntPtr> free) : base(free) { }

  /// <summary>Frees it, unless a finalizer asks.</summary>
  /// <param name="disposing">False in a finalizer.</param>
  protected override void Dispose(bool disposing) {
    if (!disposing) SetHandleAsInvalid();
    base.Dispose(disposing);
  }

  /// <summary>Frees it.</summary>
  protected override bool ReleaseHandle() {
    Free(handle);
    return true;
  }
}

// A thread, known by an object and not by its number, which another one may get later.
internal sealed class OwnThread {
  [ThreadStatic]
  private static OwnThread current;
  private readonly ConcurrentQueue<Action> left = new ConcurrentQueue<Action>();

  public static OwnThread Current {
    get { return current ?? (current = new OwnThread()); }
  }

  public void Leave(Action free) { left.Enqueue(free); }

  public static void FreeWhatWasLeft() {
    Action free;
    while (Current.left.TryDequeue(out free)) free();
  }
}
}
