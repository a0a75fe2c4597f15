// The jobs of web_bench.cpp done by plain libcurl programs, with a fresh handle for each transfer and with one that is
// kept, by curl and wget, and by libcurl with protobuf.
#include <curl/curl.h>
#include <malloc.h>
#include <strings.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "bench_data.h"
#include "local_server.h"
#include "map_shop.pb.h"

namespace nvsupport::bench {
namespace {

constexpr std::int64_t mebibyte = std::int64_t{1} << 20;

std::size_t ToText(char* data, std::size_t unit, std::size_t size, void* text) {
  static_cast<std::string*>(text)->append(data, unit * size);
  return unit * size;
}

std::size_t ToFile(char* data, std::size_t unit, std::size_t size, void* file) {
  return std::fwrite(data, unit, size, static_cast<std::FILE*>(file));
}

// Transfers with one handle, which is new each time unless it is kept.
class Client {
 public:
  explicit Client(bool keepHandle, bool delayed = false) : keep(keepHandle) {
    curl_global_init(CURL_GLOBAL_DEFAULT);
    const LocalServer& server = Server();
    for (const std::string& route :
         {Route(webHost, 80, server.plain), Route(delayedHost, 80, server.delayedPlain),
          Route(serviceHost, 80, server.plain), Route(serviceHost, 443, delayed ? server.delayedTls : server.tls)}) {
      routes.reset(curl_slist_append(routes.release(), route.c_str()));
    }
  }

  // body: null for a GET. range: null for all.
  bool Transfer(const std::string& url, const std::string* body, const char* range, curl_write_callback write,
                void* target) {
    if (!keep || !easy) easy.reset(curl_easy_init());
    CURL* const handle = easy.get();
    curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
    curl_easy_setopt(handle, CURLOPT_CONNECT_TO, routes.get());
    curl_easy_setopt(handle, CURLOPT_CAINFO, Server().trust.c_str());
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, write);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, target);
    curl_easy_setopt(handle, CURLOPT_RANGE, range);
    if (body != nullptr) {
      curl_easy_setopt(handle, CURLOPT_POSTFIELDS, body->data());
      curl_easy_setopt(handle, CURLOPT_POSTFIELDSIZE, static_cast<long>(body->size()));
    }
    return curl_easy_perform(handle) == CURLE_OK;
  }

 private:
  struct Free {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
  };
  bool keep;
  std::unique_ptr<curl_slist, Free> routes;
  std::unique_ptr<CURL, Free> easy;
};

std::string Url(const char* host, const std::string& path, bool secure = false) {
  return std::string(secure ? "https://" : "http://") + host + '/' + path;
}

struct Record {
  std::int32_t firstValue;
  char title[200], shortText[100], fileReference[1000];
  std::int32_t secondValue;
};

// Trusts no length that it reads.
class Reader {
 public:
  explicit Reader(const std::string& reply) : bytes(reply) {}
  std::int32_t Word() {
    std::int32_t value = 0;
    if (bytes.size() - at < sizeof value) throw std::out_of_range("the reply is cut off");
    std::memcpy(&value, bytes.data() + at, sizeof value);
    at += sizeof value;
    return value;
  }
  template <std::size_t width>
  void Text(char (&field)[width]) {
    const auto length = static_cast<std::uint32_t>(Word());
    if ((bytes.size() - at) / 2 < length) throw std::out_of_range("the reply is cut off");
    const std::size_t taken = std::min<std::size_t>(length, width - 1);
    for (std::size_t i = 0; i < taken; ++i) field[i] = bytes[at + 2 * i];
    field[taken] = '\0';
    at += std::size_t{2} * length;
  }

 private:
  const std::string& bytes;
  std::size_t at = 0;
};

// The title of a package tells that it is one.
void MarkPackage(Record& record) {
  constexpr std::string_view prefix = "Package: ";
  const char* const suffix = std::strrchr(record.fileReference, '.');
  if (suffix == nullptr || strcasecmp(suffix, ".nvpkg") != 0) return;
  const std::size_t kept = std::min(std::strlen(record.title), sizeof record.title - 1 - prefix.size());
  std::memmove(record.title + prefix.size(), record.title, kept);
  prefix.copy(record.title, prefix.size());
  record.title[prefix.size() + kept] = '\0';
}

std::string SearchRequest(std::int64_t items) {
  const std::int32_t words[] = {101, 4, 1};
  const double point[] = {0, static_cast<double>(items) / 1000};
  std::string body(reinterpret_cast<const char*>(words), sizeof words);
  return body.append(reinterpret_cast<const char*>(point), sizeof point).append(4, '\0');
}

// Does what the library does: checks every length, gives whole records of the host's form and marks packages in their
// titles. Keeps its handle. Warm, it also keeps the memory of the reply and of the records from one search to the next;
// cold, both go back to the system each time, as those of a program that searches once in a while.
void LibcurlSearch(benchmark::State& state, bool warm) {
  if (!warm) mallopt(M_MMAP_THRESHOLD, 128 * 1024);  // or the allocator would learn to keep them
  Client client(true);
  const std::string request = SearchRequest(state.range(0));
  std::string reply;
  std::vector<Record> records;
  const double before = BeginPeak();
  const auto search = [&] {
    if (!warm) {
      std::string().swap(reply);
      std::vector<Record>().swap(records);
    }
    reply.clear();
    records.clear();
    if (!client.Transfer(Url(serviceHost, "cgi-bin/mapstore2.cgi"), &request, nullptr, &ToText, &reply)) {
      return state.SkipWithError("the search failed");
    }
    Reader reader(reply);
    reader.Word();
    reader.Word();
    std::int32_t left = reader.Word();
    records.reserve(static_cast<std::size_t>(left));
    for (; left > 0; --left) {
      Record& record = records.emplace_back();
      reader.Text(record.title);
      record.firstValue = reader.Word();
      reader.Text(record.shortText);
      reader.Text(record.fileReference);
      record.secondValue = reader.Word();
      MarkPackage(record);
    }
    for (const Record& record : records) {
      Record taken;
      benchmark::DoNotOptimize(std::memcpy(&taken, &record, sizeof taken));
    }
    if (records.size() != static_cast<std::size_t>(state.range(0))) state.SkipWithError("records are missing");
  };
  search();  // for which the server makes its reply
  for (auto _ : state) search();
  state.counters["peak_kB"] = PeakKilobytes() - before;
}

// Warm, too: the message keeps its memory.
void ProtobufSearch(benchmark::State& state) {
  Client client(true);
  const std::string request = SearchRequest(state.range(0));
  std::string bytes;
  peers::Reply reply;
  const auto search = [&] {
    bytes.clear();
    const bool got = client.Transfer(Url(serviceHost, "protobuf"), &request, nullptr, &ToText, &bytes);
    if (got && reply.ParseFromString(bytes) && reply.items_size() == state.range(0)) return;
    state.SkipWithError("records are missing");
  };
  search();  // for which the server makes its reply
  for (auto _ : state) search();
}

void LibcurlDownload(benchmark::State& state) {
  Client client(false);
  const std::string path = TemporaryFolder() + "/file";
  for (auto _ : state) {
    std::FILE* const file = std::fopen(path.c_str(), "wb");
    const bool got = client.Transfer(Url(webHost, std::to_string(state.range(0))), nullptr, nullptr, &ToFile, file);
    if (std::fclose(file) != 0 || !got) state.SkipWithError("the download failed");
  }
}

void ProgramDownload(benchmark::State& state, const char* program) {
  const std::string url = "http://127.0.0.1:" + std::to_string(Server().plain) + '/' + std::to_string(state.range(0));
  const std::string command = std::string(program) + " '" + TemporaryFolder() + "/file' " + url;
  for (auto _ : state) {
    if (std::system(command.c_str()) != 0) state.SkipWithError("the download failed");
  }
}

void RangedReads(benchmark::State& state, const char* host, int times, bool keep) {
  Client client(keep);
  for (auto _ : state) {
    for (int i = 0; i < times; ++i) {
      std::string bytes;
      const std::string range = std::to_string(i) + '-' + std::to_string(i + state.range(0) - 1);
      client.Transfer(Url(host, "1000000000"), nullptr, range.c_str(), &ToText, &bytes);
      if (bytes.size() != static_cast<std::size_t>(state.range(0))) state.SkipWithError("the read failed");
    }
  }
}

void Exchanges(benchmark::State& state, int times, bool keep, bool delayed, bool warm) {
  Client client(keep, delayed);
  const std::string request(16, '\0');
  const auto exchange = [&] {
    std::string reply;
    return client.Transfer(Url(serviceHost, "cgi-bin/svcapp.cgi", true), &request, nullptr, &ToText, &reply);
  };
  if (warm && !exchange()) state.SkipWithError("the exchange failed");
  for (auto _ : state) {
    for (int i = 0; i < times; ++i) {
      if (!exchange()) state.SkipWithError("the exchange failed");
    }
  }
}

const auto searchSizes = [](auto* bench) { bench->Arg(100)->Arg(10000)->Arg(100000)->UseRealTime(); };
const auto fileSizes = [](auto* bench) { bench->Arg(1024)->Arg(10 * mebibyte)->Arg(1024 * mebibyte)->UseRealTime(); };
const auto readSizes = [](auto* bench) { bench->Arg(4096)->Arg(64 * mebibyte)->UseRealTime(); };

BENCHMARK_CAPTURE(LibcurlSearch, warm, true)->Name("map_shop_search:libcurl warm")->Apply(searchSizes);
BENCHMARK_CAPTURE(LibcurlSearch, cold, false)->Name("map_shop_search:libcurl cold")->Apply(searchSizes);
BENCHMARK(ProtobufSearch)->Name("map_shop_search:libcurl+protobuf warm")->Apply(searchSizes);
BENCHMARK(LibcurlDownload)->Name("download:libcurl")->Apply(fileSizes);
BENCHMARK_CAPTURE(ProgramDownload, curl, "curl -s -o")->Name("download:curl")->Apply(fileSizes);
BENCHMARK_CAPTURE(ProgramDownload, wget, "wget -q -O")->Name("download:wget")->Apply(fileSizes);
BENCHMARK_CAPTURE(RangedReads, once, webHost, 1, false)->Name("ranged_read:libcurl")->Apply(readSizes);
BENCHMARK_CAPTURE(RangedReads, many, webHost, 50, false)->Name("ranged_read_50:libcurl")->Arg(4096)->UseRealTime();
BENCHMARK_CAPTURE(RangedReads, kept, webHost, 50, true)->Name("ranged_read_50:libcurl kept")->Arg(4096)->UseRealTime();
BENCHMARK_CAPTURE(RangedReads, far, delayedHost, 50, false)
    ->Name("ranged_read_50_25ms:libcurl")
    ->Arg(4096)
    ->Iterations(1);
BENCHMARK_CAPTURE(RangedReads, farKept, delayedHost, 50, true)
    ->Name("ranged_read_50_25ms:libcurl kept")
    ->Arg(4096)
    ->Iterations(1);
BENCHMARK_CAPTURE(Exchanges, chain, 3, false, true, false)->Name("account_chain_25ms:libcurl")->Iterations(1);
BENCHMARK_CAPTURE(Exchanges, chainKept, 3, true, true, false)->Name("account_chain_25ms:libcurl kept")->Iterations(1);
BENCHMARK_CAPTURE(Exchanges, first, 1, false, false, false)->Name("tls_exchange_first:libcurl")->Iterations(1);
BENCHMARK_CAPTURE(Exchanges, next, 1, false, false, true)->Name("tls_exchange_following:libcurl")->UseRealTime();
BENCHMARK_CAPTURE(Exchanges, kept, 1, true, false, true)->Name("tls_exchange_following:libcurl kept")->UseRealTime();

}  // namespace
}  // namespace nvsupport::bench
