// The tables of a drawing file, the statements on them, and the steps from older versions.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "platform/storage/sqlite_connection.h"

namespace odstorage {

struct TableRow {
  const char* name;
  const char* sql;  ///< as SQLite keeps it in the schema table
};

inline constexpr std::array kTables = {
    TableRow{"header",
             "CREATE TABLE header(id INTEGER PRIMARY KEY, key TEXT NOT NULL, "
             "sum INTEGER NOT NULL, value BLOB NOT NULL)"},
    TableRow{"classes",
             "CREATE TABLE classes(id INTEGER PRIMARY KEY, sum INTEGER NOT NULL, "
             "record BLOB NOT NULL)"},
    TableRow{"objects",
             "CREATE TABLE objects(handle INTEGER PRIMARY KEY, class INTEGER NOT NULL, "
             "owner INTEGER NOT NULL, sum INTEGER NOT NULL, data BLOB NOT NULL)"},
};

/// Statements on the tables, prepared on first use. Order of kStatements.
enum class Sql {
  kReadRecord,
  kNextHandle,
  kPreviousHandle,
  kLastHandle,
  kReadRecords,
  kListRecords,
  kReadSum,
  kInsertRecord,
  kUpdateRecord,
  kDeleteRecord,
  kReadClasses,
  kInsertClass,
  kUpdateClass,
  kReadVariables,
  kInsertVariable,
  kUpdateVariable,
  kCount
};

inline constexpr std::array<std::string_view, static_cast<std::size_t>(Sql::kCount)> kStatements = {
    "SELECT handle,class,owner,sum,data FROM objects WHERE handle=?1",
    "SELECT handle FROM objects WHERE handle>?1 ORDER BY handle LIMIT 1",
    "SELECT handle FROM objects WHERE handle<?1 ORDER BY handle DESC LIMIT 1",
    "SELECT handle FROM objects WHERE handle<=?1 ORDER BY handle DESC LIMIT 1",
    "SELECT handle,class,owner,sum,data FROM objects WHERE handle BETWEEN ?1 AND ?2 "
    "ORDER BY handle",
    "SELECT handle,class,owner,sum,length(data) FROM objects WHERE handle BETWEEN ?1 AND ?2 "
    "ORDER BY handle",
    "SELECT sum FROM objects WHERE handle=?1",
    "INSERT INTO objects VALUES(?1,?2,?3,?4,?5)",
    "UPDATE objects SET class=?2,owner=?3,sum=?4,data=?5 WHERE handle=?1",
    "DELETE FROM objects WHERE handle=?1",
    "SELECT id,sum,record FROM classes ORDER BY id",
    "INSERT INTO classes VALUES(?1,?2,?3)",
    "UPDATE classes SET sum=?2,record=?3 WHERE id=?1",
    "SELECT id,key,sum,value FROM header ORDER BY id",
    "INSERT INTO header VALUES(?1,?2,?3,?4)",
    "UPDATE header SET sum=?3,value=?4 WHERE id=?1",
};

/// Makes the tables of an empty file and stamps application id and version. No transaction of its
/// own.
OdStatus createSchema(Connection& connection);

/// Compares the schema with kTables: exactly these tables and nothing else. With `isNewer` there
/// may be other plain tables and indexes. eCorruptData names an entry that a drawing does not have.
OdStatus checkSchema(Connection& connection, bool isNewer);

/// Brings the tables from `version` to the present one, step by step, in the running transaction.
OdStatus upgradeSchema(Connection& connection, int version);

}  // namespace odstorage
