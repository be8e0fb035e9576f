#include "module/shared_library.h"

#include <filesystem>
#include <stdexcept>

#include <dlfcn.h>
#include <link.h>

namespace oct {
namespace {

std::string file_name(const std::string& name_or_path) {
  const bool complete =
      name_or_path.find('/') != std::string::npos || name_or_path.find(".so") != std::string::npos;
  return complete ? name_or_path : "lib" + name_or_path + ".so";
}

// The path of a loaded module with that file name. dlopen finds it by itself only if the module carries the
// name inside, which not every linker call sees to.
std::string loaded_path(const std::string& file) {
  struct Search {
    const std::string& file;
    std::string path;
  } search{file, file};
  dl_iterate_phdr(
      [](dl_phdr_info* module, std::size_t, void* context) {
        auto& wanted = *static_cast<Search*>(context);
        const std::filesystem::path path(module->dlpi_name);
        if (path.filename() != wanted.file) return 0;
        wanted.path = path.string();
        return 1;
      },
      &search);
  return search.path;
}

}  // namespace

SharedLibrary::SharedLibrary(const std::string& name_or_path)
    : handle_(dlopen(loaded_path(file_name(name_or_path)).c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE)) {
  if (!handle_) throw std::runtime_error(dlerror());
}

void* SharedLibrary::symbol(const char* name) const {
  return dlsym(handle_, name);
}

}  // namespace oct
