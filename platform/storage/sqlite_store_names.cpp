// The record store on SQLite: saving of classes and variables, and of the state row, which is
// stored as a variable.
#include <algorithm>
#include <string>

#include "platform/storage/sqlite_store.h"
#include "platform/storage/status.h"

namespace odstorage {

OdStatus SqliteStore::checkClassLimits(const OdDbStoredClass& item, bool exists) const {
  if (item.id == 0) return fail(eInvalidInput, "a class with number 0 cannot be saved");
  if (item.value.size() > kMaxClassBytes) {
    return fail(eLimitExceeded, "class " + std::to_string(item.id) + " has " +
                                    std::to_string(item.value.size()) + " bytes, at most " +
                                    std::to_string(kMaxClassBytes) + " can be saved");
  }
  if (!exists && m_classes.size() >= kMaxClasses) {
    return fail(eLimitExceeded, "class " + std::to_string(item.id) +
                                    " cannot be saved: there are " + std::to_string(kMaxClasses) +
                                    " classes already");
  }
  return {};
}

OdStatus SqliteStore::putClass(const OdDbStoredClass& item) {
  OdStatus status = checkSaving();
  if (!status.ok()) return status;
  const auto found =
      std::lower_bound(m_classes.begin(), m_classes.end(), item.id,
                       [](const OdDbStoredClass& stored, OdUInt32 id) { return stored.id < id; });
  const auto index = found - m_classes.begin();
  const bool exists = found != m_classes.end() && found->id == item.id;
  if (exists && found->value == item.value) return {};

  status = checkClassLimits(item, exists);
  if (!status.ok()) return status;
  const std::uint64_t sum = classChecksum(item.id, item.value);
  status = writeClass(exists ? Sql::kUpdateClass : Sql::kInsertClass, item, sum);
  if (!status.ok()) return noteSaveFailure(status);
  if (exists) {
    m_state.names.remove(m_classRows[static_cast<std::size_t>(index)].sum);
    m_classRows[static_cast<std::size_t>(index)].sum = sum;
    found->value = item.value;
  } else {
    m_classRows.insert(m_classRows.begin() + index, {item.id, sum});
    m_classes.insert(found, item);
  }
  m_state.names.add(sum);
  m_isChanged = m_namesChanged = true;
  return {};
}

OdStatus SqliteStore::writeClass(Sql sql, const OdDbStoredClass& item, std::uint64_t sum) {
  Statement* row = nullptr;
  OdStatus status = statement(sql, row);
  if (!status.ok()) return status;
  row->bind(1, item.id);
  row->bind(2, static_cast<std::int64_t>(sum));
  row->bindBlob(3, item.value.data(), item.value.size());
  return m_connection.translate(row->run(), kSaving);
}

OdStatus SqliteStore::checkVariableLimits(const OdDbStoredSetting& item, bool exists) const {
  const std::string what = "variable \"" + item.key + "\"";
  if (item.key.empty() || item.key.size() > kMaxVariableKeyBytes) {
    return fail(eInvalidInput, what + " cannot be saved: its name has " +
                                   std::to_string(item.key.size()) + " bytes, 1 to " +
                                   std::to_string(kMaxVariableKeyBytes) + " are allowed");
  }
  if (item.value.size() > kMaxVariableBytes) {
    return fail(eLimitExceeded, what + " has " + std::to_string(item.value.size()) +
                                    " bytes, at most " + std::to_string(kMaxVariableBytes) +
                                    " can be saved");
  }
  if (!exists && m_variables.size() >= kMaxVariables) {
    return fail(eLimitExceeded, what + " cannot be saved: there are " +
                                    std::to_string(kMaxVariables) + " variables already");
  }
  return {};
}

OdStatus SqliteStore::putSetting(const OdDbStoredSetting& item) {
  OdStatus status = checkSaving();
  if (!status.ok()) return status;
  const auto found = m_variableIndex.find(item.key);
  const bool exists = found != m_variableIndex.end();
  if (exists && m_variables[found->second].value == item.value) return {};

  status = checkVariableLimits(item, exists);
  if (!status.ok()) return status;
  const std::size_t index = exists ? found->second : m_variables.size();
  const std::int64_t lastId = m_variableRows.empty() ? kStateRowId : m_variableRows.back().id;
  const std::int64_t id = exists ? m_variableRows[index].id : lastId + 1;
  const std::uint64_t sum = variableChecksum(id, item.key, item.value);
  status = writeVariable(exists ? Sql::kUpdateVariable : Sql::kInsertVariable, id, item.key,
                         item.value, sum);
  if (!status.ok()) return noteSaveFailure(status);
  if (exists) {
    m_state.names.remove(m_variableRows[index].sum);
    m_variableRows[index].sum = sum;
    m_variables[index].value = item.value;
  } else {
    m_variableRows.push_back({id, sum});
    m_variables.push_back(item);
    m_variableIndex.emplace(item.key, index);
  }
  m_state.names.add(sum);
  m_isChanged = m_namesChanged = true;
  return {};
}

OdStatus SqliteStore::writeVariable(Sql sql, std::int64_t id, std::string_view key,
                                    std::string_view value, std::uint64_t sum) {
  Statement* row = nullptr;
  OdStatus status = statement(sql, row);
  if (!status.ok()) return status;
  row->bind(1, id);
  if (sql == Sql::kInsertVariable) row->bindText(2, key);
  row->bind(3, static_cast<std::int64_t>(sum));
  row->bindBlob(4, value.data(), value.size());
  return m_connection.translate(row->run(), kSaving);
}

OdStatus SqliteStore::writeStateRow(Sql sql) {
  const auto bytes = m_state.encode();
  const std::string_view value(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  return writeVariable(sql, kStateRowId, kStateRowKey, value,
                       variableChecksum(kStateRowId, kStateRowKey, value));
}

}  // namespace odstorage
