// The services that Ostrel asks of every desktop: who runs, and what is stored.
#include <memory>
#include <optional>
#include <string>

#include "platform/UserDefaults.h"
#include "platform/Workspace.h"
#include "tests/contract/Fixture.h"

namespace {

class WorkspaceTest : public contract::Test {
 protected:
  /// The application's entry in the list of those that run; null when it is not in it.
  std::shared_ptr<ns::RunningApplication> listed() const {
    for (const auto& application : ns::Workspace::sharedWorkspace()->runningApplications()) {
      if (application->processIdentifier() == pid) return application;
    }
    return nullptr;
  }
};

TEST_F(WorkspaceTest, TellsOfLaunchesAndQuits) {
  auto& center = ns::Workspace::sharedWorkspace()->notificationCenter();
  int launches = 0;
  int quits = 0;
  int silent = 0;
  const auto launchObserver =
      center.addObserverForName(ns::WorkspaceDidLaunchApplicationNotification, [&] { ++launches; });
  const auto quitObserver =
      center.addObserverForName(ns::WorkspaceDidTerminateApplicationNotification, [&] { ++quits; });
  const auto removed = center.addObserverForName(ns::WorkspaceDidLaunchApplicationNotification, [&] { ++silent; });
  EXPECT_NE(launchObserver, quitObserver);
  EXPECT_NE(launchObserver, 0U);
  center.removeObserver(removed);

  launch();
  // Others may come and go on a real desktop, so that these are lower bounds.
  EXPECT_TRUE(backing.waitFor([&] { return launches > 0 && listed(); }));
  EXPECT_EQ(silent, 0);
  EXPECT_EQ(listed()->bundleIdentifier(), backing.bundleIdentifier());
  const auto found = ns::RunningApplication::runningApplicationWithProcessIdentifier(pid);
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->processIdentifier(), pid);
  EXPECT_EQ(found->bundleIdentifier(), backing.bundleIdentifier());

  const int before = quits;
  backing.quit();
  EXPECT_TRUE(backing.waitFor([&] { return quits > before && !listed(); }));
  EXPECT_EQ(ns::RunningApplication::runningApplicationWithProcessIdentifier(pid), nullptr);
  center.removeObserver(launchObserver);
  center.removeObserver(quitObserver);
  center.removeObserver(quitObserver);
}

TEST(DefaultsTest, ConvertWhatIsStored) {
  contract::Backing::current();
  const auto defaults = ns::UserDefaults::standardUserDefaults();
  const struct {
    ns::PropertyList stored;
    bool boolean;
    double number;
  } cases[] = {
      {{true}, true, 1},
      {{false}, false, 0},
      {{std::int64_t{-2}}, true, -2},
      {{std::int64_t{1} << 40}, true, 1099511627776.0},
      {{0.25}, true, 0.25},
      {{0.0}, false, 0},
      {{std::string("YES")}, true, 0},
      {{std::string("true")}, true, 0},
      {{std::string(" +007.5 points")}, true, 7.5},
      {{std::string("-1e3")}, true, -1000},
      {{std::string("0x10")}, false, 0},
      {{std::string("no")}, false, 0},
      {{std::string("maybe")}, false, 0},
      {{std::string()}, false, 0},
      {{ns::Array{{true}}}, false, 0},
      {{ns::Dictionary{{"bundleID", {std::string("Ä")}}}}, false, 0},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(&each - cases);
    defaults->setObject(each.stored, "contract.value");
    EXPECT_EQ(defaults->objectForKey("contract.value"), each.stored);
    EXPECT_EQ(defaults->boolForKey("contract.value"), each.boolean);
    EXPECT_EQ(defaults->doubleForKey("contract.value"), each.number);
    const auto* array = each.stored.as<ns::Array>();
    EXPECT_EQ(defaults->arrayForKey("contract.value"), array ? std::optional(*array) : std::nullopt);
  }
  EXPECT_EQ(defaults->objectForKey("contract.nothing"), std::nullopt);
  EXPECT_EQ(defaults->arrayForKey("contract.nothing"), std::nullopt);
  EXPECT_FALSE(defaults->boolForKey("contract.nothing"));
  EXPECT_EQ(defaults->doubleForKey("contract.nothing"), 0);
}

}  // namespace
