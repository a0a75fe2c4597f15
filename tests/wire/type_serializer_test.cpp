#include "wire/type_serializer.h"

#include <gtest/gtest.h>

#include <string>

#include "support/temporary_home.h"
#include "support/wire_items.h"
#include "wire/type_file.h"

namespace nvsupport {
namespace {

using namespace std::string_literals;
using testing::Int;
using testing::Text;

// A channel over memory: what was written is what can be read.
class MemoryChannel final : public CTypeSerializer {
 public:
  explicit MemoryChannel(bool wideStrings) { wide = wideStrings; }
  void Write(const void* data, std::int32_t size) override {
    bytes.append(static_cast<const char*>(data), static_cast<std::size_t>(size));
  }
  bool Read(void* data, std::int32_t size) override {
    const std::size_t piece = bytes.copy(static_cast<char*>(data), static_cast<std::size_t>(size), position);
    position += piece;
    return piece > 0;
  }

  std::string bytes;
  std::size_t position = 0;  // of the next byte to read
};

TEST(TypeSerializer, ReadsBackEveryCharacterInBothForms) {
  std::string text;
  for (int character = 0; character < 600; ++character) text += static_cast<char>(character);
  for (const bool wide : {true, false}) {
    MemoryChannel channel(wide);
    channel.WriteString(text);
    EXPECT_EQ(channel.bytes.size(), wide ? 1204u : 604u);
    std::string read = "before";
    EXPECT_TRUE(channel.ReadString(read));
    EXPECT_EQ(read, text);
  }
}

TEST(TypeFile, CarriesItemsAndTurnsBadWhereOneIsCut) {
  const testing::TemporaryFolder folder;
  const std::string path = folder / "items";
  CTypeFileOut out(path.c_str());
  out.WriteValue(std::int32_t{-7});
  out.WriteString("text");
  EXPECT_TRUE(out.Close());
  const std::string whole = testing::ReadWholeFile(path);
  EXPECT_EQ(whole, Int(-7) + Text("text"));
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    testing::WriteWholeFile(path, whole.substr(0, size));
    CTypeFileIn in(path.c_str());
    std::int32_t value = 0;
    in.ReadValue(value);
    EXPECT_EQ(in.IsGood(), size >= 4 && value == -7) << size;
    std::string text;
    EXPECT_EQ(in.ReadString(text), size == whole.size()) << size;
  }
}

TEST(TypeFile, TurnsBadWhereNothingCanBeWritten) {
  const testing::TemporaryFolder folder;
  for (const std::string& place : {folder / "missing/items", "/dev/full"s}) {
    CTypeFileOut nowhere(place.c_str());
    nowhere.WriteValue(1u);
    EXPECT_FALSE(nowhere.Close()) << place;
  }
}

}  // namespace
}  // namespace nvsupport
