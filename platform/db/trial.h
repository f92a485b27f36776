// OdDbTrial: changes of a drawing that are taken back.
#pragma once

#include "platform/base/non_copyable.h"

class OdDbDatabase;

/// What is changed in its scope is in memory alone and is taken back at its end, unless keep() was
/// called. A drawing that is open for reading can be changed in it, too. Its file must not be saved
/// meanwhile.
class OdDbTrial : OdNonCopyable {
 public:
  explicit OdDbTrial(OdDbDatabase* database);
  ~OdDbTrial();

  /// Ends the trial with its changes kept. Not for drawings that are open for reading.
  void keep();

 private:
  OdDbDatabase* m_database;  ///< null once kept
  bool m_readOnly;
};
