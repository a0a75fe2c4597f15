// The library against the real service behind its real web server.
#include <gtest/gtest.h>
#include <nvsupport/nvsupport.h>

#include <array>
#include <string>
#include <vector>

#include "local_service.h"
#include "resources/resource_ids.h"
#include "support/played_user.h"

namespace {

using nvsupport::testing::ReadWholeFile;

TEST(EndToEnd, AnAccountIsMadeAndNoLogHoldsItsSecrets) {
  const LocalService service;
  const nvsupport::testing::TemporaryHome home;
  PlayedUser person;
  const auto types = &PlayedUser::Types;
  const auto clicks = &PlayedUser::Clicks;
  person.steps = {
      clicks(IDC_CREATE_ACCOUNT),
      types(IDC_USER_ID, "Zo\u00eb Map"),
      types(IDC_PASSWORD, "Secret-7"),
      types(IDC_RETYPE_PASSWORD, "Secret-7"),
      types(IDC_EMAIL, "zoe@maps"),
      clicks(IDOK),
      types(IDC_EMAIL, "zoe@norvane.example"),
      clicks(IDOK),
      clicks(IDOK),
  };
  std::array<char, 20> token = {};
  x3e491215("Product");
  EXPECT_TRUE(xff99a5e4(nullptr, token.data()));
  ASSERT_EQ(person.boxes.size(), 1U);
  EXPECT_EQ(person.boxes[0].text, "You must provide a valid email address.");
  for (const char* log : {"access.log", "error.log", "cgi.log", "lighttpd.log"}) {
    const std::string text = ReadWholeFile(service.Path(std::string("log/") + log));
    for (const auto& secret : std::vector<std::string>{"Secret", token.data()}) {
      EXPECT_EQ(text.find(secret), std::string::npos) << secret << " in " << log;
    }
  }
}

}  // namespace
