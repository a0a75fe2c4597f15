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

TEST(WebBinaryCGI, PostsExactlyWhatWasWritten) {
  const ScriptedServer server(HttpReply(200, "\5\0\0\0"s), NV_SERVICE_HOST);
  CWebBinaryCGI channel("cgi-bin/some.cgi", false);
  channel.WriteValue(8u);
  channel.WriteString("A\xE9");
  EXPECT_EQ(channel.Count(), 12u);
  std::uint32_t value = 0;
  channel.ReadValue(value);
  EXPECT_FALSE(channel.IsGood()) << "nothing is sent yet";
  EXPECT_TRUE(channel.Send());
  EXPECT_TRUE(channel.IsGood()) << "the direction has turned";
  EXPECT_EQ(channel.Count(), 0u);
  EXPECT_EQ(server.Requests(), std::vector<std::string>{"POST /cgi-bin/some.cgi HTTP/1.1\r\nHost: " NV_SERVICE_HOST
                                                        "\r\nContent-Length: 12\r\nUser-Agent: NV_CgiClient\r\n"
                                                        "Pragma: no-cache\r\n\r\n\x08\0\0\0\2\0\0\0A\0\xE9\xFF"s});
}

// Requests that leave a smallest and a larger read buffer; items of odd sizes, which lie across its end in every way.
TEST(WebBinaryCGI, HandsOutTheReplyWhateverTheSizeOfTheRequest) {
  std::string all;
  for (int i = 0; i < 700; ++i) all += static_cast<char>(i * 31 % 251);
  std::string reply;
  for (std::size_t length = 0; length < 700; length += 3) {
    reply += static_cast<char>(length) + Text(all.substr(0, length));
  }
  const ScriptedServer server(HttpReply(200, reply + Int(3) + "a\0\xE9"s), NV_SERVICE_HOST);
  for (const std::int32_t requestSize : {0, 300}) {
    CWebBinaryCGI channel("cgi-bin/some.cgi", false);
    channel.WriteBlock(std::string(300, 'r').data(), requestSize);
    EXPECT_TRUE(channel.Send());
    std::string text;
    for (std::size_t length = 0; length < 700; length += 3) {
      std::uint8_t mark = 0;
      channel.ReadValue(mark);
      EXPECT_EQ(mark, length % 256);
      EXPECT_TRUE(channel.ReadString(text)) << length;
      EXPECT_EQ(text, all.substr(0, length));
    }
    EXPECT_EQ(channel.Count(), reply.size());
    EXPECT_FALSE(channel.ReadString(text));
    EXPECT_EQ(text, "a\xE9") << "the reply ends inside a unit of the last text";
  }
}

}  // namespace
}  // namespace nvsupport
