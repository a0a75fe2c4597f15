// What the tests' shared helpers call and the C library of Windows names otherwise.
#include <direct.h>
#include <io.h>
#include <stdlib.h>

inline int setenv(const char* name, const char* value, int) {
  return _putenv_s(name, value);
}
inline int unsetenv(const char* name) {
  return _putenv_s(name, "");
}
inline char* mkdtemp(char* name) {
  return _mktemp(name) != nullptr && _mkdir(name) == 0 ? name : nullptr;
}
