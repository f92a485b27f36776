// Choosing faces, edges and vertices of a body by what they are: 'face: plane & highest'.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/inspect/body_facts.h"
#include "platform/base/status.h"

namespace vdm_host {

struct SelectorNode;

/// The subentities of the body that have a name: of a reference, or of a feature that watches them.
/// Empty for an unknown name. Texts such as f_12 are understood without it.
using SubentLookup = std::function<std::vector<OdModelerSubent>(const std::string& name)>;

/// A parsed selector. The language is in docs/selectors.md: conditions combined by `&`, `|`, `!`
/// and brackets, and rankings (`highest`, `near 1,2,3`) that pick the best of what the other
/// conditions of their `&` leave. Values are compared within 1e-4 of themselves, places within 1e-4
/// of the body's diagonal, directions within 0.01 degrees: what is typed with four digits is found.
class Selector {
 public:
  /// `type` is what a text without `face:`, `edge:` or `vertex:` chooses from; with the null type
  /// such a text is refused. eInvalidInput with the column, what is there and what is expected.
  static OdStatus parse(std::string_view text, OdModelerSubentType type,
                        std::optional<Selector>& selector);

  /// Chooses from faces, edges or vertices.
  [[nodiscard]] OdModelerSubentType type() const { return m_type; }

  /// Rising. eKeyNotFound when nothing matches: the text names what comes nearest, and which
  /// condition it breaks by how much; also for a name that `lookup` does not know.
  OdStatus select(BodyFacts& facts, const SubentLookup& lookup,
                  std::vector<OdModelerSubent>& found) const;

 private:
  Selector(OdModelerSubentType type, std::string text, std::shared_ptr<const SelectorNode> root)
      : m_type(type), m_text(std::move(text)), m_root(std::move(root)) {}

  OdModelerSubentType m_type;
  std::string m_text;
  std::shared_ptr<const SelectorNode> m_root;
};

}  // namespace vdm_host
