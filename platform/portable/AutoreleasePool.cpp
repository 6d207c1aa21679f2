#include "platform/AutoreleasePool.h"

namespace ns {

// Every object here goes with its last reference.
AutoreleasePool::AutoreleasePool() = default;
AutoreleasePool::~AutoreleasePool() = default;

}  // namespace ns
