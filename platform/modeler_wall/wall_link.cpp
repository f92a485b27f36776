// Handing bodies over once.
//
// A body is known by its stored form: the same body has the same bytes, however often it is read or
// made again. The host keeps the stored forms of what the worker has, in the order of their last
// use, and numbers them; a request names bodies by number and carries those that the worker lacks.
// The worker only follows: it drops what a request tells it to drop, and keeps what it was handed
// and what it made. Both lists are equal before each request, because a worker that died or whose
// answer is damaged is replaced, and the host's list is emptied with it.
#include "platform/modeler_wall/wall_link.h"

#include <algorithm>

#include "platform/base/error.h"
#include "platform/modeler_wall/wall_service.h"

namespace od_wall {

// ---- Bodies that the worker keeps

std::string_view KeptBodies::viewOf(const OdBinaryData& bytes) {
  return {reinterpret_cast<const char*>(bytes.asArrayPtr()), bytes.size()};
}

BodyNumber KeptBodies::find(const OdBinaryData& bytes) {
  const auto found = m_byContent.find(viewOf(bytes));
  if (found == m_byContent.end()) return 0;
  m_entries.splice(m_entries.begin(), m_entries, found->second);
  return found->second->number;
}

void KeptBodies::add(BodyNumber number, const OdBinaryData& bytes) {
  if (m_byContent.contains(viewOf(bytes))) {
    m_doubles.push_back(number);
    return;
  }
  m_entries.push_front({number, bytes});
  m_byContent.emplace(viewOf(m_entries.front().bytes), m_entries.begin());
  m_size += bytes.size();
}

void KeptBodies::remove(Entries::iterator entry) {
  m_size -= entry->bytes.size();
  m_byContent.erase(viewOf(entry->bytes));
  m_entries.erase(entry);
}

std::vector<BodyNumber> KeptBodies::trim(std::span<const BodyNumber> inUse) {
  std::vector<BodyNumber> dropped = std::exchange(m_doubles, {});
  auto entry = m_entries.end();
  while (m_size > m_limit && entry != m_entries.begin()) {
    --entry;
    if (std::ranges::find(inUse, entry->number) != inUse.end()) continue;
    dropped.push_back(entry->number);
    remove(entry++);
  }
  return dropped;
}

void KeptBodies::clear() {
  m_doubles.clear();
  m_byContent.clear();
  m_entries.clear();
  m_size = 0;
}

// ---- Asking

namespace {

Answer serviceOf(const std::shared_ptr<OdModeler>& inner, const OdWorkBudget& budget) {
  auto service = std::make_shared<WallService>(*inner, budget);
  return [service](std::span<const char> request) { return service->answer(request); };
}

}  // namespace

WallLink::WallLink(std::shared_ptr<OdModeler> inner, OdWallSettings settings)
    : m_inner(std::move(inner)),
      m_settings(std::move(settings)),
      m_kept(m_settings.keptBytes),
      m_worker([this] { return serviceOf(m_inner, m_settings.budget); }) {}

std::vector<char> WallLink::requestOf(const Question& question, const MessageWriter& arguments,
                                      BodyNumber made) {
  std::vector<BodyNumber> numbers;
  std::vector<std::pair<BodyNumber, OdBinaryData>> handedOver;
  for (const OdModelerBodyPtr& body : question.bodies) {
    OdBinaryData bytes;
    if (const OdStatus status = body->serialise(bytes); !status.ok()) {
      throw OdError(status.code, status.text);
    }
    BodyNumber number = m_kept.find(bytes);
    if (number == 0) {
      number = ++m_lastNumber;
      m_kept.add(number, bytes);
      handedOver.emplace_back(number, bytes);
    }
    numbers.push_back(number);
  }
  MessageWriter head;
  head(RequestHead{question.operation, question.wantsHistory, made}, m_kept.trim(numbers),
       static_cast<OdUInt64>(handedOver.size()));
  for (const auto& [number, bytes] : handedOver) head(number, bytes);
  head(numbers);
  std::vector<char> request(head.bytes().begin(), head.bytes().end());
  request.insert(request.end(), arguments.bytes().begin(), arguments.bytes().end());
  return request;
}

OdStatus WallLink::statusOf(const Question& question, const OdWorkDeath& death) const {
  const std::string what =
      death.operation.empty() ? std::string(nameOf(question.operation)) : death.operation;
  return {eModelerError, OdString::fromUtf8(what + ": " + death.cause)};
}

OdStatus WallLink::askWorker(const Question& question, const MessageWriter& arguments,
                             const std::function<void(MessageReader&, BodyNumber)>& take) {
  WallWorker::Reply reply;
  BodyNumber made = 0;
  // A worker that died while it waited is replaced; one that dies of the request is not asked
  // again.
  for (int tries = 0; tries < 2; ++tries) {
    if (m_worker.isNew()) m_kept.clear();
    made = ++m_lastNumber;
    reply = m_worker.ask(requestOf(question, arguments, made), m_settings.clockSeconds);
    if (!reply.idle) break;
  }
  if (reply.died) return statusOf(question, reply.death);
  try {
    MessageReader answer(reply.answer, *m_inner);
    const bool hasExchanged = answer.get<bool>();
    OdStatus status = answer.get<OdStatus>();
    if (!hasExchanged) m_worker.end();
    if (status.ok()) take(answer, made);
    return status;
  } catch (const OdError& error) {
    m_worker.end();
    return {eModelerError,
            OdString::fromUtf8(std::string(nameOf(question.operation)) +
                               ": the worker's answer is not sound: " + error.what())};
  }
}

OdStatus WallLink::ask(const Question& question, const MessageWriter& arguments,
                       const std::function<void(MessageReader&, BodyNumber)>& take) {
  OdStatus status;
  bool isAlive = false;
  try {
    const std::scoped_lock lock(m_mutex);
    status = askWorker(question, arguments, take);
    isAlive = !m_worker.isNew();
  } catch (const OdError& error) {
    status = {error.code(), OdString::fromUtf8(error.what())};
  }
  if (!status.ok() && m_settings.onFailure) {
    const std::string parameters = question.parameters ? question.parameters() : std::string();
    m_settings.onFailure({OdString::fromUtf8(nameOf(question.operation)), status, !isAlive,
                          question.bodies, OdString::fromUtf8(parameters), question.path});
  }
  return status;
}

void WallLink::keep(BodyNumber made, const OdModelerBody& body) {
  OdBinaryData bytes;
  if (body.serialise(bytes).ok()) m_kept.add(made, bytes);
}

}  // namespace od_wall
