// References by Open CASCADE's naming, in a document of their own.
#pragma once

#include <Standard_Handle.hxx>
#include <TDF_Data.hxx>
#include <TDF_Label.hxx>
#include <TDF_LabelMap.hxx>
#include <span>
#include <vector>

#include "bench/naming/stage.h"
#include "platform/base/non_copyable.h"

namespace naming_bench {

class LabelNaming : OdNonCopyable {
 public:
  LabelNaming();
  ~LabelNaming();

  /// Records the faces of a fresh part.
  void begin(const OdModelerBodyPtr& body);
  /// Names subentities of the present body; their numbers go on from those named before.
  void select(std::span<const OdModelerSubent> references);
  /// Records an edit.
  void edited(const EditTrace& edit);
  /// What a reference is in the present body; none when the framework finds nothing.
  void solve(std::size_t reference, std::vector<OdModelerSubent>& found);

 private:
  void recordNew(const TDF_Label& function, const std::vector<std::vector<OdUInt32>>& images);

  Handle(TDF_Data) m_data;
  TDF_LabelMap m_valid;  // where names may lead
  std::vector<TDF_Label> m_selections;
  OdModelerBodyPtr m_body;
};

}  // namespace naming_bench
