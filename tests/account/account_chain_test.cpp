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

TEST_F(AccountChain, IsDoneOnlyWhenItsEndIsReached) {
  const Steps signIn = FillSignIn("Ann", "Secret 1") + Steps{ok};
  const Steps create = FillSignIn("bob", "first1") + Steps{Clicks(IDC_CREATE_ACCOUNT)};
  const Steps account = FillAccount("Ann", "Secret 1") + Steps{ok};
  const Step fieldsStay = Sees(signInTitle, [](HWND dialog) {
    EXPECT_EQ(TextOf(dialog, IDC_USER_ID), "bob");
    EXPECT_EQ(TextOf(dialog, IDC_PASSWORD), "first1");
  });
  const Reply done = Items(Int(0));
  const Reply signedIn = Items(Int(0) + Int(0));
  const Reply unnamed = Items(Int(0) + Int(1));
  const Reply refused = Items(Int(5));
  const Reply token = Items(Int(0) + Text("a-token"));
  const struct {
    const char* what;
    Steps steps;
    std::vector<Reply> replies;
    std::vector<int> operations;
    std::string token;
    Credentials left;     // in memory
    std::string profile;  // on disk
    std::size_t boxes;
  } cases[] = {
      {"sign-in", signIn, {signedIn, token}, {8, 11}, "a-token", {"Ann", "Secret 1"}, "UserID=Ann\n", 0},
      {"sign-in cancelled", {seesSignIn, cancel}, {done}, {}, "", {"", ""}, "", 0},
      {"sign-in refused, then cancelled", signIn + Steps{cancel}, {refused}, {8}, "", {"Ann", ""}, "", 1},
      {"sign-in refused, then right",
       signIn + Steps{ok},
       {refused, signedIn, token},
       {8, 8, 11},
       "a-token",
       {"Ann", "Secret 1"},
       "UserID=Ann\n",
       1},
      {"sign-in with a new name",
       signIn + Steps{seesDevice, ok},
       {unnamed, done, token},
       {8, 9, 11},
       "a-token",
       {"Ann", "Secret 1"},
       "UserID=Ann\n",
       0},
      {"sign-in, name cancelled",
       signIn + Steps{seesDevice, cancel, seesSignIn, cancel},
       {unnamed},
       {8},
       "",
       {"Ann", ""},
       "",
       0},
      {"sign-in, name refused",
       signIn + Steps{seesDevice, ok, seesDevice, cancel, seesSignIn, cancel},
       {unnamed, refused},
       {8, 9},
       "",
       {"Ann", ""},
       "",
       1},
      {"new account",
       create + account + Steps{seesDevice, ok},
       {done, done, token},
       {10, 9, 11},
       "a-token",
       {"Ann", "Secret 1"},
       "UserID=Ann\n",
       0},
      {"new account cancelled",
       create + Steps{Sees(createTitle), cancel, fieldsStay, cancel},
       {done},
       {},
       "",
       {"bob", "first1"},
       "",
       0},
      {"new account refused, then cancelled",
       create + account + Steps{Sees(createTitle), cancel, fieldsStay, cancel},
       {Items(Int(3))},
       {10},
       "",
       {"Ann", "Secret 1"},
       "",
       1},
      {"new account of a known address",
       create + account + Steps{fieldsStay, cancel},
       {Items(Int(13))},
       {10},
       "",
       {"Ann", "Secret 1"},
       "",
       1},
      {"new account, name cancelled",
       create + account + Steps{seesDevice, cancel, fieldsStay, cancel},
       {done},
       {10},
       "",
       {"Ann", "Secret 1"},
       "UserID=Ann\n",
       0},
      {"new account, name refused",
       create + account + Steps{seesDevice, ok, cancel, fieldsStay, cancel},
       {done, refused},
       {10, 9},
       "",
       {"Ann", "Secret 1"},
       "UserID=Ann\n",
       1},
      {"token refused", signIn, {signedIn, refused}, {8, 11}, "", {"Ann", "Secret 1"}, "UserID=Ann\n", 0},
  };
  ::testing::internal::CaptureStderr();
  for (const auto& row : cases) {
    SCOPED_TRACE(row.what);
    Serve(row.replies);
    OpenSession();
    person.steps.assign(row.steps.begin(), row.steps.end());
    person.boxes.clear();
    char text[20] = "before";
    EXPECT_EQ(xff99a5e4(nullptr, text), !row.token.empty());
    EXPECT_EQ(text, row.token);
    EXPECT_TRUE(person.steps.empty());
    EXPECT_EQ(Operations(), row.operations);
    EXPECT_EQ(person.boxes.size(), row.boxes);
    EXPECT_EQ(Profile(), row.profile);
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
