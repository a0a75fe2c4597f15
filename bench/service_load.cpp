// Puts load on a running service: so many requests of each kind, so many at a time, each over a connection of its own.
// A request whose process is killed is sent again, as a client would. Afterwards nothing that was acknowledged may be
// missing, and nothing half done may be there. scripts/service_load.sh is the command for it.
//
// nvservice-load SERVER-PID REQUESTS AT-A-TIME KILLS [GUESSERS]
//
// KILLS is how many processes of the pools are killed in a second, in the middle of their work. Each user says by
// X-Forwarded-For that he has an address of his own, which counts where the service trusts this machine. Meanwhile so
// many GUESSERS try passwords of the same users, each request from another address. The environment is that of
// "service.sh env", and NV_SERVICE_DATABASE.
#include <curl/curl.h>
#include <signal.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "service/database/database.h"
#include "service/wire_items.h"
#include "support/wire_items.h"

namespace {

using nvsupport::testing::Int;
using nvsupport::testing::Text;
using Clock = std::chrono::steady_clock;

const std::string host = NV_SERVICE_HOST;
constexpr long clientPatience = 60;  // seconds that a client waits

// The processes of the service, children of those that the web server starts: looks at them every few milliseconds, and
// kills one now and then.
class Watch {
 public:
  Watch(pid_t serverPid, int killsInASecond) : server(serverPid), kills(killsInASecond) {}

  void Start() {
    mostProcesses = 0;
    mostMebibytes = 0;
    thread = std::jthread([this](const std::stop_token& stop) {
      while (!stop.stop_requested()) Look();
    });
  }
  void Stop() { thread = {}; }

  int mostProcesses = 0;
  double mostMebibytes = 0;

 private:
  static std::vector<pid_t> Children(pid_t parent) {
    const std::string process = std::to_string(parent);
    std::ifstream list("/proc/" + process + "/task/" + process + "/children");
    std::vector<pid_t> children;
    for (pid_t child = 0; list >> child;) children.push_back(child);
    return children;
  }

  static double Mebibytes(pid_t process) {
    std::ifstream sizes("/proc/" + std::to_string(process) + "/statm");
    double all = 0;
    double resident = 0;
    sizes >> all >> resident;
    constexpr double pagesInMebibyte = 256;
    return resident / pagesInMebibyte;
  }

  void Look() {
    double mebibytes = Mebibytes(server);
    std::vector<pid_t> processes;
    for (const pid_t pool : Children(server)) {
      mebibytes += Mebibytes(pool);
      for (const pid_t process : Children(pool)) {
        mebibytes += Mebibytes(process);
        processes.push_back(process);
      }
    }
    mostProcesses = std::max(mostProcesses, static_cast<int>(processes.size()));
    mostMebibytes = std::max(mostMebibytes, mebibytes);
    if (kills > 0 && !processes.empty() && Clock::now() >= nextKill) {
      kill(processes[std::uniform_int_distribution<std::size_t>(0, processes.size() - 1)(random)], SIGKILL);
      nextKill = Clock::now() + std::chrono::microseconds(1'000'000 / kills);
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }

  const pid_t server;
  const int kills;
  std::mt19937 random{1};
  Clock::time_point nextKill;
  std::jthread thread;
};

// One of 65,536 in a network of so many.
std::string Address(const char* network, int number) {
  return std::string(network) + '.' + std::to_string(number / 256 % 256) + '.' + std::to_string(number % 256);
}

struct Request {
  std::string path;
  std::string body;                                 // none: a GET
  std::function<bool(const std::string&)> takes{};  // whether a reply with the HTTP status 200 is the right one
};

// One request on its way.
class Exchange {
 public:
  Exchange(int requestNumber, const Request& request, const char* network = "10.1")
      : number(requestNumber),
        headers(curl_slist_append(nullptr, ("X-Forwarded-For: " + Address(network, number)).c_str()),
                &curl_slist_free_all) {
    curl_easy_setopt(easy.get(), CURLOPT_HTTPHEADER, headers.get());
    const bool secure = request.path != "mapstore2.cgi";
    const std::string url = (secure ? "https://" : "http://") + host + "/cgi-bin/" + request.path;
    curl_easy_setopt(easy.get(), CURLOPT_URL, url.c_str());
    curl_easy_setopt(easy.get(), CURLOPT_CONNECT_TO, route.get());
    curl_easy_setopt(easy.get(), CURLOPT_CAINFO, std::getenv("SSL_CERT_FILE"));
    curl_easy_setopt(easy.get(), CURLOPT_TIMEOUT, clientPatience);
    curl_easy_setopt(easy.get(), CURLOPT_FORBID_REUSE, 1L);
    curl_easy_setopt(easy.get(), CURLOPT_PRIVATE, this);
    curl_easy_setopt(easy.get(), CURLOPT_WRITEDATA, &reply);
    curl_easy_setopt(easy.get(), CURLOPT_WRITEFUNCTION, &Exchange::Take);
    if (request.body.empty()) return;
    curl_easy_setopt(easy.get(), CURLOPT_POSTFIELDSIZE, static_cast<long>(request.body.size()));
    curl_easy_setopt(easy.get(), CURLOPT_COPYPOSTFIELDS, request.body.c_str());
  }

  CURL* Handle() const { return easy.get(); }
  long HttpStatus() const {
    long status = 0;
    curl_easy_getinfo(easy.get(), CURLINFO_RESPONSE_CODE, &status);
    return status;
  }

  const int number;
  std::string reply;

 private:
  static std::size_t Take(const char* bytes, std::size_t one, std::size_t count, std::string* target) {
    target->append(bytes, one * count);
    return one * count;
  }

  const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> easy{curl_easy_init(), &curl_easy_cleanup};
  const std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)> headers;
  const std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)> route{Route(), &curl_slist_free_all};

  static curl_slist* Route() {
    curl_slist* list = nullptr;
    std::string all = std::getenv("NV_CONNECT_TO");
    for (std::size_t comma = 0; comma != std::string::npos; all.erase(0, comma + 1)) {
      comma = all.find(',');
      list = curl_slist_append(list, all.substr(0, comma).c_str());
      if (comma == std::string::npos) break;
    }
    return list;
  }
};

class Load {
 public:
  Load(int requestCount, int mostAtATime, Watch& processes)
      : requests(requestCount), atATime(mostAtATime), watch(processes) {}
  ~Load() { curl_multi_cleanup(multi); }
  Load(const Load&) = delete;
  Load& operator=(const Load&) = delete;

  // Sends the requests with the numbers from 0 on, and prints what came of it. A request counts when its reply is
  // right.
  void Run(const char* what, const std::function<Request(int)>& make) {
    int acknowledged = 0;
    int refused = 0;
    int repeated = 0;
    int next = 0;
    std::map<CURL*, std::unique_ptr<Exchange>> running;
    const auto send = [&](int number) {
      auto exchange = std::make_unique<Exchange>(number, make(number));
      curl_multi_add_handle(multi, exchange->Handle());
      running[exchange->Handle()] = std::move(exchange);
    };
    watch.Start();
    const auto start = Clock::now();
    while (next < requests && next < atATime) send(next++);
    while (!running.empty()) {
      int ignored = 0;
      curl_multi_perform(multi, &ignored);
      while (const CURLMsg* const message = curl_multi_info_read(multi, &ignored)) {
        if (message->msg != CURLMSG_DONE) continue;
        const bool came = message->data.result == CURLE_OK;
        curl_multi_remove_handle(multi, message->easy_handle);
        const auto exchange = std::move(running.extract(message->easy_handle).mapped());
        const bool processDied = !came || exchange->HttpStatus() >= 500 || exchange->reply.empty();
        if (processDied && repeated < requests) {
          ++repeated;
          send(exchange->number);
          continue;
        }
        const bool right = exchange->HttpStatus() == 200 && make(exchange->number).takes(exchange->reply);
        ++(right ? acknowledged : refused);
        if (next < requests) send(next++);
      }
      curl_multi_poll(multi, nullptr, 0, 1000, nullptr);
    }
    const std::chrono::duration<double> taken = Clock::now() - start;
    watch.Stop();
    std::printf("  %-14s %5d of %d   %4d sent again   %6.1f/s   %2d processes, %3.0f MiB\n", what, acknowledged,
                requests, repeated, requests / taken.count(), watch.mostProcesses, watch.mostMebibytes);
    std::fflush(stdout);
    complete = complete && refused == 0;
  }

  bool complete = true;

 private:
  const int requests;
  const int atATime;
  Watch& watch;
  CURLM* const multi = curl_multi_init();
};

bool Succeeded(const std::string& reply) {
  return nvsupport::service::RequestReader(reply).Word() == 0 && reply.size() >= 4;
}

std::string User(int number) {
  return "user" + std::to_string(number);
}

std::string SignedIn(int operation, int number) {
  return Int(operation) + Text(User(number)) + Text("secret " + std::to_string(number));
}

// Tries passwords of the users, one after the other, as long as it lives.
class Guesser {
 public:
  Guesser(int firstUser, int userCount)
      : thread([this, firstUser, userCount](const std::stop_token& stop) {
          for (int number = firstUser; !stop.stop_requested(); ++number) {
            const std::string guess = Int(8) + Text(User(number % userCount)) + Text("a guess") + Int(-1);
            Exchange exchange(number, {"svcapp.cgi", guess}, "10.2");
            if (curl_easy_perform(exchange.Handle()) != CURLE_OK) continue;
            ++(exchange.HttpStatus() == 429 ? refused : answered);
          }
        }) {}

  std::atomic<int> answered = 0;
  std::atomic<int> refused = 0;

 private:
  std::jthread thread;
};

bool Check(const char* what, const std::string& found, const std::string& expected) {
  std::printf("  %s: %s\n", what, found.c_str());
  return found == expected;
}

bool Run(int requests, int atATime, int guesserCount, Watch& watch) {
  Load load(requests, atATime, watch);
  constexpr int guessedUsers = 10;
  std::vector<std::unique_ptr<Guesser>> guessers;
  while (static_cast<int>(guessers.size()) < guesserCount) {
    guessers.push_back(std::make_unique<Guesser>(static_cast<int>(guessers.size()) * 10'000, guessedUsers));
  }
  std::vector<std::string> tokens(static_cast<std::size_t>(requests));
  load.Run("search", [](int) {
    const std::string points(32, '\0');  // two points, both at 0, 0
    return Request{"mapstore2.cgi", Int(101) + Int(4) + Int(2) + points + Int(0), Succeeded};
  });
  load.Run("new account", [](int number) {
    const std::string account =
        SignedIn(10, number) + Text("A Name") + Text("") + Text(User(number) + "@norvane.example");
    return Request{"svcapp.cgi", account + '\0' + Int(124) + Text("English"), Succeeded};
  });
  load.Run("sign-in", [](int number) { return Request{"svcapp.cgi", SignedIn(8, number) + Int(number), Succeeded}; });
  load.Run("token", [&](int number) {
    return Request{"svcapp.cgi", SignedIn(11, number), [&tokens, number](const std::string& reply) {
                     nvsupport::service::RequestReader reader(reply);
                     if (reader.Word() != 0) return false;
                     tokens[static_cast<std::size_t>(number)] = reader.Text(19);
                     return reader.Complete();
                   }};
  });
  load.Run("account page", [&](int number) {
    return Request{
        "svcuser.cgi?session=" + tokens[static_cast<std::size_t>(number)], "",
        [number](const std::string& page) { return page.find("<b>" + User(number) + "</b>") != std::string::npos; }};
  });
  for (const auto& guesser : guessers) {
    std::printf("  a guesser: %d guesses answered, %d refused\n", guesser->answered.load(), guesser->refused.load());
  }
  guessers.clear();
  const std::string address = std::getenv("NV_SERVICE_DATABASE");
  const auto database = nvsupport::service::OpenDatabase(address);
  bool whole =
      Check("accounts in the database", database->Run("SELECT count(*) FROM account")[0][0], std::to_string(requests));
  if (guesserCount > 0) {  // the service trusts this machine
    whole = Check("addresses of users, as the balancer tells them",
                  database->Run("SELECT count(DISTINCT address) FROM known_address")[0][0], std::to_string(requests)) &&
            whole;
  }
  if (!address.starts_with("postgresql:")) {
    whole = Check("integrity of the file", database->Run("PRAGMA integrity_check")[0][0], "ok") && whole;
  }
  return load.complete && whole;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 5 && argc != 6) {
    std::fputs("usage: nvservice-load SERVER-PID REQUESTS AT-A-TIME KILLS [GUESSERS]\n", stderr);
    return 2;
  }
  curl_global_init(CURL_GLOBAL_DEFAULT);
  Watch watch(std::atoi(argv[1]), std::atoi(argv[4]));
  const int guessers = argc > 5 ? std::atoi(argv[5]) : 0;
  const bool whole = Run(std::atoi(argv[2]), std::atoi(argv[3]), guessers, watch);
  std::puts(whole ? "  nothing is missing" : "  SOMETHING IS MISSING");
  return whole ? 0 : 1;
}
