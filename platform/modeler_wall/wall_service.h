// The worker's side: bodies that it keeps, and the work on them.
#pragma once

#include <memory>
#include <span>
#include <unordered_map>
#include <vector>

#include "platform/base/work_note.h"
#include "platform/modeler/body.h"
#include "platform/modeler_wall/wall_request.h"

class OdModeler;

namespace od_wall {

class MessageReader;
class MessageWriter;

/// Answers requests with a modeller.
class WallService {
 public:
  WallService(OdModeler& modeler, const OdWorkBudget& budget)
      : m_modeler(modeler), m_budget(budget) {}

  /// The answer to one request, as bytes to send.
  [[nodiscard]] std::vector<char> answer(std::span<const char> request);

 private:
  OdStatus work(MessageReader& request, MessageWriter& results);
  void exchangeBodies(MessageReader& request);
  [[nodiscard]] std::vector<OdModelerBodyPtr> bodiesOf(MessageReader& request) const;

  OdModeler& m_modeler;
  OdWorkBudget m_budget;
  std::unordered_map<BodyNumber, OdModelerBodyPtr> m_bodies;
  bool m_hasExchanged = false;  ///< the request's bodies are all there
};

}  // namespace od_wall
