#include "language/format_check.h"

#include <gtest/gtest.h>

namespace nvsupport {
namespace {

TEST(FormatCheck, AcceptsOnlyTheVeryConversionsOfTheSource) {
  const struct {
    const char* source;
    const char* translation;
    bool same;
  } cases[] = {
      {"code %d", "Fehler %d!", true},
      {"no conversion", "keine", true},
      {"%s and %d", "%s und %d", true},
      {"100%% of %d", "%d, 100%%", true},
      {"%d", "100%% %d", true},
      {"%-5.2lf|%I64d", "%-5.2lf, %I64d", true},
      {"%s and %d", "%d und %s", false},
      {"%d", "%s", false},
      {"%d", "%ld", false},
      {"%d", "%lld", false},
      {"%I64d", "%I64s", false},
      {"%d", "%5d", false},
      {"%d", "keine", false},
      {"%d", "%d %d", false},
      {"keine", "%n", false},
      {"%d", "%n", false},
      {"%d", "%*d", false},
      {"%d", "%1$d", false},
      {"%d", "%d %", false},
      {"%d %d", "%d 100% d", false},
      {"50% off", "50% korting", false},
      {"%d", "%%d", false},
      {"%%%d", "%d", true},
      {"%%%d", "%%%%d", false},
      {"%l%d", "%l%s", false},
  };
  for (const auto& item : cases) {
    EXPECT_EQ(HaveSameConversions(item.source, item.translation), item.same)
        << item.source << " | " << item.translation;
  }
}

}  // namespace
}  // namespace nvsupport
