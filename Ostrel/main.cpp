// The program's entry point.
#include <string>
#include <vector>

#include "Ostrel/AppDelegate.h"
#include "Ostrel/CommandLine.h"
#include "platform/Application.h"
#include "platform/HelperProcess.h"
#include "platform/SingleInstance.h"

int main(int argc, char** argv) {
  ns::becomeHelperProcess(argv[0]);
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  const ostrel::CommandLine commandLine = ostrel::parseCommandLine(arguments);
  if (const auto status = ostrel::perform(commandLine)) return *status;

  ns::startHelperProcess();
  const auto app = ns::Application::sharedApplication();
  const auto delegate = std::make_shared<ostrel::AppDelegate>();  // held here: the application holds it weakly
  const auto claim = ns::SingleInstance::claim([&](const std::string& request) { return delegate->answer(request); });
  // Another start was faster by a moment.
  if (!claim) return ostrel::showSettingsOfRunningInstance(commandLine.argument).value_or(1);
  if (commandLine.command == ostrel::CommandLine::Command::Settings) {
    delegate->showSettingsAtLaunch(commandLine.argument);
  }
  app->setDelegate(delegate);
  app->setActivationPolicy(ns::ActivationPolicy::Accessory);
  app->run();
  return 0;
}
