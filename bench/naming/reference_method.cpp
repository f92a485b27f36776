// The persistent references of a drawing: a solid, references appended through the module's manager
// of persistent ids, edits under a journal, references brought up to date after each of them.
#include "bench/naming/method.h"
#include "bench/naming/reference_drawing.h"

namespace naming_bench {
namespace {

class ReferenceMethod final : public NamingMethod {
 public:
  [[nodiscard]] const char* name() const override { return "references"; }
  [[nodiscard]] bool namesAllParts() const override { return true; }
  void begin(const OdModelerBodyPtr& body, std::span<const OdModelerSubent> references) override {
    m_drawing = std::make_unique<ReferenceDrawing>(body, references);
    m_count = references.size();
  }
  void edited(const EditTrace& edit) override { m_drawing->edit(edit); }
  std::vector<Answer> answers() override {
    std::vector<Answer> result;
    for (std::size_t i = 0; i < m_count; ++i) result.push_back(m_drawing->answer(i));
    return result;
  }

 private:
  std::unique_ptr<ReferenceDrawing> m_drawing;
  std::size_t m_count = 0;
};

}  // namespace

std::unique_ptr<NamingMethod> makeReferenceMethod() { return std::make_unique<ReferenceMethod>(); }

}  // namespace naming_bench
