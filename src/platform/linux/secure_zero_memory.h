// Overwrites memory that held a secret.
#ifndef NVSUPPORT_PLATFORM_LINUX_SECURE_ZERO_MEMORY_H
#define NVSUPPORT_PLATFORM_LINUX_SECURE_ZERO_MEMORY_H

#include <string.h>

#include <cstddef>

// Not left out by the compiler, whoever reads the memory next.
inline void* SecureZeroMemory(void* memory, std::size_t size) {
  explicit_bzero(memory, size);
  return memory;
}

#endif
