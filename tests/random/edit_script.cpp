// EditScript: the drawing of edits and of transactions around them.
#include "tests/random/edit_script.h"

#include <algorithm>
#include <vector>

#include "platform/base/error.h"
#include "platform/db/db_object.h"
#include "platform/db/dictionary.h"
#include "tests/random/edit_context.h"

// ---- Choices

template <class Accepts>
OdDbObjectId EditContext::choose(bool withErased, Accepts accepts) const {
  std::vector<OdDbObjectId> candidates;
  const auto collect = [&](OdDbObjectId id) {
    if (accepts(id)) candidates.push_back(id);
    return true;
  };
  m_database->forEachId(collect, withErased);
  return candidates.empty() ? OdDbObjectId() : candidates[m_random.below(candidates.size())];
}

OdDbObjectId EditContext::pick(const OdRxClass* rxClass) const {
  return choose(/*withErased=*/false, [rxClass](OdDbObjectId id) {
    return !id.isEffectivelyErased() && id.objectClass()->isDerivedFrom(rxClass);
  });
}

OdDbObjectId EditContext::pickAdded(const OdRxClass* rxClass) const {
  return choose(/*withErased=*/false, [rxClass](OdDbObjectId id) {
    return id.getHandle() >= OdDbRootHandles::kFirstFree && !id.isEffectivelyErased() &&
           id.objectClass()->isDerivedFrom(rxClass);
  });
}

OdDbObjectId EditContext::pickErased() const {
  return choose(/*withErased=*/true, [](OdDbObjectId id) {
    return id.isErased() && id.isResident() && !id.idRecord()->has(OdDbIdRecord::kUnappended) &&
           !id.objectClass()->isDerivedFrom(OdDbDictionary::desc()) &&
           !id.ownerId().isEffectivelyErased();
  });
}

bool isExtensionDictionary(OdDbObjectId id) {
  const OdDbObjectPtr owner = id.ownerId().openObject();
  return !owner.isNull() && owner->extensionDictionary() == id;
}

OdDbObjectId EditContext::pickDictionary() const {
  return choose(/*withErased=*/false, [](OdDbObjectId id) {
    return !id.isEffectivelyErased() && id.objectClass()->isDerivedFrom(OdDbDictionary::desc()) &&
           !isExtensionDictionary(id);
  });
}

OdString EditContext::name() const {
  static constexpr const wchar_t* kNames[] = {L"A",    L"a",      L"Bolt",     L"BOLT",
                                              L"Nut",  L"Flange", L"\u00C4rm", L"\u00E4RM",
                                              L"Gear", L"gear 2", L"x",        L"\u4E2D\u6587"};
  OdString name(kNames[m_random.below(std::size(kNames))]);
  if (m_random.chance(60)) name += OdString(std::to_string(m_random.below(40)));
  return name;
}

OdString EditContext::text() const {
  OdString text;
  for (std::size_t words = m_random.below(5); words > 0; --words) text += name() + L" ";
  return text;
}

// ---- Edits

std::string EditScript::edit(OdDbDatabase* database) {
  return m_random.chance(12) ? editInTransactions(database, 1) : editOnce(database);
}

std::string EditScript::editInTransactions(OdDbDatabase* database, int depth) {
  std::string told = "{";
  OdDbTransaction transaction(database);
  for (std::size_t edits = 1 + m_random.below(4); edits > 0; --edits) {
    const bool isNested = depth < 3 && m_random.chance(25);
    told += ' ' + (isNested ? editInTransactions(database, depth + 1) : editOnce(database));
  }
  if (m_random.chance(50)) return told + " } aborted";
  const OdResult result = transaction.commit();
  if (result != eOk) throw OdError(result, L"ending a transaction");
  return told + " } ended";
}

namespace {

/// What an edit may raise because the drawing does not allow it: nothing has changed then.
bool isRefusal(OdResult code) {
  static constexpr OdResult kRefusals[] = {eCircularReference, eDuplicateRecordName, eDuplicateKey,
                                           eInvalidInput,      eWrongObjectType,     eHandleInUse};
  return std::ranges::find(kRefusals, code) != std::end(kRefusals);
}

const std::vector<EditRow>& allEdits() {
  static const std::vector<EditRow> rows = [] {
    std::vector<EditRow> all;
    for (const auto& room : {entityEdits(), containerEdits(), objectEdits(), bagEdits()}) {
      all.insert(all.end(), room.begin(), room.end());
    }
    return all;
  }();
  return rows;
}

const EditRow& drawEdit(RandomSource& random) {
  static const std::size_t total = [] {
    std::size_t sum = 0;
    for (const EditRow& row : allEdits()) sum += row.weight;
    return sum;
  }();
  std::size_t place = random.below(total);
  const EditRow* row = allEdits().data();
  while (place >= row->weight) place -= row++->weight;
  return *row;
}

}  // namespace

std::string EditScript::editOnce(OdDbDatabase* database) {
  const EditContext context(database, m_random);
  // Drawn again until one applies; a drawing always takes another line.
  while (true) {
    const EditRow& row = drawEdit(m_random);
    try {
      if (row.apply(context)) return row.name;
    } catch (const OdError& error) {
      if (!isRefusal(error.code())) throw;
      return std::string(row.name) + " (refused)";
    }
  }
}
