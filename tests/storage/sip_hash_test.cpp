#include <gtest/gtest.h>

#include <string>

#include "sip_hash.h"

namespace {

// The example of the hash's authors: the key is the bytes 0 to 15, the text the bytes 0 to 14.
TEST(SipHash, GivesThePublishedValue) {
  std::string text;
  for (char byte = 0; byte < 15; ++byte) text += byte;
  EXPECT_EQ(platform::SipHash({0x0706050403020100, 0x0f0e0d0c0b0a0908}, text), 0xa129ca6149be45e5u);
}

}  // namespace
