// Fuzz target: words of a command line as names, handles, numbers, types and values.
//
// Input: one byte that chooses the reader, and the word.
#include <nlohmann/json.hpp>

#include "fuzz/fuzz_support.h"
#include "fuzz/fuzz_target.h"
#include "host/cli/cli_error.h"
#include "host/cli/find_object.h"
#include "host/cli/model_lookup.h"
#include "host/cli/new_name.h"
#include "host/cli/operation.h"
#include "host/cli/property_json.h"
#include "host/cli/property_text.h"
#include "host/cli/text_output.h"

namespace {

OdDbDatabase& drawing() {
  static const OdDbDatabasePtr drawing = fuzzDrawing(5, 40);
  return *drawing;
}

using Reader = void (*)(const std::string& word);

void readName(const std::string& word) {
  cli::requireFreeName(drawing(), word);
  fuzzRequire(cli::isUtf8(word) && cli::columnsOf(word) <= cli::kMaxNameLength,
              "a name beyond its bounds");
}

void readTyped(const std::string& word) {
  const cli::PropertyNode node = cli::parseTypedJson(word, drawing());
  const std::string again = cli::typedJson(node).dump();
  fuzzRequire(cli::typedJson(cli::parseTypedJson(again, drawing())).dump() == again,
              "a value that is not stable");
}

void readScalar(const std::string& word) {
  for (const VdmPropertyType type :
       {VdmPropertyType::kString, VdmPropertyType::kDouble, VdmPropertyType::kLong}) {
    try {
      const cli::PropertyNode node = cli::parseScalar(type, word, drawing());
      fuzzRequire(cli::nodeText(node) == cli::oneLine(cli::nodeText(node)), "more than one line");
    } catch (const cli::CliError& error) {
      fuzzRequire(*error.what() != '\0', "a refusal without words");
    }
  }
}

constexpr Reader kReaders[] = {
    readName,
    readTyped,
    readScalar,
    [](const std::string& word) { (void)cli::parseKind(word); },
    [](const std::string& word) { (void)cli::openByHandle(drawing(), word, OdDb::kForRead); },
    [](const std::string& word) { (void)cli::findReference(drawing(), word); },
    [](const std::string& word) { (void)cli::findEntity(drawing(), word); },
    [](const std::string& word) { (void)cli::findComponentBlock(drawing(), word); },
    [](const std::string& word) { (void)cli::parsePoint(word); },
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  fuzzStart();
  const std::string word(data + 1, data + size);
  const std::string shown = cli::oneLine(word);
  fuzzRequire(cli::isUtf8(shown) && shown.find_first_of("\n\x1b") == std::string::npos,
              "a word that cannot be shown");
  try {
    kReaders[data[0] % std::size(kReaders)](word);
  } catch (const cli::CliError& error) {
    fuzzRequire(*error.what() != '\0', "a refusal without words");
  }
  return 0;
}

std::vector<FuzzInput> fuzzCorpus() {
  const std::string words[] = {
      "seat",
      "2A",
      "12.5e-3",
      "array:double",
      "map:string:value",
      "soft-pointer:1F",
      "1, 2,-3",
      R"({"type": "array", "of": "long", "value": [1, 2]})",
      R"({"type": "map", "key": "string", "of": "bool", "value": {"a": true}})",
      "\xc3\xa4\xe2\x82\xac\xf0\x9f\x92\x96"};
  std::vector<FuzzInput> corpus;
  for (std::size_t reader = 0; reader < std::size(kReaders); ++reader) {
    for (const std::string& word : words) {
      FuzzInput input{static_cast<std::uint8_t>(reader)};
      input.insert(input.end(), word.begin(), word.end());
      corpus.push_back(input);
    }
  }
  return corpus;
}
