// The road from the host's call for a token through all dialogs, and every place where it can end.
#include "account_fixture.h"

#include <cstring>

namespace nvsupport {
namespace {

using namespace testing;

class AccountChain : public AccountTest {};

TEST_F(AccountChain, IsDoneOnlyWhenItsEndIsReached) {
  const Step ok = Clicks(IDOK);
  const Step cancel = Clicks(IDCANCEL);
  // The computer's name is asked for on top of the sign-in dialog.
  const Step seesDevice = Sees(deviceTitle, [](HWND dialog) {
    const windowing::DialogView* const owner = PlayedUser::ViewOf(GetParent(dialog));
    EXPECT_TRUE(owner != nullptr && owner->title == signInTitle);
  });
  const Step fieldsStay = Sees(signInTitle, [](HWND dialog) {
    EXPECT_EQ(TextOf(dialog, IDC_USER_ID), "bob");
    EXPECT_EQ(TextOf(dialog, IDC_PASSWORD), "first1");
  });
  const Steps signIn = FillSignIn("Ann", "Secret 1") + Steps{ok};
  const Steps create = FillSignIn("bob", "first1") + Steps{Clicks(IDC_CREATE_ACCOUNT)};
  const Steps account = create + FillAccount("Ann", "Secret 1") + Steps{ok};
  const Steps named = {seesDevice, ok};
  const Steps notNamed = {seesDevice, cancel};
  const Steps leave = {Sees(signInTitle), cancel};
  const Steps leaveUnchanged = {fieldsStay, cancel};
  const std::string done = Int(0);
  const std::string signedIn = Int(0) + Int(0);
  const std::string unnamed = Int(0) + Int(1);
  const std::string token = Int(0) + Text("a-token");
  const Credentials ann{"Ann", "Secret 1"};
  const struct {
    const char* what;
    Steps steps;
    std::vector<std::pair<int, std::string>> exchanges;  // operation that the service gets, its reply
    Credentials left;                                    // in memory
    bool saved;                                          // on disk
    std::size_t boxes;
  } cases[] = {
      {"sign-in", signIn, {{8, signedIn}, {11, token}}, ann, true, 0},
      {"refused, then right", signIn + Steps{ok}, {{8, Int(5)}, {8, signedIn}, {11, token}}, ann, true, 1},
      {"new name", signIn + named, {{8, unnamed}, {9, done}, {11, token}}, ann, true, 0},
      {"name cancelled", signIn + notNamed + leave, {{8, unnamed}}, {"Ann", ""}, false, 0},
      {"account", account + named, {{10, done}, {9, done}, {11, token}}, ann, true, 0},
      {"account cancelled", create + Steps{cancel} + leaveUnchanged, {}, {"bob", "first1"}, false, 0},
      {"known address", account + leaveUnchanged, {{10, Int(13)}}, ann, false, 1},
      {"account, name cancelled", account + notNamed + leaveUnchanged, {{10, done}}, ann, true, 0},
      {"token refused", signIn, {{8, signedIn}, {11, Int(5)}}, ann, true, 0},
  };
  ::testing::internal::CaptureStderr();
  for (const auto& row : cases) {
    SCOPED_TRACE(row.what);
    std::vector<std::string> replies;
    std::string expected;
    for (const auto& [operation, reply] : row.exchanges) {
      expected += Int(operation);
      replies.push_back(reply);
    }
    replies.push_back(Int(99));
    Serve(replies);
    OpenSession();
    person.steps.assign(row.steps.begin(), row.steps.end());
    person.boxes.clear();
    const bool hasToken = !row.exchanges.empty() && row.exchanges.back().second == token;
    char text[20] = "before";
    EXPECT_EQ(xff99a5e4(nullptr, text), hasToken);
    EXPECT_STREQ(text, hasToken ? "a-token" : "");
    EXPECT_TRUE(person.steps.empty());
    std::string operations;
    for (const std::string& request : Requests()) operations += request.substr(0, 4);
    EXPECT_EQ(operations, expected);
    EXPECT_EQ(person.boxes.size(), row.boxes);
    EXPECT_EQ(Profile(), row.saved ? "UserID=Ann\n" : "");
    EXPECT_EQ(InForce(), row.left);
  }
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "") << "nothing of it is anyone else's business";
}

TEST_F(AccountChain, GivesATokenThatFitsAndShowsNothingElse) {
  const auto expectToken = [](const std::string& token) {
    char buffer[36];
    std::memset(buffer, '#', sizeof buffer);
    EXPECT_EQ(xff99a5e4(nullptr, buffer), !token.empty());
    EXPECT_STREQ(buffer, token.c_str());
    EXPECT_EQ(std::string(buffer + 20, 16), std::string(16, '#')) << "behind the host's 20 bytes";
  };
  // A password without a user ID needs no sign-in; it stays through all of this, so no dialog opens.
  OpenSession({"", "secret1"});
  for (const std::size_t length : {0u, 19u, 20u}) {
    SCOPED_TRACE(length);
    const std::string token(length, 't');
    Serve({Int(0) + Text(token)});
    expectToken(length < 20 ? token : "");
    EXPECT_EQ(Requests(), (std::vector<std::string>{Int(11) + Int(0) + Text("secret1")}));
  }
  server.reset();
  expectToken("");
  EXPECT_TRUE(person.boxes.empty());
  CloseSession();
  expectToken("");
}

}  // namespace
}  // namespace nvsupport
