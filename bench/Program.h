// What the measuring programs share: their way to end.
#pragma once

#include <cstdio>
#include <exception>

namespace bench {

/// Runs the measurement; gives the program's exit status.
template <typename Measurement>
int run(Measurement measure) {
  try {
    measure();
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}

}  // namespace bench
