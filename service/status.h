// The first word of every reply of the account and map shop services. The client's dialogs have messages of their own
// for the statuses marked with a star; all others are shown as a general error.
#ifndef NVSUPPORT_SERVICE_STATUS_H
#define NVSUPPORT_SERVICE_STATUS_H

#include <cstdint>

namespace nvsupport::service {

enum class Status : std::uint32_t {
  kDone = 0,
  kNotUnderstood = 1,     // malformed request, unknown operation, a text or number beyond its limit
  kUserIdInUse = 2,       // *
  kPasswordTooShort = 3,  // *
  kWrongUserId = 4,       // *
  kWrongPassword = 5,     // *
  kNoUserId = 6,          // a new account's user ID has no letter or digit
  kTooManyComputers = 7,  // the account has as many computers as it may have
  kEmailInUse = 13,       // *
  kInvalidEmail = 14,     // *
  kServiceFailed = 20,    // the service could not do its work; the request was fine
};

}  // namespace nvsupport::service

#endif
