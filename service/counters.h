// Counters over all processes of the service, written in the format of Prometheus.
//
// NV_SERVICE_COUNTERS  a file in memory that the processes of one machine share (/run/nvservice/counters); without it
//                      each process counts for itself
#ifndef NVSUPPORT_SERVICE_COUNTERS_H
#define NVSUPPORT_SERVICE_COUNTERS_H

#include <string>

namespace nvsupport::service {

void CountRequest(const char* program, int httpStatus, double seconds);

// Lives while a password is hashed or compared with a hash.
class HashInProgress {
 public:
  HashInProgress();
  HashInProgress(const HashInProgress&) = delete;
  HashInProgress& operator=(const HashInProgress&) = delete;
  ~HashInProgress();
};

std::string CountersText();

}  // namespace nvsupport::service

#endif
