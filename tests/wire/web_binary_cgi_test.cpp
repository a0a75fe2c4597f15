#include "wire/web_binary_cgi.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/scripted_server.h"
#include "support/wire_items.h"

namespace nvsupport {
namespace {

using namespace std::string_literals;
using testing::HttpReply;
using testing::Int;
using testing::ScriptedServer;
using testing::Text;

constexpr const char* path = "cgi-bin/some.cgi";

TEST(WebBinaryCGI, PostsExactlyWhatWasWritten) {
  const ScriptedServer server(HttpReply(200, "\5\0\0\0"s), NV_SERVICE_HOST);
  CWebBinaryCGI channel(path, false);
  channel.WriteValue(8u);
  channel.WriteString("A\xE9");
  EXPECT_EQ(channel.Count(), 12u);
  std::uint32_t value = 0;
  channel.ReadValue(value);
  EXPECT_FALSE(channel.IsGood()) << "nothing is sent yet";
  ASSERT_TRUE(channel.Send());
  EXPECT_TRUE(channel.IsGood()) << "the direction has turned";
  EXPECT_FALSE(channel.Read(&value, 0));
  EXPECT_EQ(channel.Count(), 0u);
  EXPECT_EQ(server.Requests().at(0), "POST /cgi-bin/some.cgi HTTP/1.1\r\nHost: " NV_SERVICE_HOST
                                     "\r\nContent-Length: 12\r\nUser-Agent: NV_CgiClient\r\nPragma: no-cache\r\n\r\n"
                                     "\x08\0\0\0\2\0\0\0A\0\xE9\xFF"s);
}

// Requests that leave a smallest and a larger read buffer; items of odd sizes, which lie across its end in every way.
TEST(WebBinaryCGI, HandsOutTheReplyWhateverTheSizeOfTheRequest) {
  std::vector<std::string> texts;
  std::string reply;
  for (std::size_t length = 0; length < 700; length += 3) {
    texts.emplace_back();
    for (std::size_t i = 0; i < length; ++i) texts.back() += static_cast<char>(i * 31 % 251);
    reply += static_cast<char>(length) + Text(texts.back());
  }
  const ScriptedServer server(HttpReply(200, reply + '\7' + Int(3) + "a\0\xE9"s), NV_SERVICE_HOST);
  for (const std::int32_t requestSize : {0, 300}) {
    CWebBinaryCGI channel(path, false);
    channel.WriteBlock(std::string(300, 'r').data(), requestSize);
    ASSERT_TRUE(channel.Send());
    std::uint8_t length = 0;
    std::string text;
    for (const std::string& expected : texts) {
      channel.ReadValue(length);
      EXPECT_EQ(length, expected.size() % 256);
      EXPECT_TRUE(channel.ReadString(text));
      EXPECT_EQ(text, expected);
    }
    EXPECT_EQ(channel.Count(), reply.size());
    channel.ReadValue(length);
    EXPECT_FALSE(channel.ReadString(text));
    EXPECT_EQ(text, "a\xE9") << "the reply ends inside a unit of the last text";
    EXPECT_EQ(channel.Count(), reply.size() + 1 + 4 + 3 * 2);
  }
}

}  // namespace
}  // namespace nvsupport
