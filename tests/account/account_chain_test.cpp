// The road from the host's call for a token through all dialogs, and every place where it can end.
#include "account_fixture.h"

#include <cstring>

#include "nvsupport/nvsupport.h"

namespace nvsupport {
namespace {

using namespace testing;

class AccountChain : public AccountTest {};

const Step ok = Clicks(IDOK);
const Step cancel = Clicks(IDCANCEL);
const Step seesSignIn = Sees(signInTitle);

// The computer's name is asked for on top of the sign-in dialog.
const Step seesDevice = Sees(deviceTitle, [](HWND dialog) {
  const user::DialogView* const owner = user::ViewOf(GetParent(dialog));
  ASSERT_NE(owner, nullptr);
  EXPECT_EQ(owner->title, signInTitle);
});

// A request that the service gets, and its answer.
struct Exchange {
  int operation;
  std::string reply;
};

TEST_F(AccountChain, IsDoneOnlyWhenItsEndIsReached) {
  const Steps signIn = FillSignIn("Ann", "Secret 1") + Steps{ok};
  const Steps create = FillSignIn("bob", "first1") + Steps{Clicks(IDC_CREATE_ACCOUNT)};
  const Steps account = FillAccount("Ann", "Secret 1") + Steps{ok};
  const Step fieldsStay = Sees(signInTitle, [](HWND dialog) {
    EXPECT_EQ(TextOf(dialog, IDC_USER_ID), "bob");
    EXPECT_EQ(TextOf(dialog, IDC_PASSWORD), "first1");
  });
  const Exchange signedIn{8, Int(0) + Int(0)};
  const Exchange unnamed{8, Int(0) + Int(1)};
  const Exchange signInRefused{8, Int(5)};
  const Exchange named{9, Int(0)};
  const Exchange nameRefused{9, Int(5)};
  const Exchange made{10, Int(0)};
  const Exchange token{11, Int(0) + Text("a-token")};
  const Credentials ann{"Ann", "Secret 1"};
  const Credentials failed{"Ann", ""};
  const struct {
    const char* what;
    Steps steps;
    std::vector<Exchange> exchanges;
    Credentials left;  // in memory
    bool saved;        // on disk
    std::size_t boxes;
  } cases[] = {
      {"sign-in", signIn, {signedIn, token}, ann, true, 0},
      {"sign-in cancelled", {seesSignIn, cancel}, {}, {"", ""}, false, 0},
      {"sign-in refused, cancelled", signIn + Steps{cancel}, {signInRefused}, failed, false, 1},
      {"sign-in refused, then right", signIn + Steps{ok}, {signInRefused, signedIn, token}, ann, true, 1},
      {"sign-in, new name", signIn + Steps{seesDevice, ok}, {unnamed, named, token}, ann, true, 0},
      {"sign-in, name cancelled", signIn + Steps{seesDevice, cancel, seesSignIn, cancel}, {unnamed}, failed, false, 0},
      {"sign-in, name refused",
       signIn + Steps{seesDevice, ok, seesDevice, cancel, seesSignIn, cancel},
       {unnamed, nameRefused},
       failed,
       false,
       1},
      {"account", create + account + Steps{seesDevice, ok}, {made, named, token}, ann, true, 0},
      {"account cancelled", create + Steps{cancel, fieldsStay, cancel}, {}, {"bob", "first1"}, false, 0},
      {"account refused",
       create + account + Steps{Sees(createTitle), cancel, fieldsStay, cancel},
       {{10, Int(3)}},
       ann,
       false,
       1},
      {"known address", create + account + Steps{fieldsStay, cancel}, {{10, Int(13)}}, ann, false, 1},
      {"account, name cancelled",
       create + account + Steps{seesDevice, cancel, fieldsStay, cancel},
       {made},
       ann,
       true,
       0},
      {"account, name refused",
       create + account + Steps{seesDevice, ok, cancel, fieldsStay, cancel},
       {made, nameRefused},
       ann,
       true,
       1},
      {"token refused", signIn, {signedIn, {11, Int(5)}}, ann, true, 0},
  };
  ::testing::internal::CaptureStderr();
  for (const auto& row : cases) {
    SCOPED_TRACE(row.what);
    std::vector<Reply> replies;
    std::vector<int> operations;
    for (const Exchange& exchange : row.exchanges) {
      operations.push_back(exchange.operation);
      replies.push_back(Items(exchange.reply));
    }
    replies.push_back(Items(Int(99)));
    Serve(replies);
    OpenSession();
    person.steps.assign(row.steps.begin(), row.steps.end());
    person.boxes.clear();
    const bool done = !row.exchanges.empty() && row.exchanges.back().reply == token.reply;
    char text[20] = "before";
    EXPECT_EQ(xff99a5e4(nullptr, text), done);
    EXPECT_STREQ(text, done ? "a-token" : "");
    EXPECT_TRUE(person.steps.empty());
    EXPECT_EQ(Operations(), operations);
    EXPECT_EQ(person.boxes.size(), row.boxes);
    EXPECT_EQ(Profile(), row.saved ? "UserID=Ann\n" : "");
    EXPECT_EQ(InForce(), row.left);
  }
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "") << "nothing of it is anyone else's business";
}

TEST_F(AccountChain, TellsOfAKnownAddressBeforeItLeavesTheAccountDialog) {
  Serve({Items(Int(13))});
  OpenSession();
  EXPECT_FALSE(Run(FillAccount("ann", "secret1") + Steps{ok}, &CVServiceManager::CreateAccount));
  ASSERT_EQ(person.boxes.size(), 1u);
  EXPECT_EQ(person.boxes[0].text,
            "An account already exists with the same email address. Please sign in to that account.\nIf you have "
            "forgotten the User ID or Password, click \"Forgot\" to recover them.");
  EXPECT_EQ(person.boxes[0].type, MB_ICONERROR);
  EXPECT_EQ(person.boxOwners[0], createTitle);
}

TEST_F(AccountChain, GivesATokenThatFitsAndShowsNothingElse) {
  const std::string whole(19, 't');
  const struct {
    const char* what;
    std::string body;
    std::string token;
  } cases[] = {
      {"19 characters", Int(0) + Text(whole), whole},
      {"20 characters", Int(0) + Text(whole + 't'), ""},
      {"100,000 characters", Int(0) + Text(std::string(100000, 't')), ""},
      {"100,001 characters", Int(0) + Text(std::string(100001, 't')), ""},
      {"none", Int(0) + Text(""), ""},
      {"ends inside the token", Int(0) + Int(10) + std::string("a\0b\0c\0", 6), "abc"},
      {"ends before the token", Int(0), ""},
      {"a zero byte for a token", Int(0) + Text(std::string(3, '\0')), ""},
      {"refused", Int(3) + Text(whole), ""},
      {"no status", "", ""},
  };
  struct {
    char token[20];
    char guard[16];
  } buffer;
  const auto expectToken = [&](const std::string& token) {
    std::memset(&buffer, '#', sizeof buffer);
    EXPECT_EQ(xff99a5e4(nullptr, buffer.token), !token.empty());
    EXPECT_STREQ(buffer.token, token.c_str());
    EXPECT_EQ(std::string(buffer.guard, sizeof buffer.guard), std::string(sizeof buffer.guard, '#'));
  };
  OpenSession(ProfileOf("ann", "secret1"));
  for (const auto& row : cases) {
    SCOPED_TRACE(row.what);
    Serve({Items(row.body)});
    expectToken(row.token);
  }
  ServeNobody();
  expectToken("");
  // The password stays through all of it, so no dialog opened; a password alone needs none either.
  Serve({Items(Int(0) + Text(whole))});
  OpenSession(ProfileOf("", "secret1"));
  expectToken(whole);
  EXPECT_EQ(Bodies(), (std::vector<std::string>{Int(11) + Int(0) + Text("secret1")}));
  EXPECT_TRUE(person.boxes.empty());

  CloseSession();
  expectToken("");
}

}  // namespace
}  // namespace nvsupport
