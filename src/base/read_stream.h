// A whole file in memory, for the files that are read in one go: settings and catalogues.
#ifndef NVSUPPORT_BASE_READ_STREAM_H
#define NVSUPPORT_BASE_READ_STREAM_H

#include <cstddef>
#include <cstdio>
#include <optional>
#include <string>

namespace base {

// The bytes of a stream that was just opened, up to its end or a read error; nothing when there are more than `limit`.
inline std::optional<std::string> ReadStream(std::FILE* stream, std::size_t limit) {
  constexpr std::size_t usualSize = 4096;
  std::setvbuf(stream, nullptr, _IONBF, 0);  // there is nothing to gather, and a buffer would cost as much as the file
  std::string bytes(usualSize, '\0');
  bytes.resize(std::fread(bytes.data(), 1, bytes.size(), stream));
  if (bytes.size() < usualSize) return bytes;
  // A longer one is measured, so that its memory is taken once.
  if (std::fseek(stream, 0, SEEK_END) != 0) return std::nullopt;
  const long size = std::ftell(stream);
  if (size < 0 || static_cast<unsigned long>(size) > limit) return std::nullopt;
  if (std::fseek(stream, 0, SEEK_SET) != 0) return std::nullopt;
  bytes.resize(static_cast<std::size_t>(size));
  bytes.resize(std::fread(bytes.data(), 1, bytes.size(), stream));
  return bytes;
}

}  // namespace base

#endif
