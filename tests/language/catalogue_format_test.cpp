// The grammar of catalogue files, in both forms, and the conversions of the formats in them.
#include <gtest/gtest.h>

#include <map>

#include "language/catalogue_reader.h"
#include "language/format_check.h"
#include "support/documented_bytes.h"

namespace nvsupport {
namespace {

using namespace std::string_literals;
using Entries = std::map<std::string, std::string>;

Entries ReadEntries(std::string_view bytes) {
  Entries entries;
  CatalogueReader reader(bytes);
  CatalogueRecord record;
  while (reader.Next(record)) {
    if (record.kind != RecordKind::entry) continue;
    entries[UnescapeCatalogueText(record.source)] = UnescapeCatalogueText(record.translation);
  }
  return entries;
}

std::string Widened(const std::string& text) {
  std::string bytes(wideCatalogueMark);
  for (const char character : text) bytes.append({character, '\0'});
  return bytes;
}

TEST(CatalogueFormat, ReadsOddLinesAlikeInBothFormsAndTheExampleOfItsDocument) {
  const std::pair<std::string, Entries> cases[] = {
      {"\n\nno tab\na1\t1\r\na2\t2\ta\r\n\ta3\t3\n\t\t\ta4\t4\n\tlost\na5\t\n\ta6\t\r\na7\t7\na7\t8\nno tab\tat the "
       "end",
       {{"a1", "1"}, {"a2", "2\ta"}, {"a3", "3"}, {"a4", "4"}, {"a6", ""}, {"a7", "8"}, {"no tab", "at the end"}}},
      {"b\\n1\tc\\td\nC:\\temp\\x\tD\\\n\\\"b2\\\"\tB\\\\n\n\"say \"\"b3\"\"\"\t\"\"\"A\"\" "
       "B\"\r\nb\"4\t\"c\nb\r5\tc\\\r\n",
       {{"b\n1", "c\td"},
        {"C:\temp\\x", "D\\"},
        {"\"b2\"", "B\\n"},
        {"say \"b3\"", "\"A\" B"},
        {"b4", "c"},
        {"b5", "c\\\r"}}},
      {"\"\tempty\n&OK \tB\nOK\tC\nA\xE9\tB\xFF\nA\0B\tC\n"s,
       {{"", "empty"}, {"&OK ", "B"}, {"OK", "C"}, {"A\xE9", "B\xFF"}, {"A\0B"s, "C"}}},
  };
  for (const auto& [text, entries] : cases) {
    EXPECT_EQ(ReadEntries(text), entries) << text;
    EXPECT_EQ(ReadEntries(Widened(text)), entries) << "wide: " << text;
  }
  const std::string bytes = testing::DocumentedBytes(NV_SOURCE_FOLDER "/docs/catalogue_format.md", "catalogue");
  EXPECT_EQ(ReadEntries(bytes), (Entries{{"Say \"yes\"", "Dites \"oui\""}, {"Page %d\nof %d", "Seite %d\nvon %d"}}));
}

TEST(CatalogueFormat, TellsTheFormsByTheFirstTwoBytesAndCutsWideCharactersAtLast) {
  EXPECT_EQ(ReadEntries("\xFF\xFE"), Entries{});
  EXPECT_EQ(ReadEntries(Widened("A\tB") + "\n"), (Entries{{"A", "B"}})) << "an odd last byte is no character";
  EXPECT_EQ(ReadEntries("\xFE\xFF\0A\0\t\0B"s), (Entries{{"\xFE\xFF\0A\0"s, "\0B"s}})) << "big-endian";
  EXPECT_EQ(ReadEntries("\xFF\tA"), (Entries{{"\xFF", "A"}}));
  // U+0109 and U+010A end in the bytes of a tab and a line feed but are neither; U+2022 becomes a double quote.
  EXPECT_EQ(ReadEntries("\xFF\xFE\x09\x01\x0A\x01\t\0B\0\x41\x30"s), (Entries{{"\t\n", "BA"}}));
  EXPECT_EQ(ReadEntries("\xFF\xFEZ\0\t\0B\0\x22\x20"s), (Entries{{"Z", "B"}}));
}

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
