// VdmNamingService: unique names that number on; NamingService: those of a feature manager.
#pragma once

#include <map>

#include "platform/base/string.h"
#include "platform/base/types.h"
#include "vdm_db/common/vdm_db_export.h"

class VdmDbFeatureManager;

/// Keeps for each prefix of names the highest number in use, and makes new names from that, without
/// a walk over all names for each. A name is a prefix, the delimiter and up to six digits; any
/// other name is a prefix without a number. The record is filled when it is first needed and
/// dropped when it may be too high. It has no lock.
class VDM_DB_EXPORT VdmNamingService {
 public:
  VdmNamingService();
  VdmNamingService(const VdmNamingService&) = delete;
  VdmNamingService& operator=(const VdmNamingService&) = delete;
  virtual ~VdmNamingService();

  void setDelimeter(const wchar_t& delimiter);
  /// The first number to give, and the floor of a name's number.
  void setStartValue(unsigned start);
  /// Splits a name: `name` becomes the prefix. Without delimiter and number, and with more than six
  /// digits, it stays as it is and `number` is 0. The first character never counts as a digit.
  static void trimSuffix(OdString& name, unsigned& number, wchar_t delimiter);

  /// A name is in use from now on. Nothing happens while the record is not built: that will meet
  /// it.
  void registerName(const OdString& name);
  /// Replaces a name that may be in use by the next number of its prefix. Nothing is registered.
  void makeNameUnique(OdString& name);
  /// Whether the name may be in use: numbers up to the highest one count as used.
  [[nodiscard]] bool checkNameCollision(const OdString& name);
  /// Whether the record is too high once the name is not used any more.
  [[nodiscard]] bool checkInvalidateCacheNeed(const OdString& name) const;
  /// The record is built again when it is next needed.
  void invalidateCache();

 protected:
  /// Calls cacheName() for each name in use.
  virtual void cacheNames() = 0;
  void cacheName(const OdString& name);

 private:
  using Prefixes = std::map<OdString, OdUInt32>;

  void buildCache();
  /// The entry of a prefix; an absent one is made with `create`, else the end. Kept for the next
  /// look-up.
  Prefixes::iterator getMapPrefix(const OdString& prefix, bool create) const;

  bool m_cacheBuilt = false;
  mutable Prefixes m_prefixes;
  mutable Prefixes::iterator m_lastEntry = m_prefixes.end();
  wchar_t m_delimiter = L'_';
  OdUInt32 m_startValue = 0;
};

/// The names of a manager's features.
class VDM_DB_EXPORT NamingService : public VdmNamingService {
 public:
  /// The manager outlives the service.
  explicit NamingService(VdmDbFeatureManager* manager) : m_manager(manager) {}
  ~NamingService() override;

 protected:
  void cacheNames() override;

 private:
  VdmDbFeatureManager* m_manager;
};
