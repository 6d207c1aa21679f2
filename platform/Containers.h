// Views that arrange other views.
#pragma once

#include <memory>
#include <vector>

#include "platform/View.h"

namespace ns {

enum class StackAlignment { Leading, CenterY };

/// Puts views one after another. Vertical stacks align leading edges, horizontal ones centres.
class StackView : public View {
 public:
  StackView(LayoutOrientation orientation, StackAlignment alignment, double spacing);
  void addArrangedSubview(const std::shared_ptr<View>& view);
  const std::vector<std::shared_ptr<View>>& arrangedSubviews() const;
};

/// Scrolls its document vertically; no border, no background, and a scroller that hides itself.
class ScrollView : public View {
 public:
  ScrollView();
  void setDocumentView(const std::shared_ptr<View>& document);
  std::shared_ptr<View> documentView() const;
  /// The window onto the document; constraints tie the document to it.
  View& contentView() const;
};

}  // namespace ns
