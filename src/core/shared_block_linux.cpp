#include "core/shared_block.h"

#include <boost/interprocess/mapped_region.hpp>
#include <boost/interprocess/shared_memory_object.hpp>

namespace oct {

namespace ipc = boost::interprocess;

struct SharedBlock::Mapping {
  ipc::mapped_region region;
};

SharedBlock::SharedBlock(const char* name, std::size_t size) {
  ipc::shared_memory_object memory(ipc::open_or_create, name, ipc::read_write);
  ipc::offset_t present = 0;
  // Only growing: a process that opens the block while another one fills it must not cut it.
  if (memory.get_size(present) && present < static_cast<ipc::offset_t>(size)) {
    memory.truncate(static_cast<ipc::offset_t>(size));
  }
  mapping_ = std::make_unique<Mapping>(Mapping{ipc::mapped_region(memory, ipc::read_write, 0, size)});
}

SharedBlock::~SharedBlock() = default;

char* SharedBlock::data() const {
  return static_cast<char*>(mapping_->region.get_address());
}

}  // namespace oct
