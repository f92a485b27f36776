// The host's side of a wall: which bodies the worker has, and how an operation is asked for.
#pragma once

#include <list>
#include <memory>
#include <mutex>
#include <span>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/modeler/modeler.h"
#include "platform/modeler_wall/wall_message.h"
#include "platform/modeler_wall/wall_request.h"
#include "platform/modeler_wall/wall_worker.h"
#include "platform/modeler_wall/walled_modeler.h"

namespace od_wall {

/// The bodies that the worker keeps, by their stored form. The host decides what is kept, so that
/// both sides agree without asking: what was used longest ago is dropped first.
class KeptBodies {
 public:
  explicit KeptBodies(std::size_t limit) : m_limit(limit) {}

  /// The number of a body with this stored form; 0 when the worker has none.
  [[nodiscard]] BodyNumber find(const OdBinaryData& bytes);
  /// The worker has it from now on, or will have with the next request.
  void add(BodyNumber number, const OdBinaryData& bytes);
  /// Forgets what is too much and gives the numbers to drop; `inUse` stay.
  [[nodiscard]] std::vector<BodyNumber> trim(std::span<const BodyNumber> inUse);
  void clear();

 private:
  struct Entry {
    BodyNumber number;
    OdBinaryData bytes;
  };
  using Entries = std::list<Entry>;  // the one used last comes first
  static std::string_view viewOf(const OdBinaryData& bytes);
  void remove(Entries::iterator entry);

  std::size_t m_limit;
  std::size_t m_size = 0;
  std::vector<BodyNumber> m_doubles;  // numbers of what the worker has under another one, too
  Entries m_entries;
  std::unordered_map<std::string_view, Entries::iterator> m_byContent;  // views into the entries
};

/// What an operation works on, for asking and for telling of its failure.
struct Question {
  Operation operation;
  std::vector<OdModelerBodyPtr> bodies = {};
  bool wantsHistory = false;
  OdString path = {};                                 ///< of an operation on a file
  std::function<std::string()> parameters = nullptr;  ///< as text; asked for after a failure
};

/// One worker and what it keeps. Safe to use from several threads, which take turns.
class WallLink {
 public:
  WallLink(std::shared_ptr<OdModeler> inner, OdWallSettings settings);

  [[nodiscard]] OdModeler& inner() { return *m_inner; }

  /// Asks for an operation whose own arguments are `arguments`. When it is ok, `take` reads what
  /// it gives; what `take` raises makes the answer a failure, too.
  OdStatus ask(const Question& question, const MessageWriter& arguments,
               const std::function<void(MessageReader&, BodyNumber made)>& take);
  /// The worker has the body that it made under a number.
  void keep(BodyNumber made, const OdModelerBody& body);

 private:
  OdStatus askWorker(const Question& question, const MessageWriter& arguments,
                     const std::function<void(MessageReader&, BodyNumber made)>& take);
  [[nodiscard]] std::vector<char> requestOf(const Question& question,
                                            const MessageWriter& arguments, BodyNumber made);
  OdStatus statusOf(const Question& question, const OdWorkDeath& death) const;

  std::shared_ptr<OdModeler> m_inner;
  OdWallSettings m_settings;
  std::mutex m_mutex;
  KeptBodies m_kept;
  BodyNumber m_lastNumber = 0;
  WallWorker m_worker;
};

}  // namespace od_wall
