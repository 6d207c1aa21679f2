#include "platform/AutoreleasePool.h"

// What the compiler makes of @autoreleasepool, which cannot span two functions.
extern "C" void* objc_autoreleasePoolPush();
extern "C" void objc_autoreleasePoolPop(void* pool);

namespace ns {

AutoreleasePool::AutoreleasePool() : pool_(objc_autoreleasePoolPush()) {}
AutoreleasePool::~AutoreleasePool() { objc_autoreleasePoolPop(pool_); }

}  // namespace ns
