// Overwrites memory that held a secret.
#ifndef NVSUPPORT_PLATFORM_LINUX_SECURE_ZERO_MEMORY_H
#define NVSUPPORT_PLATFORM_LINUX_SECURE_ZERO_MEMORY_H

#include <string.h>

#include <cstddef>

// The compiler does not leave it out, even if the memory is never read again.
inline void* SecureZeroMemory(void* memory, std::size_t size) {
  explicit_bzero(memory, size);
  return memory;
}

#endif
