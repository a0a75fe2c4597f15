// What the programs share: how a request comes from the web server, by CGI or by FastCGI, and how its reply goes back.
// A program speaks FastCGI when its standard input is a listening socket, else CGI.
#ifndef NVSUPPORT_SERVICE_CGI_H
#define NVSUPPORT_SERVICE_CGI_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "service/process_pool.h"
#include "service/reply.h"

namespace nvsupport::service {

class Request {
 public:
  virtual ~Request() = default;

  // A variable of the request, such as REQUEST_METHOD; empty if the web server does not set it.
  std::string Variable(const char* name) const;
  // True when the client sent the request over TLS, to the web server or to a proxy that is trusted.
  bool IsSecure() const;
  // The network address of the client, as far as proxies that are trusted tell it.
  std::string Address() const;

  // Returns how many bytes of the body came.
  virtual std::size_t Read(char* to, std::size_t size) = 0;
  // False when nobody takes the reply any more.
  virtual bool Write(std::string_view bytes) = 0;

 private:
  virtual const char* Find(const char* name) const = 0;
};

using Handler = std::function<Reply(Request&)>;

// Answers the one request of a CGI program, or all that come by FastCGI. For FastCGI it runs several processes, each of
// which is replaced by a fresh one after a number of requests. Each request is counted and gives a line on standard
// error, which is the web server's log or the journal; `name` is the program's name there. If `answer` throws, the
// client gets a FailedReply. Returns the exit code.
//
// NV_SERVICE_PROCESSES             how many processes there are (4)
// NV_SERVICE_REQUESTS_PER_PROCESS  after so many requests a process is replaced (10000)
int Serve(const char* name, const Handler& answer);

// The part of Serve that one process does: answers so many requests by FastCGI, each over a connection of its own.
void AnswerByFastCgi(const char* name, const Handler& answer, std::int64_t requests, const NextConnection& next);

enum class Transport { any, secureOnly };

// Answers one POST request of at most `limit` bytes with what `answer` makes of its body. Any other request gets an
// HTTP error whose body is a status, as in every reply, because clients do not look at the HTTP status.
Reply AnswerPost(Request& request, std::size_t limit, Transport transport,
                 const std::function<Reply(std::string_view)>& answer);

// The reply to a method that is none of `allowed`, a list with commas.
Reply MethodReply(const std::string& allowed);

}  // namespace nvsupport::service

#endif
