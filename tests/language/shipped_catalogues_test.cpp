// The shipped languages against the texts that the library really shows.
#include <gtest/gtest.h>

#include <algorithm>

#include "catalogue_check.h"
#include "language/catalogue_reader.h"
#include "source_texts.h"
#include "support/temporary_home.h"

namespace nvsupport {
namespace {

const std::filesystem::path sourceFolder = std::filesystem::path(NV_SOURCE_FOLDER) / "src";

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
