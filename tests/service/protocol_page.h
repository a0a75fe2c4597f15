// The byte examples of docs/service_protocol.md, by name: the blocks that begin with "```hex NAME".
#ifndef NVSUPPORT_TESTS_SERVICE_PROTOCOL_PAGE_H
#define NVSUPPORT_TESTS_SERVICE_PROTOCOL_PAGE_H

#include <fstream>
#include <map>
#include <sstream>
#include <string>

inline std::map<std::string, std::string> ProtocolExamples() {
  constexpr std::string_view kBegin = "```hex ";
  std::map<std::string, std::string> examples;
  std::ifstream page(NV_PROTOCOL_PAGE);
  std::string line;
  while (std::getline(page, line)) {
    if (!line.starts_with(kBegin)) continue;
    std::string& bytes = examples[line.substr(kBegin.size())];
    while (std::getline(page, line) && line != "```") {
      std::istringstream digits(line.substr(0, line.find('#')));
      for (unsigned value; digits >> std::hex >> value;) bytes.push_back(static_cast<char>(value));
    }
  }
  return examples;
}

#endif
