// How measurements are summed up and printed.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

namespace bench {

using Clock = std::chrono::steady_clock;

/// One contestant's times, in milliseconds.
class Figures {
 public:
  explicit Figures(std::string name) : name_(std::move(name)) {}

  void add(Clock::duration time) { times_.push_back(std::chrono::duration<double, std::milli>(time).count()); }
  const std::string& name() const { return name_; }
  /// The time that this share of all stays within; 0 when there are none.
  double quantile(double share) const {
    if (times_.empty()) return 0;
    auto sorted = times_;
    std::sort(sorted.begin(), sorted.end());
    return sorted[std::min(sorted.size() - 1, static_cast<std::size_t>(share * static_cast<double>(sorted.size())))];
  }
  double median() const { return quantile(0.5); }
  double p99() const { return quantile(0.99); }
  void print() const {
    std::printf("  %-28s %5zu times  median %7.3f ms  p99 %7.3f ms  max %7.3f ms\n", name_.c_str(), times_.size(),
                median(), p99(), quantile(1));
  }

 private:
  std::string name_;
  std::vector<double> times_;
};

/// Prints how one contestant compares with another, and the ratio that is aimed at.
inline void printRatio(const char* what, double ours, double reference, double wanted) {
  const double ratio = reference > 0 ? ours / reference : 0;
  std::printf("  %-28s %.2f (wanted: at most %.2f)%s\n", what, ratio, wanted, ratio <= wanted ? "" : "  MISSED");
}

}  // namespace bench
