// A white symbol on a blue rounded square with a shadow: the application's face.
#pragma once

#include <memory>
#include <string>

#include "platform/View.h"

namespace ostrel {

/// Main thread only.
class GradientIconView : public ns::View {
 public:
  explicit GradientIconView(const std::string& symbolName);

  const ns::GradientLayer& gradientLayer() const { return *gradientLayer_; }
  void layout() override;

 private:
  const std::shared_ptr<ns::GradientLayer> gradientLayer_;
};

}  // namespace ostrel
