#include "wire/web_binary_cgi.h"

#include <gtest/gtest.h>

#include <string>

#include "support/scripted_server.h"
#include "support/short_timeouts.h"
#include "support/temporary_home.h"

namespace nvsupport {
namespace {

using namespace std::string_literals;
using testing::HttpReply;
using testing::ScopedVariable;
using testing::ScriptedServer;

constexpr const char* path = "cgi-bin/some.cgi";

TEST(WebBinaryCGI, PostsExactlyWhatWasWritten) {
  const ScriptedServer server({HttpReply(200, "\5\0\0\0"s)});
  const ScopedVariable connectTo("NV_CONNECT_TO", server.ConnectTo(NV_SERVICE_HOST, 80));
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

TEST(WebBinaryCGI, SpeaksTlsOnlyWhenItIsSecure) {
  // A plain server, which never answers the handshake, gets no request; none reaches port 80 in its place.
  const testing::ShortTimeouts timeouts;
  const ScriptedServer server({HttpReply(200, "\5\0\0\0"s)});
  const ScopedVariable connectTo("NV_CONNECT_TO",
                                 server.ConnectTo(NV_SERVICE_HOST, 443) + "," + server.ConnectTo(NV_SERVICE_HOST, 80));
  CWebBinaryCGI channel(path, true);
  channel.WriteString("secret");
  EXPECT_FALSE(channel.Send());
  EXPECT_TRUE(server.Requests().empty());
  EXPECT_EQ(server.Connections(), 1);
}

// Requests shorter and longer than the smallest read buffer, replies around the sizes of both.
TEST(WebBinaryCGI, HandsOutTheReplyWhateverTheSizeOfTheRequest) {
  for (const std::size_t requestSize : {0u, 10u, 256u, 300u, 5000u}) {
    for (const std::size_t replySize : {1u, 255u, 256u, 257u, 300u, 301u, 4999u, 70000u}) {
      std::string reply;
      for (std::size_t i = 0; i < replySize; ++i) reply += static_cast<char>(i * 31 % 251);
      const ScriptedServer server({HttpReply(200, reply)});
      const ScopedVariable connectTo("NV_CONNECT_TO", server.ConnectTo(NV_SERVICE_HOST, 80));
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
  const ScriptedServer server({HttpReply(200, "\5\0\0\0\7\0"s)});
  const ScopedVariable connectTo("NV_CONNECT_TO", server.ConnectTo(NV_SERVICE_HOST, 80));
  CWebBinaryCGI channel(path, false);
  ASSERT_TRUE(channel.Send());
  std::uint32_t value = 0;
  EXPECT_FALSE(channel.Read(&value, 0));
  EXPECT_FALSE(channel.Read(&value, -1));
  channel.ReadValue(value);
  EXPECT_EQ(value, 5u);
  value = 0xFFFFFFFF;
  channel.ReadValue(value);
  EXPECT_EQ(value, 0xFFFF0007u);
  EXPECT_TRUE(channel.IsGood());
  channel.ReadValue(value);
  EXPECT_EQ(value, 0xFFFF0007u);
  EXPECT_FALSE(channel.IsGood());
}

TEST(WebBinaryCGI, TurnsGoodAgainWhenItSends) {
  const ScriptedServer server({HttpReply(200, ""), HttpReply(200, "\1"s)});
  const ScopedVariable connectTo("NV_CONNECT_TO", server.ConnectTo(NV_SERVICE_HOST, 80));
  CWebBinaryCGI channel(path, false);
  std::uint8_t value = 9;
  channel.ReadValue(value);
  EXPECT_FALSE(channel.IsGood());
  ASSERT_TRUE(channel.Send());
  EXPECT_TRUE(channel.IsGood());
  channel.ReadValue(value);
  EXPECT_FALSE(channel.IsGood()) << "the reply is empty";
  EXPECT_EQ(value, 9);
}

TEST(WebBinaryCGI, TellsAtSendThatNobodyAnswers) {
  std::uint16_t port = 0;
  { port = ScriptedServer({testing::NoReply()}).Port(); }  // free again, so connecting is refused
  const ScopedVariable connectTo("NV_CONNECT_TO", NV_SERVICE_HOST ":80:127.0.0.1:" + std::to_string(port));
  CWebBinaryCGI channel(path, false);
  channel.WriteValue(1u);
  EXPECT_FALSE(channel.Send());
  std::uint32_t value = 3;
  channel.ReadValue(value);
  EXPECT_FALSE(channel.IsGood());
  EXPECT_EQ(value, 3u);
}

}  // namespace
}  // namespace nvsupport
