// Collects the English texts that the library translates, while it is built, so that none is forgotten: those of the
// dialog templates, and those that the sources pass to a function that looks texts up. It stops at an argument whose
// texts it cannot find, because nobody would translate a text that is not listed.
//
// collect_texts OUTPUT SOURCE-FOLDER: writes three C++ arrays: all texts; the texts of messages; and the texts of the
// dialogs' controls, each with the number of its dialog.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <stdexcept>
#include <string>
#include <vector>

#include "language/catalogue_reader.h"

namespace nvsupport {
namespace {

namespace fs = std::filesystem;

// A function that looks texts up, and which of its arguments, counted from 0, is a text or a table of texts.
struct Lookup {
  const char* function;
  std::size_t argument;
  bool isMessage = true;
};

constexpr Lookup lookups[] = {
    {"Translate", 0, false}, {"TranslateFormat", 0, false},
    {"ShowMessage", 2},      {"ShowMessageFormat", 2},
    {"ShowMessageArgs", 2},  {"ShowError", 0},
    {"MessageFor", 0},       {"MessageFor", 2},
};

// Arguments whose texts are collected elsewhere or that have none; the comments say which.
struct PassedOn {
  const char* file;
  const char* argument;
};

constexpr PassedOn passedOn[] = {
    {"language/translation_catalogue.cpp", "text"},    // from callers, whose calls are lookups, too
    {"language/translation_catalogue.cpp", "format"},  // likewise
    {"ui/message.cpp", "text"},                        // likewise
    {"ui/message.cpp", "format"},                      // likewise
    {"account/create_account.cpp", "text"},            // from a call of ShowError
    {"account/create_account.cpp", "refusal.text"},    // from MessageFor
    {"account/sign_in.cpp", "refusal.text"},           // likewise
    {"account/create_account.cpp", "nullptr"},         // no text for other states
    {"language/window_text.cpp", "text"},              // from the templates
};

const std::string literal = R"re("((?:[^"\\\n]|\\.)*)")re";

std::string ReadFile(const fs::path& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

// Without comments, and with adjacent literals joined.
std::string ReadSource(const fs::path& path) {
  const std::regex comment(R"re(("(?:[^"\\\n]|\\.)*"|'(?:[^'\\\n]|\\.)')|//[^\n]*)re");
  return std::regex_replace(std::regex_replace(ReadFile(path), comment, "$1"), std::regex(R"re("\s*\n\s*")re"), "");
}

// The library's headers that a source includes itself.
std::string ReadHeadersOf(const std::string& source, const fs::path& sources) {
  std::string headers;
  const std::regex include("#include " + literal);
  for (std::sregex_iterator found(source.begin(), source.end(), include), end; found != end; ++found) {
    headers += ReadSource(sources / (*found)[1].str());
  }
  return headers;
}

// The argument that begins at a place, without blanks around it; moves the place to the comma or bracket behind it.
std::string TakeArgument(const std::string& source, std::size_t& at) {
  const std::size_t begin = source.find_first_not_of(" \n", at);
  bool isInLiteral = false;
  int depth = 0;
  for (at = begin; at < source.size(); ++at) {
    const char character = source[at];
    if (isInLiteral && character == '\\') {
      ++at;
    } else if (character == '"') {
      isInLiteral = !isInLiteral;
    } else if (!isInLiteral) {
      if (depth == 0 && (character == ',' || character == ')')) break;
      depth += (character == '(' || character == '{') - (character == ')' || character == '}');
    }
  }
  return source.substr(begin, at - begin);
}

std::string CallOf(const char* function) {
  return "\\b" + std::string(function) + "\\(";
}

[[noreturn]] void Refuse(const std::string& source, const char* function, const std::string& argument) {
  throw std::runtime_error(source + ": the text in a call of " + function +
                           " is neither a literal nor a constant of the file or of a header of it: " + argument);
}

class Collector {
 public:
  // A text is the first thing behind the kind of a control, which is indented, and behind CAPTION.
  void CollectTemplates(const std::string& script) {
    Collect(script, R"re(\n *[A-Z0-9]+ +"((?:[^"\n]|"")+)")re", texts);
    const std::regex heading(" DIALOGEX ");
    std::sregex_token_iterator dialog(script.begin(), script.end(), heading, -1);
    while (++dialog != std::sregex_token_iterator()) {
      Collect(dialog->str(), R"re(\n +[A-Z0-9]+ +"((?:[^"\n]|"")+)")re", dialogs.emplace_back());
    }
  }

  void CollectSource(const fs::path& sources, const std::string& name) {
    const std::string source = ReadSource(sources / name);
    const std::string constants = source + ReadHeadersOf(source, sources);
    for (const Lookup& lookup : lookups) {
      const std::regex call(CallOf(lookup.function));
      for (std::sregex_iterator found(source.begin(), source.end(), call), end; found != end; ++found) {
        auto at = static_cast<std::size_t>(found->position() + found->length());
        std::string argument = TakeArgument(source, at);
        for (std::size_t i = 0; i < lookup.argument; ++i) argument = TakeArgument(source, ++at);
        const std::size_t before = texts.size();
        if (!HasKnownTexts(constants, name, argument)) Refuse(name, lookup.function, argument);
        if (!lookup.isMessage) continue;
        for (std::size_t i = before; i < texts.size(); ++i) messages.push_back(texts[i]);
      }
    }
  }

  std::vector<std::string> texts;
  std::vector<std::string> messages;
  std::vector<std::vector<std::string>> dialogs;  // the texts of the controls of each

 private:
  // True if the texts of the argument are collected, by this call or elsewhere.
  bool HasKnownTexts(const std::string& source, const std::string& name, const std::string& argument) {
    if (std::regex_match(argument, std::regex(literal))) {
      Collect(argument, literal, texts);
      return true;
    }
    // A parameter in a declaration, or a call that is a lookup itself.
    if (std::regex_search(argument, std::regex("^(const |std::span<|" + CallOf("MessageFor") + ")"))) return true;
    for (const PassedOn& known : passedOn) {
      if (name == known.file && argument == known.argument) return true;
    }
    if (!std::regex_match(argument, std::regex("\\w+"))) return false;
    std::smatch constant;
    const std::regex definition("\\bconstexpr [^;=]*\\b" + argument + R"re(\[\] = ((?:[^";]|"(?:[^"\\]|\\.)*")*);)re");
    if (!std::regex_search(source, constant, definition)) return false;
    Collect(constant[1].str(), literal, texts);
    return true;
  }

  // Adds the first group of each match, as the program sees that text.
  static void Collect(const std::string& source, const std::string& pattern, std::vector<std::string>& to) {
    const std::regex expression(pattern);
    for (std::sregex_iterator found(source.begin(), source.end(), expression), end; found != end; ++found) {
      const std::string text = UnescapeCatalogueText((*found)[1].str());
      if (std::ranges::find(to, text) == to.end()) to.push_back(text);
    }
  }
};

std::string LiteralOf(const std::string& text) {
  return "R\"text(" + text + ")text\"";
}

void Write(std::ofstream& stream, const char* name, const std::vector<std::string>& texts) {
  stream << "constexpr auto " << name << " = std::to_array<std::string_view>({\n";
  for (const std::string& text : texts) stream << LiteralOf(text) << ",\n";
  stream << "});\n";
}

void WriteDialogs(std::ofstream& stream, const std::vector<std::vector<std::string>>& dialogs) {
  stream << "constexpr auto dialogTexts = std::to_array<DialogText>({\n";
  for (std::size_t dialog = 0; dialog < dialogs.size(); ++dialog) {
    for (const std::string& text : dialogs[dialog]) stream << "{" << dialog << ", " << LiteralOf(text) << "},\n";
  }
  stream << "});\n";
}

int Run(const char* output, const fs::path& sources) {
  Collector collector;
  collector.CollectTemplates(ReadFile(sources / "resources/nvsupport.rc"));
  std::vector<fs::path> files;
  for (const auto& entry : fs::recursive_directory_iterator(sources)) {
    if (entry.path().extension() == ".cpp" || entry.path().extension() == ".h") files.push_back(entry.path());
  }
  std::ranges::sort(files);
  for (const fs::path& file : files)
    collector.CollectSource(sources, file.lexically_relative(sources).generic_string());
  std::ofstream stream(output, std::ios::binary);
  Write(stream, "sourceTexts", collector.texts);
  Write(stream, "messageTexts", collector.messages);
  WriteDialogs(stream, collector.dialogs);
  return collector.texts.empty() || !stream.flush() ? 1 : 0;
}

}  // namespace
}  // namespace nvsupport

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  try {
    return nvsupport::Run(argv[1], argv[2]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "collect_texts: %s\n", error.what());
    return 1;
  }
}
