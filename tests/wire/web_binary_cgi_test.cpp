#include "wire/web_binary_cgi.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "support/routed_server.h"

namespace nvsupport {
namespace {

using namespace std::string_literals;
using testing::HttpReply;
using testing::RoutedServer;

constexpr const char* path = "cgi-bin/some.cgi";

TEST(WebBinaryCGI, PostsExactlyWhatWasWritten) {
  const RoutedServer server(HttpReply(200, "\5\0\0\0"s), NV_SERVICE_HOST);
  CWebBinaryCGI channel(path, false);
  channel.WriteValue(8u);
  channel.WriteString("A\xE9");
  EXPECT_EQ(channel.Count(), 12u);
  ASSERT_TRUE(channel.Send());
  EXPECT_EQ(channel.Count(), 0u);
  EXPECT_EQ(server.Requests().at(0), "POST /cgi-bin/some.cgi HTTP/1.1\r\nHost: " NV_SERVICE_HOST
                                     "\r\nContent-Length: 12\r\nUser-Agent: NV_CgiClient\r\nPragma: no-cache\r\n\r\n"
                                     "\x08\0\0\0\2\0\0\0A\0\xE9\xFF"s);
}

// Requests that leave a smallest and a larger read buffer, replies that fill neither, one, or both many times.
TEST(WebBinaryCGI, HandsOutTheReplyWhateverTheSizeOfTheRequest) {
  for (const std::int32_t requestSize : {0, 300}) {
    for (const std::size_t replySize : {1u, 256u, 300u, 301u, 70000u}) {
      std::string reply;
      for (std::size_t i = 0; i < replySize; ++i) reply += static_cast<char>(i * 31 % 251);
      const RoutedServer server(HttpReply(200, reply), NV_SERVICE_HOST);
      CWebBinaryCGI channel(path, false);
      channel.WriteBlock(std::string(300, 'r').data(), requestSize);
      ASSERT_TRUE(channel.Send());
      // In pieces of 7 bytes, which straddle every fill of the buffer; the missing ones of the last stay zero.
      std::string read;
      for (char piece[7] = {}; channel.Read(piece, sizeof piece); std::fill_n(piece, sizeof piece, '\0')) {
        read.append(piece, sizeof piece);
      }
      reply.resize((replySize + 6) / 7 * 7);
      EXPECT_EQ(read, reply) << requestSize << " " << replySize;
    }
  }
}

TEST(WebBinaryCGI, CountsAPartOfAValueAsReadAndNothingAsFailure) {
  const RoutedServer server(HttpReply(200, "\5\0\0\0\7\0"s), NV_SERVICE_HOST);
  CWebBinaryCGI channel(path, false);
  std::uint32_t value = 0;
  channel.ReadValue(value);
  EXPECT_FALSE(channel.IsGood());
  ASSERT_TRUE(channel.Send());
  EXPECT_TRUE(channel.IsGood()) << "the direction has turned";
  EXPECT_FALSE(channel.Read(&value, 0));
  EXPECT_FALSE(channel.Read(&value, -1));
  channel.ReadValue(value);
  EXPECT_EQ(value, 5u);
  value = 0xFFFFFFFF;
  channel.ReadValue(value);
  EXPECT_TRUE(channel.IsGood());
  channel.ReadValue(value);
  EXPECT_FALSE(channel.IsGood());
  EXPECT_EQ(value, 0xFFFF0007u);
}

}  // namespace
}  // namespace nvsupport
