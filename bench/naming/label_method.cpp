// Naming by Open CASCADE's labels; see label_naming.h.
#include <memory>

#include "bench/naming/label_naming.h"
#include "bench/naming/method.h"

namespace naming_bench {
namespace {

class LabelMethod final : public NamingMethod {
 public:
  [[nodiscard]] const char* name() const override { return "labels"; }
  void begin(const OdModelerBodyPtr& body, std::span<const OdModelerSubent> references) override {
    m_naming = std::make_unique<LabelNaming>();
    m_naming->begin(body);
    m_naming->select(references);
    m_count = references.size();
  }
  void edited(const EditTrace& edit) override { m_naming->edited(edit); }
  std::vector<Answer> answers() override {
    std::vector<Answer> result(m_count);
    for (std::size_t i = 0; i < m_count; ++i) {
      m_naming->solve(i, result[i].subents);
      if (!result[i].subents.empty()) result[i].kind = Answer::Kind::kNamed;
    }
    return result;
  }

 private:
  std::unique_ptr<LabelNaming> m_naming;
  std::size_t m_count = 0;
};

}  // namespace

std::unique_ptr<NamingMethod> makeLabelMethod() { return std::make_unique<LabelMethod>(); }

}  // namespace naming_bench
