// Downloads from a server on loopback against `curl -o` of the same file in the same run: wall time, processor time
// and peak memory, each in a process of its own. Ratios of 1 and more are in our favour. TMPDIR says on which disk. Run
// it by itself: a new process begins with the peak of the one that it was forked from.
#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <nvsupport/nvsupport.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/sendfile.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr char host[] = "web.example";
constexpr std::int64_t mebibyte = std::int64_t{1024} * 1024;

// Sends one file of `size` bytes to whoever asks, from a process of its own that ends with the object.
class FileServer {
 public:
  explicit FileServer(std::int64_t fileSize) : size(fileSize), content(memfd_create("content", MFD_CLOEXEC)) {
    std::string part(mebibyte, '\0');
    std::generate(part.begin(), part.end(), [state = 1u]() mutable {
      state = state * 1664525 + 1013904223;
      return static_cast<char>(state >> 24);
    });
    for (std::int64_t at = 0; at < size; at += mebibyte) {
      if (write(content, part.data(), part.size()) < 0) std::abort();
    }
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* const name = reinterpret_cast<sockaddr*>(&address);
    if (bind(listener, name, length) != 0 || listen(listener, 8) != 0 || getsockname(listener, name, &length) != 0) {
      std::abort();
    }
    port = ntohs(address.sin_port);
    process = fork();
    if (process == 0) Serve();
  }
  ~FileServer() {
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
    close(listener);
    close(content);
  }
  FileServer(const FileServer&) = delete;
  FileServer& operator=(const FileServer&) = delete;

  int Port() const { return port; }

 private:
  [[noreturn]] void Serve() const {
    std::signal(SIGPIPE, SIG_IGN);
    while (true) {
      const int connection = accept(listener, nullptr, nullptr);
      std::string request;
      char part[4096];
      for (ssize_t got; request.find("\r\n\r\n") == std::string::npos && (got = read(connection, part, 4096)) > 0;) {
        request.append(part, static_cast<std::size_t>(got));
      }
      const std::string head = "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(size) + "\r\n\r\n";
      bool open = write(connection, head.data(), head.size()) > 0;
      for (off_t sent = 0; open && sent < size;) {
        open = sendfile(connection, content, &sent, static_cast<std::size_t>(size - sent)) > 0;
      }
      close(connection);
    }
  }

  std::int64_t size;
  int content;
  int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  int port = 0;
  pid_t process = -1;
};

struct Cost {
  double wall = 0;       // seconds
  double processor = 0;  // seconds
  double peak = 0;       // MiB of memory
};

// What it costs to run `action` in a child process; the child ends with its result.
Cost CostOf(const std::function<bool()>& action, bool& good) {
  const auto start = Clock::now();
  const pid_t child = fork();
  if (child == 0) _exit(action() ? 0 : 1);
  int status = 0;
  rusage usage{};
  wait4(child, &status, 0, &usage);
  good = good && status == 0;
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return {std::chrono::duration<double>(Clock::now() - start).count(),
          seconds(usage.ru_utime) + seconds(usage.ru_stime), static_cast<double>(usage.ru_maxrss) / 1024};
}

double Median(const std::vector<Cost>& costs, double Cost::*figure) {
  std::vector<double> values;
  values.reserve(costs.size());
  for (const Cost& cost : costs) values.push_back(cost.*figure);
  std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
  return values[values.size() / 2];
}

void BM_Download(benchmark::State& state) {
  const std::int64_t size = state.range(0) * mebibyte;
  const FileServer server(size);
  const std::string port = std::to_string(server.Port());
  setenv("NV_CONNECT_TO", (std::string(host) + ":80:127.0.0.1:" + port).c_str(), 1);
  std::string folder = (fs::temp_directory_path() / "nvsupport-bench-XXXXXX").string();
  if (mkdtemp(folder.data()) == nullptr) return state.SkipWithError("no temporary folder");
  const std::string file = folder + "/file";
  const std::string url = "http://127.0.0.1:" + port + "/file";

  bool good = true;
  std::vector<Cost> ours;
  std::vector<Cost> curls;
  const auto measure = [&](std::vector<Cost>& costs, const std::function<bool()>& action) {
    sync();  // what others left to be written is not ours
    costs.push_back(CostOf(action, good));
    std::error_code ignored;
    good = good && fs::file_size(file, ignored) == static_cast<std::uintmax_t>(size);
    fs::remove(file, ignored);
  };
  for (auto _ : state) {
    measure(curls, [&] { return execlp("curl", "curl", "-s", "-o", file.c_str(), url.c_str(), nullptr) == 0; });
    measure(ours, [&] { return NSDownloadWebFileProgress(host, "file", file.c_str(), nullptr, nullptr, nullptr); });
    state.SetIterationTime(ours.back().wall);
  }
  if (!good) state.SkipWithError("a download failed");
  state.SetBytesProcessed(state.iterations() * size);
  state.counters["wall_ratio"] = Median(curls, &Cost::wall) / Median(ours, &Cost::wall);
  state.counters["cpu_ratio"] = Median(curls, &Cost::processor) / Median(ours, &Cost::processor);
  state.counters["peak_MiB"] = Median(ours, &Cost::peak);
  state.counters["curl_peak_MiB"] = Median(curls, &Cost::peak);
  fs::remove_all(folder);
}
BENCHMARK(BM_Download)
    ->Name("download_MiB")
    ->Arg(16)
    ->Arg(256)
    ->Arg(1024)
    ->UseManualTime()
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);

}  // namespace
