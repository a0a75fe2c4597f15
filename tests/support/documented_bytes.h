// The worked examples of docs/*.md, so that a test can hold the library to them.
#ifndef NVSUPPORT_TESTS_SUPPORT_DOCUMENTED_BYTES_H
#define NVSUPPORT_TESTS_SUPPORT_DOCUMENTED_BYTES_H

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>

namespace nvsupport::testing {

// The bytes of the fenced block ```name of the document at a path. Each line holds two-digit hexadecimal numbers, then,
// behind two blanks or a '#', a comment. Empty when there is no such block.
inline std::string DocumentedBytes(const std::string& path, const std::string& name) {
  std::ifstream stream(path);
  std::string bytes;
  std::string line;
  while (std::getline(stream, line) && line != "```" + name) {
  }
  while (std::getline(stream, line) && line != "```") {
    std::istringstream numbers(line.substr(0, std::min(line.find("  "), line.find('#'))));
    for (std::string number; numbers >> number;) bytes += static_cast<char>(std::stoi(number, nullptr, 16));
  }
  return bytes;
}

}  // namespace nvsupport::testing

#endif
