// The first word of every reply of the account and map shop services. The client's dialogs have messages of their own
// for the statuses marked with a star; all others are shown as a general error.
#ifndef NVSUPPORT_SERVICE_STATUS_H
#define NVSUPPORT_SERVICE_STATUS_H

#include <cstdint>

namespace nvsupport::service {

enum class Status : std::uint32_t {
  done = 0,
  notUnderstood = 1,     // malformed request, unknown operation, a text or number beyond its limit
  userIdInUse = 2,       // *
  passwordTooShort = 3,  // *
  wrongUserId = 4,       // *
  wrongPassword = 5,     // *
  noUserId = 6,          // a new account's user ID has no letter or digit
  tooManyComputers = 7,  // the account has as many computers as it may have
  emailInUse = 13,       // *
  invalidEmail = 14,     // *
  serviceFailed = 20,    // the service failed, or the brake refused a request that is well-formed
};

}  // namespace nvsupport::service

#endif
