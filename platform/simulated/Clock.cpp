#include "platform/simulated/Clock.h"

namespace simulated {

namespace {
double currentTime = 0;
}

double Clock::now() { return currentTime; }

void Clock::pass(double seconds) { currentTime += seconds; }

}  // namespace simulated
