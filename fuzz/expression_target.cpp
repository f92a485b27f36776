// Fuzz target: texts of expressions.
//
// Input: one byte with the number of the drawing's unit of length, and the text in UTF-8.
#include <cmath>

#include "fuzz/fuzz_target.h"
#include "platform/expressions/compile.h"
#include "platform/expressions/names.h"
#include "platform/expressions/unit_factor.h"

namespace {

/// Names of one letter, with a dimension by the letter.
class FuzzScope : public OdExpression::NameScope {
 public:
  static constexpr double kValues[] = {3.0, 0.0, -1e300, 1e-300};

  std::optional<OdExpression::Binding> find(const OdString& name) override {
    constexpr OdExpression::Dimension kDimensions[] = {{},
                                                       OdExpression::Dimension::length(),
                                                       OdExpression::Dimension::angle(),
                                                       OdExpression::Dimension::ratio()};
    if (name.getLength() != 1) return std::nullopt;
    const auto slot = static_cast<OdUInt32>(name.getAt(0)) % 4;
    return OdExpression::Binding{slot, kDimensions[slot]};
  }
};

void requireFinding(const OdExpression::Diagnostic& diagnostic, const OdString& text) {
  fuzzRequire(diagnostic.column >= 1 && diagnostic.column <= text.getLength() + 1,
              "a column outside of the text");
  fuzzRequire(!diagnostic.found.isEmpty() && !diagnostic.expected.isEmpty(),
              "a refusal without words");
}

void evaluate(const OdExpression::Program& program, const OdString& text) {
  double value = NAN;
  if (program.evaluate(FuzzScope::kValues, value)) {
    fuzzRequire(std::isfinite(value), "a value that is not finite");
  } else {
    requireFinding(program.explain(FuzzScope::kValues), text);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const OdString text(std::string(data + 1, data + size));
  FuzzScope scope;
  OdExpression::Program program;
  OdExpression::Diagnostic diagnostic;
  const bool compiles = compile(text, scope, {data[0] % 24 - 1, {}}, program, diagnostic);
  if (compiles) {
    evaluate(program, text);
  } else {
    requireFinding(diagnostic, text);
  }

  std::vector<OdExpression::Mention> mentions;
  const bool isFormed = OdExpression::listNames(text, mentions, diagnostic);
  fuzzRequire(isFormed || !compiles, "a compiled text that is not well formed");
  if (!isFormed) requireFinding(diagnostic, text);
  for (const OdExpression::Mention& mention : mentions) {
    fuzzRequire(OdExpression::renameInText(text, mention.name, mention.name).iEquals(text),
                "a rename to itself that changes more than case");
  }
  double factor = NAN;
  if (OdExpression::unitFactor(text, text, factor, diagnostic)) {
    fuzzRequire(std::abs(factor - 1.0) < 1e-12, "a unit unlike itself");
  }
  return 0;
}

std::vector<FuzzInput> fuzzCorpus() {
  const std::string texts[] = {
      "a * 2 + 25.4 mm - 1 1/2 in",
      "if(a > 2 ft 3 in and not b == 1e-3, max(a, 1), c % 2)",
      "-sind(30)^2 ? round(a, 5 mm) : 5'-3 1/2\"",
      "3 kg/m^3 * (2 x) + 30\xc2\xb0 15' 20\" + 2 N\xc2\xb7m",
      "\xe4\xb8\xad || (a) mm <= 7 \xc2\xb5in != clamp(1, 2, 3)",
      "kg m^2/s^2",
  };
  std::vector<FuzzInput> corpus;
  for (const std::string& text : texts) {
    FuzzInput input{5};
    input.insert(input.end(), text.begin(), text.end());
    corpus.push_back(input);
  }
  return corpus;
}
