#include "language/format_check.h"

#include <gtest/gtest.h>

#include <string>

namespace nvsupport {
namespace {

TEST(FormatCheck, AcceptsOnlyTheVeryConversionsOfTheSource) {
  const auto same = [](const std::string& pair) {  // "source|translation"
    const std::size_t bar = pair.find('|');
    return HaveSameConversions(pair.substr(0, bar), pair.substr(bar + 1));
  };
  for (const char* pair : {"code %d|Fehler %d!", "no conversion|keine", "%s and %d|%s und %d", "100%% of %d|%d, 100%%",
                           "%d|100%% %d", "%-5.2lf; %I64d|%-5.2lf, %I64d", "%%%d|%d"}) {
    EXPECT_TRUE(same(pair)) << pair;
  }
  for (const char* pair : {"%s and %d|%d und %s", "%d|%s", "%d|%ld", "%d|%lld", "%I64d|%I64s", "%d|%5d", "%d|keine",
                           "%d|%d %d", "keine|%n", "%d|%n", "%d|%*d", "%d|%1$d", "%d|%d %", "%d %d|%d 100% d",
                           "50% off|50% korting", "%d|%%d", "%%%d|%%%%d", "%l%d|%l%s"}) {
    EXPECT_FALSE(same(pair)) << pair;
  }
}

}  // namespace
}  // namespace nvsupport
