// Where a request comes from when it came through proxies, such as a balancer.
//
// NV_TRUSTED_PROXIES  their addresses, with commas, each with the number of bits that count if not all do:
//                     "192.0.2.7,10.0.0.0/8,2001:db8::/32". None unless it is set.
#ifndef NVSUPPORT_SERVICE_CLIENT_ADDRESS_H
#define NVSUPPORT_SERVICE_CLIENT_ADDRESS_H

#include <string>

namespace nvsupport::service {

bool IsTrustedProxy(const std::string& address);

// The peer's address or, of a trusted proxy, the last one in `forwarded` (X-Forwarded-For) that is no trusted proxy
// itself: what stands before that could be anybody's invention.
std::string ClientAddress(const std::string& peer, const std::string& forwarded);

}  // namespace nvsupport::service

#endif
