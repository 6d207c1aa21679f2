// A simulated desktop and the settings window on it.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "Ostrel/OstrelController.h"
#include "Ostrel/SettingsWindowController.h"
#include "platform/Application.h"
#include "platform/Containers.h"
#include "platform/simulated/RunLoop.h"
#include "platform/simulated/Services.h"
#include "platform/simulated/SimulatedDesktop.h"
#include "tests/interface/Finding.h"

class SettingsTest : public testing::Test {
 protected:
  ~SettingsTest() override {
    settings.reset();
    controller.reset();
    simulated::RunLoop::runPending();
  }

  void present(ostrel::Tab tab) {
    settings->present(tab);
    root().layoutSubtreeIfNeeded();
  }
  ns::View& root() { return *settings->window()->contentView(); }
  /// The tab on screen.
  ns::ScrollView& tab() { return *allOf<ns::ScrollView>(root()).at(0); }
  ns::View& document() { return *tab().documentView(); }
  bool stored(const std::string& key) { return desktop.defaults()->user.contains(key); }

  simulated::SimulatedDesktop desktop;
  simulated::Services services;
  std::shared_ptr<ostrel::OstrelController> controller = ostrel::OstrelController::create();
  int changes = 0;
  std::shared_ptr<ostrel::SettingsWindowController> settings =
      std::make_shared<ostrel::SettingsWindowController>(controller, [this] { ++changes; });
};
