// Run-time classes: registration, names, inheritance, protocol extensions.
#pragma once

#include <atomic>
#include <vector>

#include "platform/base/export.h"
#include "platform/base/string.h"
#include "platform/rx/rx_object.h"

class OdRxOverrule;

using OdPseudoConstructorType = OdRxObjectPtr (*)();
using AppNameChangeFuncPtr = void (*)(const OdRxClass*, OdString&, int);

/// What may be done with proxies of a class that is not there, as bits of proxyFlags.
enum OdRxProxyFlags : unsigned {
  kOdRxEraseAllowed = 0x1,
  kOdRxDisableProxyWarning = 0x400,
};

/// One registered class. Owned by the registry; its address is stable from newOdRxClass to
/// deleteOdRxClass. Classes are registered and released in one thread; looking up is safe in all.
class OD_API OdRxClass : public OdRxObject {
 public:
  static OdRxClass* desc() noexcept;
  static OdSmartPtr<OdRxClass> cast(const OdRxObject* object);
  static void rxInit();
  static void rxUninit();
  [[nodiscard]] OdRxClass* isA() const override;

  [[nodiscard]] const OdString& name() const noexcept { return m_row.name; }
  /// Empty unless the objects of the class are filed in drawings.
  [[nodiscard]] const OdString& dxfName() const noexcept { return m_row.dxfName; }
  [[nodiscard]] const OdString& appName() const noexcept { return m_row.appName; }
  /// The application text for a drawing of a version, as the class's callback rewrites it.
  [[nodiscard]] OdString appNameFor(int dwgVersion) const;
  [[nodiscard]] int dwgVer() const noexcept { return m_row.dwgVer; }
  [[nodiscard]] int maintVer() const noexcept { return m_row.maintVer; }
  [[nodiscard]] unsigned proxyFlags() const noexcept { return m_row.proxyFlags; }
  [[nodiscard]] OdRxClass* myParent() const noexcept { return m_row.parent; }
  /// True for the class itself and all above it.
  [[nodiscard]] bool isDerivedFrom(const OdRxClass* ancestor) const noexcept {
    return ancestor && ancestor->depth() <= depth() && m_line[ancestor->depth()] == ancestor;
  }
  [[nodiscard]] bool isAbstract() const noexcept { return !m_row.constructor; }
  /// A new object with one reference; null when the class has no pseudo-constructor.
  [[nodiscard]] OdRxObjectPtr create() const;

  // ---- Protocol extensions. The class holds a reference of each; one with static lifetime has to
  // be detached before it ends.

  /// Attaches an extension for a protocol; the one that it replaces is returned. Raises
  /// OdError(eInvalidInput) for null arguments and eWrongObjectType when the extension is not of
  /// the protocol's class, since queryX hands it out as that.
  OdRxObjectPtr addX(const OdRxClass* protocol, OdRxObject* extension);
  /// Detaches and returns the extension; null when there is none.
  OdRxObjectPtr delX(const OdRxClass* protocol);
  /// The extension attached to this class, or to the nearest class above it; null without one.
  [[nodiscard]] OdRxObjectPtr getX(const OdRxClass* protocol) const;
  /// Of this class alone.
  [[nodiscard]] OdRxObjectPtr getXLocal(const OdRxClass* protocol) const;

  /// The arguments of newOdRxClass.
  struct Row {
    OdString name{};
    OdRxClass* parent = nullptr;
    OdPseudoConstructorType constructor = nullptr;
    int dwgVer = 0;
    int maintVer = 0;
    unsigned proxyFlags = 0;
    OdString dxfName{};
    OdString appName{};
    AppNameChangeFuncPtr appNameChange = nullptr;
  };

 protected:
  /// Made by the registry only.
  explicit OdRxClass(const Row& row);
  ~OdRxClass() override;

 private:
  friend class OdRxClassRegistry;
  friend class OdRxOverruleTable;

  struct Extension {
    const OdRxClass* protocol;
    OdRxObjectPtr object;
  };

  [[nodiscard]] std::size_t depth() const noexcept { return m_line.size() - 1; }

  Row m_row;
  std::vector<const OdRxClass*> m_line;  // from the root class down to this one
  std::vector<Extension> m_extensions;
  std::atomic<OdUInt32> m_extensionCount{0};
  std::vector<OdRxOverrule*> m_overrules;
  std::atomic<OdUInt32> m_overruleCount{0};
  OdUInt32 m_childCount = 0;
  OdRxClass** m_holder = nullptr;  // the variable behind desc(), cleared with the class
};

/// Registers a class. Raises OdError with eClassAlreadyRegistered (313) when the name is taken,
/// with eInvalidInput for an empty name. A null parent makes a class without one.
OD_API OdRxClass* newOdRxClass(const OdString& name, OdRxClass* parent,
                               OdPseudoConstructorType constructor = nullptr, int dwgVer = 0,
                               int maintVer = 0, unsigned proxyFlags = 0,
                               const OdString& dxfName = OdString::kEmpty,
                               const OdString& appName = OdString::kEmpty,
                               AppNameChangeFuncPtr appNameChange = nullptr);

/// Releases a class with its extensions and overrules, and drops it as a protocol of other classes.
/// Raises OdError with eClassNotRegistered (255) for a null or unknown class, and with
/// eInvalidInput while classes derived from it are registered: a parent outlives its children.
OD_API void deleteOdRxClass(OdRxClass* rxClass);

/// Names the variable that holds the class for its desc(): deleteOdRxClass sets it to null.
OD_API void odrxSetClassHolder(OdRxClass* rxClass, OdRxClass** holder);

/// All registered classes.
class OD_API OdRxClassDictionary {
 public:
  /// Null when no class of that name is registered.
  [[nodiscard]] OdRxClass* getAt(const OdString& name) const;
  [[nodiscard]] bool has(const OdString& name) const { return getAt(name) != nullptr; }
  /// The class registered first under a DXF name; null when there is none.
  [[nodiscard]] OdRxClass* classByDxfName(const OdString& dxfName) const;
  [[nodiscard]] OdUInt32 numEntries() const;
  /// In the order of registration, as they are now.
  [[nodiscard]] std::vector<OdRxClass*> classes() const;
};

OD_API OdRxClassDictionary* odrxClassDictionary();

/// Rises with every registration and release, so that what was looked up can be kept until then.
OD_API OdUInt64 odrxClassGeneration() noexcept;

/// An object of the class of that name. Raises OdError with eClassNotRegistered for an unknown
/// name; null when the class is abstract.
OD_API OdRxObjectPtr odrxCreateObject(const OdString& className);
