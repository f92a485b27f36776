// What a measured store of records has to be able to do.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

/// One document of records. A fresh process measures one task on one subject.
class RecordSubject {
 public:
  virtual ~RecordSubject() = default;

  /// `count` records in one transaction that can be undone.
  virtual void create(std::size_t count) = 0;
  /// Reads one number of a record by record number and key; the sum keeps the work alive.
  virtual double lookUp(std::size_t record) = 0;
  /// One number of one record in its own transaction.
  virtual void write(std::size_t record, double value) = 0;
  virtual void undo() = 0;
  virtual void redo() = 0;
  /// Everything into a fresh file, durable when it returns.
  virtual void saveAs(const std::string& path) = 0;
  /// What changed since, durable when it returns.
  virtual void save() = 0;
  /// Opens a file and brings every record into memory.
  virtual void load(const std::string& path) = 0;
  /// Opens a file and reads one record of it. Returns the value read.
  virtual double openFirst(const std::string& path, std::size_t record) = 0;
  /// A deep copy of every record in the same document.
  virtual void cloneAll() = 0;
};

std::unique_ptr<RecordSubject> makeDrawingSubject();
std::unique_ptr<RecordSubject> makeLabelSubject();
/// A drawing that is opened for reading, in one transaction or in one for each read.
std::unique_ptr<RecordSubject> makeReadingSubject(bool holdsOneState);
