// Products and their occurrences, as exchange files hold them.
#include "platform/modeler/assembly.h"

#include <algorithm>

namespace {

enum class Visit : OdUInt8 { kNew, kOpen, kDone };

OdStatus invalid(const OdModelerProduct& product, const wchar_t* what, std::size_t number) {
  OdString text;
  text.format(L"product '%ls' %ls %u", product.uniqueId.c_str(), what,
              static_cast<unsigned>(number));
  return {eInvalidInput, text};
}

// Depth-first walk with its own stack: how deep an assembly nests is up to the file.
class CycleSearch {
 public:
  explicit CycleSearch(const std::vector<OdModelerProduct>& products)
      : m_products(products), m_visits(products.size(), Visit::kNew) {}

  OdStatus run() {
    for (std::size_t i = 0; i < m_products.size(); ++i) {
      if (m_visits[i] != Visit::kNew) continue;
      if (OdStatus status = runFrom(i); !status.ok()) return status;
    }
    return {};
  }

 private:
  struct Step {
    std::size_t product;
    std::size_t next;
  };

  OdStatus runFrom(std::size_t start) {
    std::vector<Step> path{{start, 0}};
    m_visits[start] = Visit::kOpen;
    while (!path.empty()) {
      Step& step = path.back();
      const OdModelerProduct& product = m_products[step.product];
      if (step.next == product.occurrences.size()) {
        m_visits[step.product] = Visit::kDone;
        path.pop_back();
        continue;
      }
      const std::size_t child = product.occurrences[step.next++].product;
      if (m_visits[child] == Visit::kOpen) {
        return invalid(product, L"contains itself through", child);
      }
      if (m_visits[child] == Visit::kDone) continue;
      m_visits[child] = Visit::kOpen;
      path.push_back({child, 0});
    }
    return {};
  }

  const std::vector<OdModelerProduct>& m_products;
  std::vector<Visit> m_visits;
};

}  // namespace

OdStatus OdModelerAssembly::check() const {
  const auto missing = [this](const OdModelerOccurrence& o) {
    return o.product >= products.size();
  };
  for (const OdModelerProduct& product : products) {
    const auto bad = std::ranges::find_if(product.occurrences, missing);
    if (bad != product.occurrences.end()) return invalid(product, L"places product", bad->product);
    const auto null = std::ranges::find(product.bodies, nullptr);
    if (null != product.bodies.end()) {
      return invalid(product, L"has no geometry in body",
                     static_cast<std::size_t>(null - product.bodies.begin()));
    }
  }
  if (std::ranges::any_of(roots, missing)) {
    return {eInvalidInput, OdString(L"a root of the assembly names a product that is not there")};
  }
  return CycleSearch(products).run();
}
