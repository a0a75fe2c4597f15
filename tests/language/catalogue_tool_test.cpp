// What the translators' tool nvcatalogue finds in a catalogue and makes of it. docs/translating.md runs the program.
#include <gtest/gtest.h>
#include <nvsupport/nvsupport.h>

#include "catalogue_check.h"
#include "support/run_program.h"
#include "support/temporary_home.h"
#include "work_file.h"

namespace nvsupport {
namespace {

using namespace std::string_literals;

TEST(CatalogueCheck, FindsWhatTheReaderWouldLoseAndMarksAndCharactersThatItDoesNotRead) {
  const struct {
    std::string line;
    const char* finding;  // part of the first message
  } cases[] = {
      {"A\tB\r\n\nC\tD", "faultless"},
      {"\"say \"\"A\"\"\"\t\"B\"\r", "faultless"},
      {"\\\"A\\\" \\n \\t \\\\\tB", "faultless"},
      {"%d of 100%%\t100%%: %d", "faultless"},
      {"First\tagain", "as in line 1"},
      {"no tab", "no tab"},
      {"\tA\tB", "tab with no text"},
      {"A\t", "nothing stands behind the tab"},
      {"A\t\r", "translation is empty"},
      {"\"\tA", "double quote is lost"},
      {"A \"B\" C\tD", "source text: a double quote is lost"},
      {"A\tB \"C\"", "translation: a double quote is lost"},
      {"A\tC:\\maps", "translation: a backslash stays"},
      {"A\tB\\\r", "translation: a backslash stays"},
      {"A\rB\tC", "source text: a carriage return is lost"},
      {"A\xC3\xA9\tB\xE2\x82\xAC", "faultless"},
      {"A\xE9\tB", "source text: bytes that are no UTF-8"},
      {"A\tB\xC3", "translation: bytes that are no UTF-8"},
      {"A\tXXXX\r", "placeholder"},
      {"%d\t%s", "conversions"},
      {"%s\t100%", "conversions"},
      {"Password\tW&ord\nOK\tK&&&W", "faultless"},
      {"Password\tS&aord\nSave password\t&\u00c9a\nHelp\t&\u00e9b\nUser ID\t&Aord", "a is marked in line 5, too"},
  };
  for (const auto& [line, finding] : cases) {
    const std::vector<Finding> findings = CheckCatalogue("First\tline\n" + line + "\n");
    const Finding first = findings.empty() ? Finding{2, "faultless"} : findings.front();
    EXPECT_EQ(first.line, 2u) << line;
    EXPECT_NE(first.message.find(finding), std::string::npos) << line << ": " << first.message;
  }
  EXPECT_EQ(CheckCatalogue("\xEF\xBB\xBFZ\tB\n").size(), 1u);
  EXPECT_FALSE(CheckCatalogue("\xFE\xFF\0Z\0\t\0B"s).empty());
  EXPECT_FALSE(CheckCatalogue("\xFF\xFEZ\0\t\0b\x20"s).empty()) << "a character above U+00FF in a wide file";
  EXPECT_TRUE(CheckCatalogue("\xFF\xFEZ\0\t\0\xC3\0\xA9\0"s).empty()) << "a miss file's bytes";
}

std::string Utf16(std::u16string_view text) {
  return "\xFF\xFE" + std::string(reinterpret_cast<const char*>(text.data()), 2 * text.size());
}

// The new file, or "line: reason".
std::string Told(const NewFile& made) {
  if (const auto* bytes = std::get_if<std::string>(&made)) return *bytes;
  return std::to_string(std::get<Finding>(made).line) + ": " + std::get<Finding>(made).message;
}

TEST(WorkFile, ComesFromThe16BitFormAndGoesBack) {
  EXPECT_EQ(Told(ToUtf8(Utf16(u"A\tΑ €\r\nB\t\xC3\xA9\r\nC\t\xE9"))), "A\tΑ €\nB\té\nC\té\n");
  EXPECT_EQ(Told(ToUtf8(Utf16(u"say \"A\"\t\"a \"\"B\"\"\"\r\n\"a, \\\"\"b\"\t\n"))),
            "say \\\"A\\\"\ta \\\"B\\\"\na, \\\"b\t\n");
  EXPECT_EQ(Told(ToUtf16("\xEF\xBB\xBF"
                         "A\tΑ\r\n\\\\\\\"B\\\"\t€")),
            Utf16(u"A\tΑ\r\n\"\\\\\"\"B\"\"\"\t€\r\n"))
      << "quotes as spreadsheets have them";
  EXPECT_TRUE(Told(ToUtf8("A\tB\n")).starts_with("1: "));
  EXPECT_TRUE(Told(ToUtf8(Utf16(u"A\tB\nC\t\xD800\n"))).starts_with("2: "));
  EXPECT_TRUE(Told(ToUtf8(Utf16(u"A") + "B")).starts_with("1: "));
  EXPECT_TRUE(Told(ToUtf16("A\tB\n\nC\t\xE9\n")).starts_with("3: "));
}

TEST(WorkFile, IsUpdatedWithoutLosingATranslation) {
  const std::string_view texts[] = {"new", "kept", "say \"A\"", "back", "twice"};
  const std::string before =
      "gone\tG\nkept\tK\r\nnew\tXXXX\n\"say \"\"A\"\"\"\tS\n#~ back\tB\ntwice\tT1\ntwice\tT2\ntwice\tXXXX\n#~ "
      "kept\tO\n";
  const std::string after =
      "new\tXXXX\nkept\tK\nsay \\\"A\\\"\tS\nback\tB\ntwice\tT2\n#~ gone\tG\n#~ kept\tO\n#~ twice\tT1\n";
  EXPECT_EQ(Told(Update(before, texts)), after);
  EXPECT_EQ(Told(Update("\xEF\xBB\xBF" + after, texts)), after) << "an editor's mark is no text";
  EXPECT_TRUE(Told(Update("A\tB\n\nno tab\n", texts)).starts_with("3: "));
  EXPECT_TRUE(Told(Update(Utf16(u"A\tB"), texts)).starts_with("1: "));
}

TEST(WorkFile, IsReplacedWholeWithItsMode) {
  const testing::TemporaryFolder folder;
  const std::string file = folder / "file";
  testing::WriteWholeFile(file, "A\tB\n");
  std::filesystem::permissions(file, std::filesystem::perms(0640));
  const auto update = [&](const std::string& limit) {
    return testing::RunProgram({"sh", "-c", limit + " exec \"$0\" update \"$1\" 2>&1", NV_CATALOGUE, file});
  };
  EXPECT_EQ(update("trap \"\" XFSZ; ulimit -f 0;").exitCode, 3) << "no room";
  EXPECT_EQ(testing::ReadWholeFile(file), "A\tB\n");
  EXPECT_EQ(update("").exitCode, 0);
  EXPECT_TRUE(testing::ReadWholeFile(file).ends_with("#~ A\tB\n"));
  EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms(0640));
  EXPECT_FALSE(std::filesystem::exists(file + ".new"));
  EXPECT_EQ(testing::RunProgram({NV_CATALOGUE, "--version"}).output, "nvcatalogue " NVSUPPORT_VERSION "\n");
}

TEST(CollectTexts, StopsAtALookupWhoseTextsItCannotFind) {
  const std::pair<const char*, int> cases[] = {
      {"ShowMessage(Parent(a, \",\"), MB_OK, \"a, \\\"b\\\" \"  // why\n  \"c\");", 0},
      {"// Translate(other) does.\nconst std::string& Translate(const std::string& text);", 0},
      {"#include \"ui/texts.h\"\nTranslate(headed);", 0},
      {"Translate(headed);", 1},
      {"Translate(\"a\" + name);", 1},
      {"ShowMessage(parent, MB_OK, isBad ? \"a\" : \"b\");", 1},
      {"ShowMessageFormat(\n    parent, MB_OK, text, \"a\");", 1},
  };
  for (const auto& [source, exitCode] : cases) {
    const testing::TemporaryFolder folder;
    testing::WriteWholeFile(folder / "resources/nvsupport.rc", "\nCAPTION \"Title\"\n");
    testing::WriteWholeFile(folder / "ui/texts.h", "constexpr char headed[] = \"a\";\n");
    testing::WriteWholeFile(folder / "ui/new.cpp", source);
    EXPECT_EQ(testing::RunProgram({NV_COLLECT_TEXTS, folder / "out", folder / ""}).exitCode, exitCode) << source;
  }
}

}  // namespace
}  // namespace nvsupport
