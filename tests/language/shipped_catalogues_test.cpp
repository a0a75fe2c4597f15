// The shipped languages against the texts that the library really shows.
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <set>

#include "catalogue_check.h"
#include "language/catalogue_reader.h"
#include "source_texts.h"
#include "support/temporary_home.h"

namespace nvsupport {
namespace {

using Texts = std::set<std::string, std::less<>>;

const std::filesystem::path sourceFolder = std::filesystem::path(NV_SOURCE_FOLDER) / "src";

// The titles and control texts of the dialog templates.
Texts TemplateTexts() {
  const std::string script = testing::ReadWholeFile(sourceFolder / "resources" / "nvsupport.rc");
  const std::regex text("\\n *(?:CAPTION|[A-Z]*TEXT|[A-Z]*BUTTON|[A-Z]*BOX|CONTROL) +\"((?:[^\"\\n]|\"\")+)\"");
  Texts texts;
  for (std::sregex_iterator found(script.begin(), script.end(), text), end; found != end; ++found) {
    texts.insert(UnescapeCatalogueText((*found)[1].str()));  // which undoes doubled quotes
  }
  return texts;
}

// The literals of the sources that hold a blank, which sets texts for the user apart from names.
Texts MessageTexts() {
  const std::regex adjacent("\"\\s*\\n\\s*\"");
  const std::regex literal("\"((?:[^\"\\\\\\n]|\\\\.)*)\"");
  Texts texts;
  for (const char* folder : {"account", "core"}) {
    for (const auto& file : std::filesystem::directory_iterator(sourceFolder / folder)) {
      if (file.path().extension() != ".cpp") continue;
      const std::string source = std::regex_replace(testing::ReadWholeFile(file.path()), adjacent, "");
      for (std::sregex_iterator found(source.begin(), source.end(), literal), end; found != end; ++found) {
        const std::string text = UnescapeCatalogueText((*found)[1].str());
        if (text.find(' ') != std::string::npos) texts.insert(text);
      }
    }
  }
  return texts;
}

TEST(SourceTexts, AreTheTextsOfTheTemplatesAndTheSources) {
  Texts shown = TemplateTexts();
  EXPECT_GE(shown.size(), 24u) << "the templates are not where the test looks for them";
  shown.merge(MessageTexts());
  const Texts listed(SourceTexts().begin(), SourceTexts().end());
  std::vector<std::string> difference;
  std::ranges::set_symmetric_difference(listed, shown, std::back_inserter(difference));
  for (const std::string& text : difference) {
    ADD_FAILURE() << (listed.contains(text) ? "shown nowhere: " : "not in the list: ") << text;
  }
}

class ShippedCatalogue : public ::testing::TestWithParam<std::string> {};

TEST_P(ShippedCatalogue, HasAFaultlessEntryForEachTextAndNoOther) {
  const std::string bytes =
      testing::ReadWholeFile(sourceFolder / "resources/catalogues" / ("nvsupport." + GetParam() + ".txt"));
  for (const Finding& finding : CheckCatalogue(bytes)) ADD_FAILURE() << finding.line << ": " << finding.message;
  for (const std::string_view text : FindMissingTexts(bytes, SourceTexts())) ADD_FAILURE() << "missing: " << text;
  CatalogueReader reader(bytes);
  CatalogueRecord record;
  while (reader.Next(record)) {
    EXPECT_NE(std::ranges::find(SourceTexts(), UnescapeCatalogueText(record.source)), SourceTexts().end())
        << "no text of the library: " << record.source;
  }
}

INSTANTIATE_TEST_SUITE_P(Language, ShippedCatalogue, ::testing::Values("Deutsch", "Francais", "Nederlands"),
                         [](const auto& language) { return language.param; });

}  // namespace
}  // namespace nvsupport
