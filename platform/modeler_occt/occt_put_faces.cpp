// Puts faces into a body in the place of others.
#include "platform/modeler_occt/occt_put_faces.h"

#include <BRep_Builder.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_MapOfShape.hxx>
#include <TopoDS_Compound.hxx>
#include <TopoDS_Iterator.hxx>
#include <TopoDS_Shell.hxx>
#include <TopoDS_Solid.hxx>

namespace od_occt {
namespace {

bool changesIn(const TopoDS_Shape& shell, const FaceChanges& changes) {
  for (TopoDS_Iterator it(shell); it.More(); it.Next()) {
    if (changes.of.IsBound(it.Value())) return true;
  }
  return false;
}

// Null when no face is left.
TopoDS_Shape changedShell(const TopoDS_Shape& shell, const FaceChanges& changes) {
  TopTools_ListOfShape faces;
  TopTools_MapOfShape taken;
  const auto takeAll = [&](const TopTools_ListOfShape& list) {
    for (const TopoDS_Shape& face : list) {
      if (taken.Add(face)) faces.Append(face);
    }
  };
  for (TopoDS_Iterator it(shell); it.More(); it.Next()) {
    const TopTools_ListOfShape* instead = changes.of.Seek(it.Value());
    if (instead == nullptr) {
      faces.Append(it.Value());
    } else {
      takeAll(*instead);
    }
  }
  takeAll(changes.added);
  return faces.IsEmpty() ? TopoDS_Shape() : closedShellOf(faces);
}

}  // namespace

TopoDS_Shape closedShellOf(const TopTools_ListOfShape& faces) {
  TopoDS_Shell shell;
  BRep_Builder builder;
  builder.MakeShell(shell);
  for (const TopoDS_Shape& face : faces) builder.Add(shell, face);
  shell.Closed(true);
  return shell;
}

TopoDS_Shape solidOf(const TopTools_ListOfShape& shells) {
  TopoDS_Solid solid;
  BRep_Builder builder;
  builder.MakeSolid(solid);
  for (const TopoDS_Shape& shell : shells) builder.Add(solid, shell);
  return solid;
}

std::optional<TopoDS_Shape> withChangedFaces(const TopoDS_Shape& shape,
                                             const FaceChanges& changes) {
  TopoDS_Compound whole;
  BRep_Builder builder;
  builder.MakeCompound(whole);
  int changed = 0;
  for (TopExp_Explorer solid(shape, TopAbs_SOLID); solid.More(); solid.Next()) {
    TopTools_ListOfShape shells;
    const int before = changed;
    for (TopoDS_Iterator it(solid.Current()); it.More(); it.Next()) {
      if (!changesIn(it.Value(), changes)) {
        shells.Append(it.Value());
        continue;
      }
      ++changed;
      const TopoDS_Shape shell = changedShell(it.Value(), changes);
      if (!shell.IsNull()) {
        shells.Append(shell);
      } else if (shells.IsEmpty()) {
        return std::nullopt;
      }
    }
    builder.Add(whole, changed == before ? solid.Current() : solidOf(shells));
  }
  if (changed != 1) return std::nullopt;
  return whole;
}

}  // namespace od_occt
