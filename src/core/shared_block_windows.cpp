// The system's own named shared memory: it lives as long as one process holds it open. Boost's portable kind
// would emulate it by files and needs a boot identifier that restricted machines do not give.
#include "core/shared_block.h"

#include <boost/interprocess/mapped_region.hpp>
#include <boost/interprocess/windows_shared_memory.hpp>

namespace oct {

namespace ipc = boost::interprocess;

struct SharedBlock::Mapping {
  Mapping(const char* name, std::size_t size)
      : memory(ipc::open_or_create, name, ipc::read_write, size), region(memory, ipc::read_write, 0, size) {}

  ipc::windows_shared_memory memory;  // the name lasts while this handle is open
  ipc::mapped_region region;
};

SharedBlock::SharedBlock(const char* name, std::size_t size)
    : mapping_(std::make_unique<Mapping>(name, size)) {}

SharedBlock::~SharedBlock() = default;

char* SharedBlock::data() const {
  return static_cast<char*>(mapping_->region.get_address());
}

}  // namespace oct
