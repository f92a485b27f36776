// Naming by number: what a program does that stores the index of a face.
#include "bench/naming/method.h"

namespace naming_bench {
namespace {

class IndexMethod final : public NamingMethod {
 public:
  [[nodiscard]] const char* name() const override { return "index"; }
  void begin(const OdModelerBodyPtr& body, std::span<const OdModelerSubent> references) override {
    m_body = body;
    m_references.assign(references.begin(), references.end());
  }
  void edited(const EditTrace& edit) override { m_body = edit.after; }
  std::vector<Answer> answers() override {
    std::vector<Answer> result;
    for (const OdModelerSubent reference : m_references) {
      Answer& answer = result.emplace_back();
      if (!m_body->hasSubent(reference)) continue;
      answer = {Answer::Kind::kNamed, {reference}, {}};
    }
    return result;
  }

 private:
  OdModelerBodyPtr m_body;
  std::vector<OdModelerSubent> m_references;
};

}  // namespace

std::unique_ptr<NamingMethod> makeIndexMethod() { return std::make_unique<IndexMethod>(); }

}  // namespace naming_bench
