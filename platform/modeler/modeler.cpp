// The interface of a solid modeller, and the modeller of the process.
#include "platform/modeler/modeler.h"

#include <atomic>
#include <mutex>
#include <utility>

#include "platform/base/error.h"

namespace {

/// The modeller of the process. Threads that ask for it first make it once.
class Installed {
 public:
  void set(std::shared_ptr<OdModeler> modeler, OdModelerSource source) {
    const std::scoped_lock lock(m_mutex);
    m_source = std::move(source);
    m_ready = modeler.get();
    m_modeler = std::move(modeler);
  }
  OdModeler& get() {
    OdModeler* ready = m_ready;
    return ready != nullptr ? *ready : make();
  }
  [[nodiscard]] bool isSet() const { return m_ready != nullptr || m_source != nullptr; }

 private:
  OdModeler& make() {
    const std::scoped_lock lock(m_mutex);
    if (!m_modeler && m_source) m_modeler = m_source();
    if (!m_modeler) throw OdError(eNoModeler);
    m_ready = m_modeler.get();
    return *m_modeler;
  }

  std::mutex m_mutex;
  std::shared_ptr<OdModeler> m_modeler;
  OdModelerSource m_source;
  std::atomic<OdModeler*> m_ready = nullptr;
};

Installed& installed() {
  static Installed modeler;
  return modeler;
}

}  // namespace

void odSetModeler(std::shared_ptr<OdModeler> modeler) { installed().set(std::move(modeler), {}); }

void odSetModelerSource(OdModelerSource source) { installed().set(nullptr, std::move(source)); }

OdModeler& odModeler() { return installed().get(); }

OdStatus OdModeler::removeFaces(const OdModelerBodyPtr& /*body*/,
                                std::span<const OdUInt32> /*faces*/, OdModelerBodyPtr& /*result*/,
                                OdModelerHistory* /*history*/) {
  return {eNotApplicable, name() + L" cannot remove faces"};
}

bool odHasModeler() { return installed().isSet(); }
