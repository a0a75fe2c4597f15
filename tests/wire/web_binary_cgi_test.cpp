#include "wire/web_binary_cgi.h"

#include <gtest/gtest.h>

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

// Requests shorter and longer than the smallest read buffer, replies around the sizes of both.
TEST(WebBinaryCGI, HandsOutTheReplyWhateverTheSizeOfTheRequest) {
  for (const std::size_t requestSize : {0u, 10u, 256u, 300u, 5000u}) {
    for (const std::size_t replySize : {1u, 255u, 256u, 257u, 300u, 301u, 4999u, 70000u}) {
      std::string reply;
      for (std::size_t i = 0; i < replySize; ++i) reply += static_cast<char>(i * 31 % 251);
      const RoutedServer server(HttpReply(200, reply), NV_SERVICE_HOST);
      CWebBinaryCGI channel(path, false);
      const std::string request(requestSize, 'r');
      channel.WriteBlock(request.data(), static_cast<std::int32_t>(request.size()));
      ASSERT_TRUE(channel.Send());
      // In pieces of 7 bytes, which straddle every fill of the buffer.
      std::string read;
      char piece[7];
      while (read.size() + sizeof piece <= reply.size() && channel.Read(piece, sizeof piece)) {
        read.append(piece, sizeof piece);
      }
      const std::size_t rest = reply.size() - read.size();
      EXPECT_EQ(channel.Read(piece, sizeof piece), rest != 0);
      read.append(piece, rest);
      EXPECT_EQ(read, reply) << requestSize << " " << replySize;
      EXPECT_FALSE(channel.Read(piece, sizeof piece));
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
  EXPECT_TRUE(channel.IsGood());
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
