// The only source that includes CLI11, which takes long to compile.
#include "command_line.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <cmath>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include "library.h"
#include "system.h"

namespace nvhost {
namespace {

namespace fs = std::filesystem;

constexpr const char* exitCodes =
    "Exit codes:\n"
    "  0    done\n"
    "  1    an unexpected failure, such as no memory left\n"
    "  2    wrong arguments\n"
    "  3    the support library cannot be loaded\n"
    "  4    a point of the area is out of range (latitude -90 to 90, longitude -400 to 400)\n"
    "  5    the service answered and has no products for the area\n"
    "  6    no products, and no sign that the service answered\n"
    "  7    the transfer failed\n"
    "  8    no session token: the sign-in was cancelled or refused, or the service is out of reach\n"
    "  9    standard output cannot be written\n"
    "  10   there is no screen for the window of gui or the sign-in of token\n"
    "  11   incomplete: the server closed before the whole file was there\n"
    "  130  stopped with Ctrl-C (143: by SIGTERM)";

constexpr double largestLatitude = 90;
constexpr double largestLongitude = 400;

MapShopPoint ParsePoint(const std::string& text) {
  MapShopPoint point = {};
  const char* const end = text.data() + text.size();
  const auto latitude = std::from_chars(text.data(), end, point.latitude);
  const bool comma = latitude.ec == std::errc() && latitude.ptr != end && *latitude.ptr == ',';
  const auto longitude = comma ? std::from_chars(latitude.ptr + 1, end, point.longitude) : latitude;
  if (!comma || longitude.ec != std::errc() || longitude.ptr != end) {
    throw CLI::ValidationError(text, "not a point; write LATITUDE,LONGITUDE in degrees, such as 45.92,6.87");
  }
  // Written so that a NaN fails, too.
  const bool inRange = std::abs(point.latitude) <= largestLatitude && std::abs(point.longitude) <= largestLongitude;
  if (!inRange) {
    throw Failure(areaOutOfRange, text + " is out of range: latitude -90 to 90, longitude -400 to 400");
  }
  return point;
}

// What is wrong with an argument, in the form that CLI11 wants: an empty text if nothing is.

std::string WhyNoHost(const std::string& host) {
  const bool isAddress = host.starts_with('[') && host.ends_with(']');
  const bool isName = !host.empty() && host.find_first_of(isAddress ? "/" : ":/") == std::string::npos;
  return isName ? "" : '"' + host + "\" is no name of a server; it has no scheme, port or path";
}

std::string WhyNoDestination(const std::string& file) {
  if (file == standardOutput) return {};
  const fs::path folder = fs::absolute(file).parent_path();
  std::error_code ignored;
  if (fs::is_directory(file, ignored)) return file + " is a folder";
  if (!fs::is_directory(folder, ignored)) return "there is no folder " + folder.string();
  return TakesNewFiles(folder.string()) ? "" : "nothing can be written in " + folder.string();
}

// CLI11 reads the arguments into the members; the callback of the command puts its work into the request.
class Parser {
 public:
  explicit Parser(Request& asked) : request(asked) {
    app.allow_windows_style_options(false);  // a path on a server begins with a slash
    app.add_option("--library", request.library, "The support library to load")
        ->type_name("PATH")
        ->capture_default_str();
    app.set_version_flag("--version", "nvhost " NVSUPPORT_VERSION);
    app.add_flag("--trace", request.trace, "Let the library tell on standard error what it does, as NV_TRACE=all");
    app.require_subcommand(1);
    app.fallthrough();
    app.failure_message(&WhatIsWrong);
    AddSearch();
    AddDownload();
    AddRead();
    AddWhoAmI();
    AddToken();
    AddGui();
    app.footer(exitCodes);  // set last: a command copies it when it is added
  }

  // The exit code.
  int Parse(int argc, char** argv) {
    try {
      app.parse(argc, argv);
      return done;
    } catch (const CLI::ParseError& error) {
      return app.exit(error) == 0 ? done : wrongArguments;
    }
  }

 private:
  static std::string WhatIsWrong(const CLI::App* app, const CLI::Error& error) {
    const std::vector<std::string> unknown = app->remaining();
    std::string reason = error.what();
    // CLI11 does not name a word that stands where a command should.
    if (app->get_subcommands().empty() && !unknown.empty()) {
      reason = (unknown[0].starts_with('-') ? "there is no option " : "there is no command ") + unknown[0];
    }
    return "nvhost: " + reason + " (see nvhost --help)\n";
  }

  void AddSearch() {
    CLI::App* const command = app.add_subcommand("search", "List the products of the map shop for an area");
    command->add_option("points", points, "Corners or outline of the area, in degrees; none: everywhere")
        ->type_name("LAT,LON");
    command->add_flag("--json", search.json, "Write JSON");
    command->callback([this] {
      for (const std::string& point : points) search.points.push_back(ParsePoint(point));
      request.work = [search = search](const NVSupportModule& support) { Search(support, search); };
    });
  }

  void AddDownload() {
    CLI::App* const command = app.add_subcommand("download", "Download a file from a web server");
    command->add_option("host", download.host, "Name of the web server")
        ->required()
        ->type_name("HOST")
        ->check(WhyNoHost);
    command->add_option("path", download.path, "Path on the server")->required()->type_name("PATH");
    command->add_option("file", download.file, "Local file to write; - for standard output")
        ->required()
        ->type_name("FILE")
        ->check(WhyNoDestination);
    command->callback([this] {
      request.work = [download = download](const NVSupportModule& support) { Download(support, download); };
    });
  }

  void AddRead() {
    CLI::App* const command =
        app.add_subcommand("read", "Write some bytes of a file on a web server to standard output");
    command->add_option("host", read.host, "Name of the web server")->required()->type_name("HOST")->check(WhyNoHost);
    command->add_option("path", read.path, "Path on the server")->required()->type_name("PATH");
    command->add_option("offset", read.offset, "First byte, counted from 0")
        ->required()
        ->type_name("OFFSET")
        ->check(CLI::Range(std::int64_t{0}, std::numeric_limits<std::int64_t>::max()));
    command->add_option("length", read.length, "Number of bytes")
        ->required()
        ->type_name("LENGTH")
        ->check(CLI::Range(std::int32_t{1}, std::numeric_limits<std::int32_t>::max()));
    command->callback(
        [this] { request.work = [read = read](const NVSupportModule& support) { Read(support, read); }; });
  }

  CLI::Option* AddProduct(CLI::App& command) {
    return command.add_option("--product", product, "Product whose settings to use")->type_name("NAME");
  }

  void AddWhoAmI() {
    CLI::App* const command = app.add_subcommand("whoami", "Show the user ID and the identifier of this computer");
    AddProduct(*command)->required();
    command->add_flag("--json", whoAmIJson, "Write JSON");
    command->callback([this] {
      request.work = [name = product, json = whoAmIJson](const NVSupportModule& support) {
        WhoAmI(support, name, json);
      };
    });
  }

  void AddToken() {
    CLI::App* const command = app.add_subcommand("token", "Get a session token, signing in if no password is saved");
    AddProduct(*command)->required();
    command->callback(
        [this] { request.work = [name = product](const NVSupportModule& support) { Token(support, name); }; });
  }

  void AddGui() {
    CLI::App* const command = app.add_subcommand("gui", "Open a window with the account, the map shop and downloads");
    AddProduct(*command)->capture_default_str();
    command->callback([this] {
      request.work = [library = request.library, name = product](const NVSupportModule&) { Gui(library, name); };
    });
  }

  Request& request;
  CLI::App app{"Searches the map shop, moves files and signs in, through the nvsupport library.", "nvhost"};
  std::vector<std::string> points;
  SearchArguments search;
  DownloadArguments download;
  ReadArguments read;
  bool whoAmIJson = false;
  std::string product = "Map Viewer";
};

}  // namespace

Request ReadCommandLine(int argc, char** argv) {
  Request request;
  request.library = FindLibrary();
  request.exitCode = Parser(request).Parse(argc, argv);
  return request;
}

}  // namespace nvhost
