// A way of naming subentities, as the benchmark drives it.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "bench/naming/stage.h"

namespace naming_bench {

struct Answer {
  enum class Kind { kNamed, kLost, kAmbiguous };
  Kind kind = Kind::kLost;
  std::vector<OdModelerSubent> subents;  ///< rising; several when the method names all parts
  std::string note;                      ///< for reports
};

class NamingMethod {
 public:
  virtual ~NamingMethod() = default;
  [[nodiscard]] virtual const char* name() const = 0;
  /// Whether it can name several subentities for one, and is held to naming all.
  [[nodiscard]] virtual bool namesAllParts() const { return false; }

  /// A fresh part with references to subentities of its body.
  virtual void begin(const OdModelerBodyPtr& body, std::span<const OdModelerSubent> references) = 0;
  /// One edit after the other.
  virtual void edited(const EditTrace& edit) = 0;
  /// What each reference is now, in the order of begin().
  virtual std::vector<Answer> answers() = 0;
};

/// The number stays.
std::unique_ptr<NamingMethod> makeIndexMethod();
/// The nearest subentity of the same kind and like parameters; see signature_method.cpp.
std::unique_ptr<NamingMethod> makeSignatureMethod();
/// Open CASCADE's own naming; see label_method.cpp.
std::unique_ptr<NamingMethod> makeLabelMethod();
/// The persistent references of a drawing; see reference_method.cpp.
std::unique_ptr<NamingMethod> makeReferenceMethod();

}  // namespace naming_bench
