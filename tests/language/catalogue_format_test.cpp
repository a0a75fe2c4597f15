// The grammar of catalogue files, in both forms.
#include <gtest/gtest.h>

#include <map>

#include "language/catalogue_reader.h"
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

TEST(CatalogueFormat, ReadsOddLinesAlikeInBothForms) {
  const struct {
    std::string text;
    Entries entries;
  } cases[] = {
      {"", {}},
      {"A\tB", {{"A", "B"}}},
      {"A\tB\r\nC\tD\r\n", {{"A", "B"}, {"C", "D"}}},
      {"no tab\nA\tB\n", {{"A", "B"}}},
      {"A\tB\nno tab", {{"A", "B"}}},
      {"\n\nA\tB\n\n", {{"A", "B"}}},
      {"A\tB\tC\n", {{"A", "B\tC"}}},
      {"\tA\tB\n", {{"A", "B"}}},
      {"\t\t\tA\tB\n", {{"A", "B"}}},
      {"\tA\nB\tC\n", {{"B", "C"}}},
      {"A\t\nB\tC\n", {{"B", "C"}}},
      {"A\t", {}},
      {"A\t\r\n", {{"A", ""}}},
      {"\"\tA\n", {{"", "A"}}},
      {"A\tB\nA\tC\n", {{"A", "C"}}},
      {"a\\nb\tc\\td\n", {{"a\nb", "c\td"}}},
      {"C:\\temp\\x\tD\\\n", {{"C:\temp\\x", "D\\"}}},
      {"\\\"A\\\"\tB\\\\n\n", {{"\"A\"", "B\\n"}}},
      {"\"say \"\"A\"\"\"\t\"\"\"A\"\" B\"\r\n", {{"say \"A\"", "\"A\" B"}}},
      {"a\"b\t\"c\n", {{"ab", "c"}}},
      {"a\rb\tc\\\r\n", {{"ab", "c\\\r"}}},
      {"&OK \tB\nOK\tC\n", {{"&OK ", "B"}, {"OK", "C"}}},
      {"A\xE9\tB\xFF\n", {{"A\xE9", "B\xFF"}}},
      {"A\0B\tC\n"s, {{"A\0B"s, "C"}}},
  };
  for (const auto& item : cases) {
    EXPECT_EQ(ReadEntries(item.text), item.entries) << item.text;
    EXPECT_EQ(ReadEntries(Widened(item.text)), item.entries) << "wide: " << item.text;
  }
}

TEST(CatalogueFormat, TellsTheFormsByTheFirstTwoBytes) {
  const Entries entry = {{"A", "B"}};
  EXPECT_EQ(ReadEntries("\xFF\xFE"), Entries{});
  EXPECT_EQ(ReadEntries(Widened("A\tB") + "\n"), entry) << "an odd last byte is no character";
  EXPECT_EQ(ReadEntries("\xFE\xFF\0A\0\t\0B"s), (Entries{{"\xFE\xFF\0A\0"s, "\0B"s}})) << "big-endian";
  EXPECT_EQ(ReadEntries("\xFF"), Entries{});
  EXPECT_EQ(ReadEntries("\xFF\tA"), (Entries{{"\xFF", "A"}}));
}

TEST(CatalogueFormat, CutsWideCharactersOnlyAfterLookingForTabAndLineFeed) {
  // U+0109 and U+010A end in the bytes of a tab and a line feed but are neither; U+2022 becomes a double quote.
  EXPECT_EQ(ReadEntries("\xFF\xFE\x09\x01\x0A\x01\t\0B\0\x41\x30"s), (Entries{{"\t\n", "BA"}}));
  EXPECT_EQ(ReadEntries("\xFF\xFEZ\0\t\0B\0\x22\x20"s), (Entries{{"Z", "B"}}));
}

TEST(CatalogueFormat, ReadsTheWorkedExampleOfItsDocument) {
  const std::string bytes = testing::DocumentedBytes(NV_SOURCE_FOLDER "/docs/catalogue_format.md", "catalogue");
  EXPECT_EQ(ReadEntries(bytes), (Entries{{"Say \"yes\"", "Dites \"oui\""}, {"Page %d\nof %d", "Seite %d\nvon %d"}}));
}

}  // namespace
}  // namespace nvsupport
