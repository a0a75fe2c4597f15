// Reads the worked examples of docs/*.md, so that tests compare the library with them.
#ifndef NVSUPPORT_TESTS_SUPPORT_DOCUMENTED_BYTES_H
#define NVSUPPORT_TESTS_SUPPORT_DOCUMENTED_BYTES_H

#include <fstream>
#include <sstream>
#include <string>

namespace nvsupport::testing {

// The bytes of the fenced block ```name of the document at a path. Each line holds two-digit hexadecimal numbers, then,
// behind two blanks, a comment. Empty when there is no such block.
inline std::string DocumentedBytes(const std::string& path, const std::string& name) {
  std::ifstream stream(path);
  std::string bytes;
  std::string line;
  while (std::getline(stream, line) && line != "```" + name) {
  }
  while (std::getline(stream, line) && line != "```") {
    std::istringstream numbers(line.substr(0, line.find("  ")));
    for (int number; numbers >> std::hex >> number;) bytes += static_cast<char>(number);
  }
  return bytes;
}

}  // namespace nvsupport::testing

#endif
