// The system's own named shared memory: it lives as long as one process holds it open, and belongs to a session.
// Boost's portable kind would emulate it by files and needs a boot identifier that restricted machines do not give.
#include "core/shared_block.h"

#include <cstring>

#include <boost/interprocess/mapped_region.hpp>
#include <boost/interprocess/windows_shared_memory.hpp>

namespace oct {

namespace ipc = boost::interprocess;

struct SharedBlock::Mapping {
  explicit Mapping(const char* name)
      : memory(ipc::open_or_create, name, ipc::read_write, size), region(memory, ipc::read_write, 0, size) {}

  ipc::windows_shared_memory memory;  // the name lasts while this handle is open
  ipc::mapped_region region;
};

SharedBlock::SharedBlock(const char* name) : mapping_(std::make_unique<Mapping>(name)) {}

SharedBlock::~SharedBlock() = default;

SharedBlock::Bytes SharedBlock::read_once() const {
  Bytes bytes;
  std::memcpy(bytes.data(), mapping_->region.get_address(), size);
  return bytes;
}

void SharedBlock::write(const Bytes& bytes) {
  std::memcpy(mapping_->region.get_address(), bytes.data(), size);
}

}  // namespace oct
