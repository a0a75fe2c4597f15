// The library's family of exceptions. No operation of the library raises them.
#ifndef NVSUPPORT_UI_EXCEPTIONS_H
#define NVSUPPORT_UI_EXCEPTIONS_H

#include <string>

namespace nvsupport {

class Exception {
 public:
  virtual ~Exception() = default;
  virtual std::string message() const = 0;
};

// Conditions that the processor reports.
class sehException : public Exception {};

class StackOverflowException final : public sehException {
 public:
  std::string message() const override { return "Stack overflow"; }
};

class MemoryException final : public Exception {
 public:
  std::string message() const override { return "Out of memory"; }
};

// Made in advance, because there may be no memory left to make them when they are needed.
extern StackOverflowException stackOverflowException;
extern MemoryException memoryException;

}  // namespace nvsupport

#endif
