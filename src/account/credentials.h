// The form in which a password is kept on disk, out of plain sight: up to 16 letters and digits as one code each,
// laid under a fixed mask. credentials.cpp also loads and saves the profile of a session, in settings.ini.
#ifndef NVSUPPORT_ACCOUNT_CREDENTIALS_H
#define NVSUPPORT_ACCOUNT_CREDENTIALS_H

#include <array>
#include <cstdint>
#include <string_view>

#include "platform/platform.h"

namespace nvsupport {

using Credential = std::array<std::uint8_t, 16>;

// A constant of the program: passwords that were saved under another mask come back wrong. As masked bytes it stands
// for the empty text.
inline constexpr Credential credentialMask = {0xb2, 0x5e, 0x07, 0xd9, 0x83, 0x6c, 0xf1, 0x3a,
                                              0x49, 0xc6, 0x1d, 0xe0, 0x97, 0x24, 0x7b, 0xa8};

// The first 16 letters and digits as codes from 1 to 36, either case alike; 0 behind the last one.
Credential EncodeCredential(std::string_view text);
// The text of masked bytes, in lower case. A byte that is no code adds nothing.
platform::SecretText DecodeCredential(const Credential& masked);
// Lays the mask over the bytes, or takes it off again.
Credential MaskCredential(const Credential& bytes);

}  // namespace nvsupport

#endif
