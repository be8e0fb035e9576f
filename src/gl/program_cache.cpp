#include "gl/program_cache.h"

#include <map>
#include <mutex>

#include "core/immortal.h"

namespace oct::gl {
namespace {

struct Cache {
  std::mutex mutex;
  std::map<ProgramKey, std::shared_ptr<const ProgramBinary>> entries;

  void close() {
    const std::unique_lock lock(mutex, std::try_to_lock);
    if (lock) entries.clear();
  }
};

Cache& cache() {
  return immortal<Cache>();
}

}  // namespace

std::shared_ptr<const ProgramBinary> find_program_binary(const ProgramKey& key) {
  const std::lock_guard lock(cache().mutex);
  const auto entry = cache().entries.find(key);
  return entry == cache().entries.end() ? nullptr : entry->second;
}

void store_program_binary(const ProgramKey& key, ProgramBinary binary) {
  auto entry = std::make_shared<const ProgramBinary>(std::move(binary));
  const std::lock_guard lock(cache().mutex);
  cache().entries[key] = std::move(entry);
}

}  // namespace oct::gl
