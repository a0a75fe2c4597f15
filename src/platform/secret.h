// Memory that held a secret is overwritten before it is given back. For both sides of the seam.
#ifndef NVSUPPORT_PLATFORM_SECRET_H
#define NVSUPPORT_PLATFORM_SECRET_H

#include "system.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

template <typename T>
struct WipingAllocator {
  using value_type = T;

  WipingAllocator() = default;
  template <typename U>
  explicit WipingAllocator(const WipingAllocator<U>&) {}

  T* allocate(std::size_t count) { return std::allocator<T>().allocate(count); }
  void deallocate(T* memory, std::size_t count) {
    SecureZeroMemory(memory, count * sizeof(T));
    std::allocator<T>().deallocate(memory, count);
  }
  friend bool operator==(const WipingAllocator&, const WipingAllocator&) { return true; }
};

template <typename T>
using SecretVector = std::vector<T, WipingAllocator<T>>;

// A text that is overwritten wherever it was stored. Unlike a string it is never stored in the object itself.
class SecretText {
 public:
  SecretText() = default;
  explicit SecretText(std::string_view text) : characters(text.begin(), text.end()) { Terminate(); }
  SecretText& operator=(std::string_view text) { return *this = SecretText(text); }

  bool empty() const { return view().empty(); }
  std::string_view view() const { return {c_str(), characters.empty() ? 0 : characters.size() - 1}; }
  const char* c_str() const { return characters.empty() ? "" : characters.data(); }
  void clear() { characters = {}; }
  // Takes what `write(buffer, room)` puts down, whose length it returns; the room counts the terminator.
  template <typename Write>
  void Fill(std::size_t room, Write write) {
    characters.assign(room, '\0');
    characters.resize(write(characters.data(), room));
    Terminate();
  }

  friend bool operator==(const SecretText& left, const SecretText& right) { return left.view() == right.view(); }
  friend bool operator==(const SecretText& left, std::string_view right) { return left.view() == right; }

 private:
  void Terminate() { characters.push_back('\0'); }

  SecretVector<char> characters;
};

// Overwrites a text that must not stay in memory, and empties it.
inline void WipeText(std::string& text) {
  SecureZeroMemory(text.data(), text.size());
  text.clear();
}

}  // namespace platform

#endif
