#include <stdexcept>

#include "hosting/direct_sharing.h"

namespace oct {
namespace {

[[noreturn]] void notHere() { throw std::runtime_error("Direct3D surfaces exist on Windows only. "); }

}  // namespace

bool directSharingExists() { return false; }
std::unique_ptr<DirectSharing> openDirectSharing() { notHere(); }
void* createDirectSurface(std::uint32_t, std::uint32_t) { notHere(); }
void copyDirectSurface(void*, void*) { notHere(); }
bool ownsDirectSurface(void*) { return false; }
void destroyDirectSurface(void*) { notHere(); }

}  // namespace oct
