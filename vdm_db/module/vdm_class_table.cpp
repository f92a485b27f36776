// The table of the module's run-time classes.
#include "vdm_db/module/vdm_class_table.h"

#include <algorithm>
#include <iterator>

#include "vdm_db/properties/vdm_db_extension_data.h"
#include "vdm_db/properties/vdm_properties_pe.h"

namespace {

struct ClassRow {
  void (*init)();
  void (*uninit)();
};

template <class T>
constexpr ClassRow rowOf() {
  return {static_cast<void (*)()>(&T::rxInit), &T::rxUninit};
}

// In the order of registration: each parent stands before its children.
constexpr ClassRow kClassRows[] = {
    rowOf<VdmPropertiesPE>(),
    rowOf<VdmDbExtensionData>(),
};

// Releases what was registered unless all of it was.
class RegistrationGuard {
 public:
  explicit RegistrationGuard(const ClassRow* registered) : m_next(registered) {}
  ~RegistrationGuard() {
    if (m_next == std::end(kClassRows)) return;
    while (m_next != std::begin(kClassRows)) (--m_next)->uninit();
  }
  RegistrationGuard(const RegistrationGuard&) = delete;
  RegistrationGuard& operator=(const RegistrationGuard&) = delete;

  void registerNext() {
    m_next->init();
    ++m_next;
  }
  bool isDone() const { return m_next == std::end(kClassRows); }

 private:
  const ClassRow* m_next;
};

}  // namespace

void vdmRegisterClasses() {
  RegistrationGuard guard(std::begin(kClassRows));
  while (!guard.isDone()) guard.registerNext();
}

void vdmReleaseClasses() {
  std::for_each(std::rbegin(kClassRows), std::rend(kClassRows),
                [](const ClassRow& row) { row.uninit(); });
}
