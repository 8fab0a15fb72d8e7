#include <gtest/gtest.h>

#include "command_fixture.h"

namespace lumenquest::testing {
namespace {

/// The words offered, without their meanings.
std::vector<std::string> Offered(std::vector<std::string> words) {
  words.insert(words.begin(), "complete");
  const Result result = Call(words);
  EXPECT_EQ(result.code, app::kExitSuccess) << result.err;
  std::vector<std::string> offered;
  std::istringstream lines(result.out);
  for (std::string line; std::getline(lines, line);) {
    offered.push_back(line.substr(0, line.find('\t')));
  }
  return offered;
}

using Words = std::vector<std::string>;

TEST(Completion, OffersWhatCanFollow) {
  const struct {
    const char* name;
    Words words;
    Words offered;
  } cases[] = {
      {"a command", {"ren"}, {"render"}},
      {"no command where one stands", {"places", "search", "s"}, {}},
      {"a kind, however it is written", {"render", "s"}, {"SunWidget"}},
      {"an option once", {"render", "sun", "--scheme", "dark", "--sch"}, {}},
      {"... also when it was written with its value", {"render", "--scheme=dark", "--sch"}, {}},
      {"its choices", {"render", "--scheme", ""}, {"light", "dark"}},
      {"none for a value that is free", {"today", "--latitude", ""}, {}},
      {"an argument behind options",
       {"render", "--my-location", "--at", "x", "mo"},
       {"MoonWidget"}},
      {"a file for a short option", {"render", "sun", "-o", ""}, {":files"}},
      {"a setting", {"settings", "get", "global_c"}, {"global_coordinate_system"}},
      {"of render", {"render", "plans", "--family", ""}, {"small", "medium"}},
      {"of what is no kind yet", {"render", "all", "--family", "l"}, {"large"}},
      {"the sizes of a kind", {"home", "add", "plans", "--family", ""}, {"small", "medium"}},
      {"... in the same word",
       {"home", "add", "--id", "x", "sun", "--family=m"},
       {"--family=medium"}},
      {"the sizes of a widget", {"home", "set", "milky-way", "--family", ""}, {"small"}},
      {"a link", {"home", "open", "lumenquest://s"}, {"lumenquest://sun"}},
  };
  for (const auto& c : cases) EXPECT_EQ(Offered(c.words), c.offered) << c.name;
  EXPECT_EQ(Offered({}), Offered({""}));
}

TEST(Completion, OffersPlacesThatTheCommandUnderstands) {
  const Words places = Offered({"today", "--place", "chamonix-m"});
  ASSERT_EQ(places.size(), 1u);
  EXPECT_EQ(Call({"today", "--place", places[0]}).code, app::kExitSuccess);
  EXPECT_TRUE(Offered({"today", "--place", "m"}).empty());
}

TEST(Completion, OffersPlansByIdentifier) {
  DataFolder data;
  Call({"plans", "add", "Tab\there", "--date", "2027-05-08 23:30", "--place", "Bled"});
  const Words plans = Offered({"plans", "remove", ""});
  ASSERT_EQ(plans.size(), 1u);
  EXPECT_EQ(Offered({"home", "open", "lumenquest://plan?id"}).size(), 1u);
  EXPECT_EQ(Call({"plans", "remove", plans[0]}).code, app::kExitSuccess);
}

}  // namespace
}  // namespace lumenquest::testing
