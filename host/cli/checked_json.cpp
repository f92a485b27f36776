// The parser can call back while it builds the document, but then goes through all earlier elements
// of a list after each of its objects: quadratic for a list of steps. So the text is looked at
// first, without a document, and then read without calls.
#include "host/cli/checked_json.h"

#include <nlohmann/json.hpp>
#include <set>
#include <utility>
#include <vector>

#include "host/cli/cli_error.h"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;

class Check : public nlohmann::json_sax<Json> {
 public:
  Check(std::size_t maxDepth, std::function<void(const JsonFault&)> refuse)
      : m_maxDepth(maxDepth), m_refuse(std::move(refuse)) {}

  bool null() override { return true; }
  bool boolean(bool /*value*/) override { return true; }
  bool number_integer(number_integer_t /*value*/) override { return true; }
  bool number_unsigned(number_unsigned_t /*value*/) override { return true; }
  bool number_float(number_float_t /*value*/, const string_t& /*text*/) override { return true; }
  bool string(string_t& /*value*/) override { return true; }
  bool binary(binary_t& /*value*/) override { return true; }
  bool start_object(std::size_t /*elements*/) override { return enter(); }
  bool end_object() override { return leave(); }
  bool start_array(std::size_t /*elements*/) override { return enter(); }
  bool end_array() override { return leave(); }
  bool key(string_t& name) override {
    if (!m_keys.back().insert(name).second) m_refuse({JsonFault::Kind::kTwin, 0, name});
    return true;
  }
  bool parse_error(std::size_t position, const std::string& /*token*/,
                   const nlohmann::detail::exception& /*error*/) override {
    m_refuse({JsonFault::Kind::kSyntax, position, {}});
    return false;
  }

 private:
  bool enter() {
    m_keys.emplace_back();
    if (m_keys.size() > m_maxDepth) m_refuse({JsonFault::Kind::kDepth, 0, {}});
    return true;
  }
  bool leave() {
    m_keys.pop_back();
    return true;
  }

  std::size_t m_maxDepth;
  std::function<void(const JsonFault&)> m_refuse;
  std::vector<std::set<std::string>> m_keys;  // of the objects and lists that are open
};

}  // namespace

Json parseJson(const std::string& text, std::size_t maxDepth,
               const std::function<std::string(const JsonFault&)>& lineOf, ExitCode code) {
  Check check(maxDepth, [&](const JsonFault& fault) { throw CliError(lineOf(fault), code); });
  Json::sax_parse(text, &check);
  return Json::parse(text);
}

}  // namespace cli
