// Replaces a method of a COM class, to watch its calls and to let them fail.
#pragma once

#include <cstddef>

#include <windows.h>

namespace oct::test {

// Every object of the class is concerned, as long as the patch lives. Method is the method's type as a
// function whose first argument is the object; slot counts the methods from IUnknown's first.
template <class Method>
class ComMethodPatch {
 public:
  ComMethodPatch(IUnknown* object, std::size_t slot, Method replacement)
      : entry_(*reinterpret_cast<Method**>(object) + slot), original_(*entry_) {
    write(replacement);
  }
  ~ComMethodPatch() { write(original_); }
  ComMethodPatch(const ComMethodPatch&) = delete;
  ComMethodPatch& operator=(const ComMethodPatch&) = delete;

 private:
  void write(Method method) {
    DWORD before = 0;
    VirtualProtect(entry_, sizeof *entry_, PAGE_READWRITE, &before);
    *entry_ = method;
    VirtualProtect(entry_, sizeof *entry_, before, &before);
  }

  Method* const entry_;
  const Method original_;
};

}  // namespace oct::test
