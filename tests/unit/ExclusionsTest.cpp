// Applications that are left alone.
#include <string>
#include <thread>
#include <unordered_set>
#include <vector>

#include "Fixture.h"

namespace {

using ostrel::ExcludedApp;
using simulated::Call;
using ExclusionsTest = RunningTest;
using PIDs = std::unordered_set<pid_t>;

ns::PropertyList entry(std::initializer_list<std::pair<const std::string, ns::PropertyList>> values) {
  return {ns::Dictionary(values)};
}

TEST_F(ExclusionsTest, ClicksInExcludedApplicationsAreTheirOwn) {
  EXPECT_FALSE(click("green"));
  EXPECT_EQ(desktop.count(Call::ProcessIdentifier), 0) << "nobody is excluded, nobody is asked";

  controller->addExcludedApp({"org.example.editor", "Editor"});
  store("behavior.redButtonHidesWindow", {true});
  for (const char* button : {"red", "yellow", "green"}) EXPECT_TRUE(click(button));

  desktop.inject({.call = Call::ProcessIdentifier, .error = kAXErrorFailure});
  EXPECT_FALSE(click("green")) << "a window of nobody is not excluded";
  desktop.clearFaults();
  desktop.elements().named("window").pid = 0;
  EXPECT_FALSE(click("green"));
}

TEST_F(ExclusionsTest, FollowsLaunchesAndQuits) {
  controller->addExcludedApp({"org.example.viewer", "Viewer"});
  EXPECT_EQ(controller->excludedPIDs(), PIDs{});
  desktop.launch({601, "org.example.viewer", "Viewer"});
  desktop.launch({602, "org.example.viewer", "Viewer"});
  desktop.launch({603, std::nullopt, "Script"});
  desktop.launch({604, "org.example.Viewer", "Another, by letter case"});
  EXPECT_EQ(controller->excludedPIDs(), (PIDs{601, 602}));
  desktop.quit(601);
  EXPECT_EQ(controller->excludedPIDs(), PIDs{602});
  controller->removeExcludedApp("org.example.viewer");
  EXPECT_EQ(controller->excludedPIDs(), PIDs{});

  desktop.clearJournal();
  desktop.quit(602);
  EXPECT_TRUE(desktop.journal().empty()) << "with an empty list the applications are not looked at";
  controller.reset();
  desktop.quit(603);
}

TEST_F(ExclusionsTest, KnowsTheStoredListFromTheStart) {
  controller->addExcludedApp({"org.example.editor", "Editor"});
  controller = ostrel::OstrelController::create();
  EXPECT_EQ(controller->excludedPIDs(), PIDs{editorPID});
  store("behavior.excludedApps", {ns::Array{}});
  controller->reloadExcludedApps();
  EXPECT_EQ(controller->excludedPIDs(), PIDs{});
}

TEST_F(ExclusionsTest, ListIsSortedByNameAndHoldsAnIdentifierOnce) {
  for (const char* name : {"gamma", "Beta", "alpha", "beta"}) {
    controller->addExcludedApp({std::string("org.") + name, name});
  }
  controller->addExcludedApp({"org.alpha", "Zeta"});
  const std::vector<ExcludedApp> expected{
      {"org.alpha", "alpha"}, {"org.Beta", "Beta"}, {"org.beta", "beta"}, {"org.gamma", "gamma"}};
  EXPECT_EQ(controller->excludedApps(), expected);

  controller->removeExcludedApp("org.unknown");
  EXPECT_EQ(controller->excludedApps(), expected);
  for (const ExcludedApp& app : expected) controller->removeExcludedApp(app.bundleID);
  EXPECT_EQ(desktop.defaults()->user.at("behavior.excludedApps"), ns::PropertyList{ns::Array{}});
}

TEST_F(ExclusionsTest, ReadsWhatOthersMayHaveStored) {
  const ns::PropertyList good = entry({{"bundleID", {std::string("a")}}, {"name", {std::string("A")}}});
  const struct {
    const char* what;
    ns::PropertyList stored;
    std::vector<ExcludedApp> apps;
  } cases[] = {
      {"a text", {std::string("a")}, {}},
      {"not only dictionaries", {ns::Array{good, {std::string("b")}}}, {}},
      {"a date among them", {ns::Array{good, ns::foreignValue()}}, {}},
      {"a number in a dictionary", {ns::Array{good, entry({{"bundleID", {std::string("b")}}, {"n", {1.0}}})}}, {}},
      {"no identifier, or an empty one",
       {ns::Array{entry({{"name", {std::string("B")}}}), entry({{"bundleID", {std::string()}}}), good}},
       {{"a", "A"}}},
      {"no name, or an empty one",
       {ns::Array{entry({{"bundleID", {std::string("b")}}}),
                  entry({{"bundleID", {std::string("c")}}, {"name", {std::string()}}})}},
       {{"b", "b"}, {"c", ""}}},
      {"unsorted and twice",
       {ns::Array{good, entry({{"bundleID", {std::string("B")}}}), good}},
       {{"a", "A"}, {"B", "B"}, {"a", "A"}}},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.what);
    store("behavior.excludedApps", each.stored);
    EXPECT_EQ(controller->excludedApps(), each.apps);
  }
  controller->removeExcludedApp("a");
  EXPECT_EQ(controller->excludedApps(), (std::vector<ExcludedApp>{{"B", "B"}}));
}

TEST_F(ExclusionsTest, EachChangeLeavesAWellFormedList) {
  const auto stored = [this] { return desktop.defaults()->user.at("behavior.excludedApps"); };
  const ns::PropertyList viewer = entry({{"bundleID", {std::string("b")}}, {"name", {std::string("Viewer")}}});
  const ns::PropertyList editor =
      entry({{"bundleID", {std::string("org.example.editor")}}, {"name", {std::string("editor")}}});
  store("behavior.excludedApps", {ns::Array{viewer, editor}});
  EXPECT_EQ(controller->excludedPIDs(), PIDs{});
  controller->removeExcludedApp("org.unknown");
  EXPECT_EQ(stored(), (ns::PropertyList{ns::Array{editor, viewer}}));
  EXPECT_EQ(controller->excludedPIDs(), PIDs{editorPID});

  store("behavior.excludedApps", {ns::Array{editor, {1.0}}});
  controller->addExcludedApp({"b", "Viewer"});
  EXPECT_EQ(stored(), ns::PropertyList{ns::Array{viewer}});
  EXPECT_EQ(controller->excludedPIDs(), PIDs{});
}

TEST_F(ExclusionsTest, RefreshFromAnotherThreadRunsOnTheMainOne) {
  store("behavior.excludedApps", {ns::Array{entry({{"bundleID", {std::string("org.example.editor")}}})}});
  const auto other = ostrel::OstrelController::create();
  desktop.clearJournal();
  std::thread([&] { other->refreshExcludedPIDs(); }).join();
  EXPECT_TRUE(desktop.journal().empty());
  simulated::RunLoop::runPending();
  EXPECT_EQ(desktop.journal(), std::vector<std::string>{"running applications"});

  desktop.clearJournal();
  std::thread([&] { controller->refreshExcludedPIDs(); }).join();
  controller.reset();
  simulated::RunLoop::runPending();
  EXPECT_TRUE(desktop.journal().empty());
}

}  // namespace
