// What to make of the names and numbers that applications report about their title bars.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/linux/atspi/ButtonGeometry.h"
#include "platform/linux/atspi/ButtonNames.h"
#include "tests/linux/PrintedButton.h"
#include "tests/support/TemporaryFolder.h"

namespace atspi {
namespace {

const std::string systemCatalogs = "/usr/share/locale";
const std::string layout = "menu:minimize,maximize,close";

std::string number(std::uint32_t value, bool bigEndian) {
  std::string bytes(4, '\0');
  for (unsigned i = 0; i < 4; ++i) bytes[bigEndian ? 3 - i : i] = static_cast<char>(value >> 8 * i & 0xff);
  return bytes;
}

/// A compiled catalogue of one message.
std::string catalogOf(const std::string& id, const std::string& text, bool bigEndian) {
  const auto length = [](const std::string& string) { return static_cast<std::uint32_t>(string.size()); };
  std::string catalog;
  for (const std::uint32_t value :
       {0x950412deU, 0U, 1U, 28U, 36U, 0U, 0U, length(id), 44U, length(text), 45U + length(id)})
    catalog += number(value, bigEndian);
  return catalog + id + '\0' + text + '\0';
}

Window windowOf(CGRect client, CGRect frame) {
  Window window;
  window.client = client;
  window.frame = frame;
  return window;
}

TEST(TitleBarButtonRules, LanguagesAreThoseOfGettext) {
  using Forms = std::vector<std::string>;
  EXPECT_EQ(messageLanguages("de_AT.UTF-8@euro", ""), (Forms{"de_AT@euro", "de_AT", "de@euro", "de"}));
  EXPECT_EQ(messageLanguages("en_US.UTF-8", "pt_BR:de"), (Forms{"pt_BR", "pt", "de"}));
  EXPECT_EQ(messageLanguages("C.UTF-8", "de"), (Forms{"de"}));
  EXPECT_EQ(messageLanguages("C.UTF-8", ""), Forms{});
  EXPECT_EQ(messageLanguages("C", "de"), Forms{});
  EXPECT_EQ(messageLanguages("fr_FR", "de:C:it"), (Forms{"de"}));
}

TEST(TitleBarButtonRules, LanguagesOfAnApplicationLeadNowhereElseAndEnd) {
  using Forms = std::vector<std::string>;
  EXPECT_EQ(messageLanguages("../../../home/somebody", ""), Forms{});
  EXPECT_EQ(messageLanguages("de_DE.UTF-8@/../../..", "/etc:..:de/..:pt\n"), Forms{});
  EXPECT_EQ(messageLanguages("de_DE@/..", ""), (Forms{"de_DE", "de"}));
  EXPECT_EQ(messageLanguages(std::string(100'000, 'x'), ""), Forms{});
  std::string many;
  for (int i = 0; i < 100'000; ++i) many += "l" + std::to_string(i) + ":";
  EXPECT_LT(messageLanguages("de", many).size(), 100U);
}

TEST(TitleBarButtonRules, OnlySmallRegularFilesAreCatalogs) {
  const support::TemporaryFolder folder;
  const auto catalog = catalogOf("Close", "Fermer", false);
  folder.write("fr/LC_MESSAGES/gtk40.mo", catalog);
  folder.write("endless/LC_MESSAGES/gtk40.mo", catalog);
  std::filesystem::resize_file(folder / "endless/LC_MESSAGES/gtk40.mo", 1u << 30);
  std::filesystem::create_directories(folder / "pipe/LC_MESSAGES");
  ASSERT_EQ(mkfifo((folder / "pipe/LC_MESSAGES/gtk40.mo").c_str(), 0600), 0);
  for (const std::string language : {"pipe", "endless"}) {
    const auto names = ButtonNames::load("gtk40", {language, "fr"}, {folder.path()});
    EXPECT_EQ(names.role("Fermer"), ButtonRole::Close) << language;
  }
}

TEST(TitleBarButtonRules, CatalogsAreReadInBothByteOrdersAndNeverBelieved) {
  for (const bool bigEndian : {false, true}) {
    const auto catalog = catalogOf("Close", "Fermer", bigEndian);
    EXPECT_EQ(catalogMessage(catalog, "Close"), "Fermer");
    EXPECT_EQ(catalogMessage(catalog, "Open"), std::nullopt);
    for (std::size_t length = 0; length + 1 < catalog.size(); ++length)
      EXPECT_EQ(catalogMessage(std::string_view(catalog).substr(0, length), "Close"), std::nullopt) << length;
  }
  EXPECT_EQ(catalogMessage(catalogOf("Close", "", false), "Close"), std::nullopt);
}

TEST(TitleBarButtonRules, NamesAreThoseOfTheToolkitsCatalog) {
  const auto german = ButtonNames::load("gtk30", {"de_DE", "de"}, {systemCatalogs});
  EXPECT_EQ(german.role("Minimieren"), ButtonRole::Minimize);
  EXPECT_EQ(german.role("Wiederherstellen"), ButtonRole::Zoom);
  EXPECT_EQ(german.role("Schließen"), ButtonRole::Close);
  EXPECT_EQ(german.role("Close"), std::nullopt);
  EXPECT_TRUE(german.complete());

  // English stands before German here, and needs no catalogue to be found.
  EXPECT_EQ(ButtonNames::load("gtk40", {"en_US", "en", "de"}, {systemCatalogs}).role("Close"), ButtonRole::Close);
  EXPECT_FALSE(ButtonNames::load("gtk40", {"xx"}, {systemCatalogs}).complete());
}

TEST(TitleBarButtonRules, PlacementFitsOnlyTheWindowItself) {
  struct Case {
    const char* what;
    Toolkit toolkit;
    CGRect client;
    CGRect frame;
    CGSize reported;
    bool fits;
    CGPoint offset;
    double scale;
  };
  const CGRect bare = CGRectMake(-300, 50, 510, 356);
  const CGRect shadowed = CGRectMake(-326, 27, 562, 408);
  for (const auto& c : {
           Case{"GTK 3, no shadow", Toolkit::Gtk3, bare, bare, {510, 356}, true, {0, 0}, 1},
           Case{"GTK 3, shadow", Toolkit::Gtk3, shadowed, bare, {562, 408}, true, {-26, -23}, 1},
           Case{"GTK 3, doubled", Toolkit::Gtk3, bare, bare, {255, 178}, true, {0, 0}, 2},
           Case{"GTK 3, the size before", Toolkit::Gtk3, bare, bare, {510, 300}, false, {}, 1},
           Case{"GTK 4, solid border", Toolkit::Gtk4, bare, bare, {500, 346}, true, {5, 5}, 1},
           Case{"GTK 4, shadow", Toolkit::Gtk4, shadowed, bare, {510, 356}, true, {0, 0}, 1},
           Case{"GTK 4, doubled", Toolkit::Gtk4, bare, bare, {250, 173}, true, {5, 5}, 2},
           Case{"GTK 4, the size before", Toolkit::Gtk4, bare, bare, {500, 356}, false, {}, 1},
           Case{"GTK 4, larger", Toolkit::Gtk4, bare, bare, {512, 358}, false, {}, 1},
           Case{"nothing yet", Toolkit::Gtk4, bare, bare, {0, 0}, false, {}, 1},
       }) {
    const auto found = placement(c.toolkit, windowOf(c.client, c.frame), c.reported);
    ASSERT_EQ(found.has_value(), c.fits) << c.what;
    if (!found) continue;
    EXPECT_EQ(found->offset.x, c.offset.x) << c.what;
    EXPECT_EQ(found->offset.y, c.offset.y) << c.what;
    EXPECT_EQ(found->scale, c.scale) << c.what;
  }
}

TEST(TitleBarButtonRules, PaddingIsToldFromChildrenThatFillTheirParent) {
  struct Case {
    const char* what;
    CGRect outer;
    std::vector<CGRect> children;
    CGPoint inset;
  };
  for (const auto& c : {
           Case{"a child", {{-6, -6}, {592, 47}}, {{{-6, -6}, {580, 46}}}, {6, 0}},
           Case{"several", {{-6, -5}, {592, 47}}, {{{-6, -5}, {198, 34}}, {{572, -5}, {0, 34}}}, {7, 6}},
           Case{"one larger than its parent", {{453, -6}, {121, 46}}, {{{460, -6}, {120, 46}}}, {0, 0}},
           Case{"one without a size yet", {{0, 0}, {600, 47}}, {{{0, 0}, {588, 47}}, {{0, 0}, {588355024, 0}}}, {6, 0}},
           Case{"one that leaves most free", {{0, 0}, {600, 300}}, {{{0, 0}, {100, 20}}}, {0, 0}},
       }) {
    const CGPoint inset = contentInset(c.outer, c.children);
    EXPECT_EQ(inset.x, c.inset.x) << c.what;
    EXPECT_EQ(inset.y, c.inset.y) << c.what;
  }
}

TEST(TitleBarButtonRules, ButtonsAreToldByNameAndElseByPlace) {
  const auto english = ButtonNames::load("gtk40", {}, {});
  const auto unknown = ButtonNames::load("gtk40", {"xx"}, {});
  const CGRect frame = CGRectMake(0, 0, 600, 400);
  const auto window = windowOf(frame, frame);
  const auto identify = [&](std::vector<ButtonGroup> groups, const ButtonNames& names, const std::string& decoration) {
    std::vector<ButtonRole> roles;
    for (const auto& button : titleBarButtons(groups, names, decoration, Toolkit::Gtk3, window, Placement{}))
      roles.push_back(button.role);
    return roles;
  };
  const auto group = [](std::vector<std::pair<std::string, double>> buttons) {
    ButtonGroup made;
    for (const auto& [name, x] : buttons) made.buttons.push_back({name, CGRectMake(x, 10, 30, 30), true});
    return made;
  };
  using Roles = std::vector<ButtonRole>;
  const Roles all = {ButtonRole::Minimize, ButtonRole::Zoom, ButtonRole::Close};
  const auto titled = group({{"Minimize", 480}, {"Restore", 520}, {"Close", 560}});

  EXPECT_EQ(identify({titled}, english, layout), all);
  // A button that the toolkit did not name makes the group the application's.
  EXPECT_EQ(identify({group({{"Save", 520}, {"Close", 560}})}, english, layout), Roles{});
  EXPECT_EQ(identify({group({{"Close", 520}, {"Close", 560}})}, english, layout), Roles{});
  auto mixed = group({{"Close", 560}});
  mixed.mixed = true;
  EXPECT_EQ(identify({mixed}, english, layout), Roles{});

  // Unknown names: place decides, but only where no catalogue could have told.
  const auto foreign = group({{"c", 560}, {"a", 480}, {"b", 520}});
  EXPECT_EQ(identify({foreign}, unknown, layout), (Roles{ButtonRole::Close, ButtonRole::Minimize, ButtonRole::Zoom}));
  EXPECT_EQ(identify({foreign}, english, layout), Roles{});
  EXPECT_EQ(identify({foreign}, unknown, "appmenu:close"), Roles{});
  EXPECT_EQ(identify({group({{"a", 300}, {"b", 340}, {"c", 380}})}, unknown, layout), Roles{});
  EXPECT_EQ(identify({group({{"a", 5}, {"b", 40}})}, unknown, "close,minimize:"),
            (Roles{ButtonRole::Close, ButtonRole::Minimize}));
}

TEST(TitleBarButtonRules, Gtk4RectanglesGrowToWhatTakesClicks) {
  const auto english = ButtonNames::load("gtk40", {}, {});
  const auto window = windowOf(CGRectMake(0, 0, 520, 320), CGRectMake(0, 0, 520, 320));
  ButtonGroup group;
  group.buttons = {{"Minimize", CGRectMake(400, 14, 16, 16), true},
                   {"Maximize", CGRectMake(412, 14, 16, 16), false},
                   {"Close", CGRectMake(495, 0, 16, 16), true}};
  const auto found = titleBarButtons({group}, english, layout, Toolkit::Gtk4, window, Placement{CGPointMake(5, 5), 1});
  const std::vector<TitleBarButton> expected = {{ButtonRole::Minimize, CGRectMake(398, 12, 21, 30), true},
                                                {ButtonRole::Zoom, CGRectMake(419, 12, 21, 30), false},
                                                {ButtonRole::Close, CGRectMake(493, 0, 27, 28), true}};
  EXPECT_EQ(found, expected);
}

}  // namespace
}  // namespace atspi
