// The client's address behind proxies, such as a load balancer.
//
// NV_TRUSTED_PROXIES  their addresses or networks, separated by commas:
//                     "192.0.2.7,10.0.0.0/8,2001:db8::/32". None unless it is set.
#ifndef NVSUPPORT_SERVICE_CLIENT_ADDRESS_H
#define NVSUPPORT_SERVICE_CLIENT_ADDRESS_H

#include <string>

namespace nvsupport::service {

bool IsTrustedProxy(const std::string& address);

// The peer's address. If the peer is a trusted proxy: the last address in `forwarded` (X-Forwarded-For) that is not a
// trusted proxy, too. What stands in front of that one could be invented by anybody.
std::string ClientAddress(const std::string& peer, const std::string& forwarded);

}  // namespace nvsupport::service

#endif
