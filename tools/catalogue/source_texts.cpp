#include "source_texts.h"

#include <array>

namespace nvsupport {
namespace {

constexpr auto sourceTexts = std::to_array<std::string_view>({
    "Sign in to Your Account",
    "New Users:",
    "Create Account",
    "If you already have an account:",
    "User ID",
    "Password",
    "Save password",
    "User ID and Passwords are not case sensitive. Spaces, punctuation and characters after the first 16 are ignored.",
    "Help",
    "OK",
    "I Forgot...",
    "Cancel",
    "Create an Online Account",
    "Do not create more than one account. If you are unable to sign in to your account, please Cancel and use the \"I "
    "Forgot\" button.",
    "Retype Password",
    "Your name",
    "Company/Affiliation",
    "Email",
    "Norvane does not disclose this information to any third parties.",
    "Keep me informed about product news and updates",
    "I accept Norvane's Personal Data Privacy Policy",
    "View Privacy Policy",
    "Give your Computer a Name",
    "Please enter a name for this computer that you can recognize.",
    "Computer name",
    "Account Manager",
    "You must provide a user name and password to access your account.",
    "The User ID is not correct. If you have lost your ID, click the \"I Forgot\" button. Do not create more than one "
    "account.",
    "The Password is not correct. If you have lost your password, click the \"I Forgot\" button.",
    "A problem occured communicating with the server",
    "The passwords do not match",
    "Problem communicating over the internet",
    "Internal server error",
    "This user name is already in use.\nIf this is your account and you have forgotten the User ID or Password, click "
    "\"Cancel\" and \"I Forgot\" to recover them.",
    "The password must be at least 6 letters or numbers",
    "An account already exists with the same email address. Please sign in to that account.\nIf you have forgotten the "
    "User ID or Password, click \"Forgot\" to recover them.",
    "You must provide a valid email address.",
    "The server returned error code %d",
    "Unable to contact the server.",
    "The User ID is not correct",
    "The Password is not correct",
});

}  // namespace

std::span<const std::string_view> SourceTexts() {
  return sourceTexts;
}

}  // namespace nvsupport
