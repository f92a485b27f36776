// The part that a cut takes away, put together from what the cut has computed anyway.
//
// To cut, the modeller divides the faces of base and tool where they meet, and takes those pieces
// that bound the result. The part that is taken away is bounded by the other pieces of the base's
// faces, and by the pieces of the tool's faces that bound the result too, seen from their other
// side. Both lists are at hand, and only the solid has to be closed over them: a fraction of a
// second intersection.
//
// This holds where every piece bounds the part on one side. Where faces of base and tool coincide,
// or the part has a cavity, it may not; isPlain refuses such an outcome, and the caller intersects.
#include "platform/modeler_occt/occt_removed_part.h"

#include <BOPAlgo_MakerVolume.hxx>
#include <BRepAlgoAPI_Cut.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopTools_MapOfShape.hxx>

namespace od_occt {
namespace {

// The pieces into which the intersection has divided a face; the face itself when it was not.
void appendParts(const TopoDS_Shape& face, BRepAlgoAPI_Cut& cut, TopTools_ListOfShape& parts) {
  const TopTools_ListOfShape* images = cut.Builder()->Images().Seek(face);
  if (images == nullptr) {
    parts.Append(face);
    return;
  }
  for (const TopoDS_Shape& part : *images) parts.Append(part);
}

// The boundary of the part: pieces of the base's faces that the result lacks, and pieces of the
// tool's faces that it has.
TopTools_ListOfShape boundaryOf(BRepAlgoAPI_Cut& cut, const TopTools_ListOfShape& bases,
                                const TopTools_ListOfShape& tools) {
  TopTools_IndexedMapOfShape left;
  TopExp::MapShapes(cut.Shape(), TopAbs_FACE, left);
  TopTools_ListOfShape boundary;
  TopTools_MapOfShape taken;
  const auto take = [&](const TopTools_ListOfShape& inputs, bool isLeft) {
    for (const TopoDS_Shape& input : inputs) {
      for (TopExp_Explorer it(input, TopAbs_FACE); it.More(); it.Next()) {
        TopTools_ListOfShape parts;
        appendParts(it.Current(), cut, parts);
        for (const TopoDS_Shape& part : parts) {
          if (left.Contains(part) == isLeft && taken.Add(part)) boundary.Append(part);
        }
      }
    }
  };
  take(bases, /*isLeft=*/false);
  take(tools, /*isLeft=*/true);
  return boundary;
}

// Every face bounds one solid on one side: there is no cavity that was taken for a solid.
bool isPlain(const TopoDS_Shape& shape, int numFaces) {
  int used = 0;
  TopTools_MapOfShape faces;
  for (TopExp_Explorer it(shape, TopAbs_FACE); it.More(); it.Next(), ++used) {
    faces.Add(it.Current());
  }
  return used == numFaces && faces.Extent() == numFaces;
}

}  // namespace

TopoDS_Shape removedPart(BRepAlgoAPI_Cut& cut, const TopTools_ListOfShape& bases,
                         const TopTools_ListOfShape& tools) {
  const TopTools_ListOfShape boundary = boundaryOf(cut, bases, tools);
  if (boundary.IsEmpty()) return {};
  BOPAlgo_MakerVolume maker;
  maker.SetArguments(boundary);
  maker.SetIntersect(Standard_False);
  maker.SetRunParallel(Standard_False);
  maker.Perform();
  if (maker.HasErrors() || maker.Shape().IsNull()) return {};
  return isPlain(maker.Shape(), boundary.Extent()) ? maker.Shape() : TopoDS_Shape();
}

}  // namespace od_occt
