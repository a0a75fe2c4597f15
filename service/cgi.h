// What the CGI programs share: one request from the environment and standard input, one reply to standard output.
#ifndef NVSUPPORT_SERVICE_CGI_H
#define NVSUPPORT_SERVICE_CGI_H

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace nvsupport::service {

enum class Transport { any, secureOnly };

// Answers one POST request of at most `limit` bytes with what `answer` makes of its body. A request that does not get
// as far gets an HTTP error whose body is a status like any other reply: clients do not look at the HTTP status.
// `answer` may throw; the text of the exception goes to standard error, the web server's log. Returns the exit code.
int AnswerPost(std::size_t limit, Transport transport, const std::function<std::string(std::string_view)>& answer);

// Writes headers and body of one reply; nothing of it may be kept by a cache.
void SendReply(int httpStatus, std::string_view contentType, std::string_view body);

// Keeps the secrets that the program handles out of files: no memory image after a crash, and what the program creates
// is readable by its owner alone.
void KeepSecrets();

// A variable of the environment; empty if it is not set.
std::string Variable(const char* name);
// As above for what the program cannot do without: throws std::runtime_error if it is not set.
std::string RequiredVariable(const char* name);
// True when the web server received the request over TLS.
bool IsSecure();

}  // namespace nvsupport::service

#endif
