// Runs the real CGI programs as a web server would: a child process with a CGI environment.
#ifndef NVSUPPORT_TESTS_SERVICE_CGI_PROGRAM_H
#define NVSUPPORT_TESTS_SERVICE_CGI_PROGRAM_H

#include <string>
#include <vector>

struct CgiReply {
  int httpStatus = 0;
  std::string body;
  std::string log;  // standard error
};

// program: file name in the folder of the CGI programs. environment: "NAME=value" texts, all that the child has.
CgiReply RunCgi(const std::string& program, const std::vector<std::string>& environment, const std::string& body);

// A POST request over TLS with a correct length. The accounts are in the file `database`.
CgiReply Post(const std::string& program, const std::string& database, const std::string& body);

#endif
