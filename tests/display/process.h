// A program that a test talks to by lines, ended with the object.
#ifndef NVSUPPORT_TESTS_DISPLAY_PROCESS_H
#define NVSUPPORT_TESTS_DISPLAY_PROCESS_H

#include <sys/types.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace nvsupport::testing {

// Asks until it holds, for 20 seconds at most.
bool WaitUntil(const std::function<bool()>& condition);

class Process {
 public:
  // An empty value takes the variable out of the program's environment. Standard error goes where the output goes if
  // `withErrors`, else where the test's goes.
  explicit Process(std::vector<std::string> command, const std::map<std::string, std::string>& environment = {},
                   bool withErrors = false);
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;
  ~Process();

  void Signal(int number) const;
  void WriteLine(const std::string& line) const;
  // The next line of its output, empty at its end and after 20 seconds without one.
  std::string ReadLine();
  // The rest of the first line that starts with `key` and a blank; earlier ones are passed over. Fails the test and
  // is empty if there is none.
  std::string Find(const std::string& key);
  // Waits for its end: the exit code, -1 if a signal ended it.
  int Join();

 private:
  pid_t process = -1;
  int channel = -1;  // its standard input and output
};

}  // namespace nvsupport::testing

#endif
