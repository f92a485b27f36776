// Registration of this folder's run-time classes.
#include "platform/entities/entities_init.h"

#include "platform/entities/angular_dimension.h"
#include "platform/entities/arc.h"
#include "platform/entities/arc_aligned_text.h"
#include "platform/entities/block_reference.h"
#include "platform/entities/circle.h"
#include "platform/entities/ellipse.h"
#include "platform/entities/hatch.h"
#include "platform/entities/leader.h"
#include "platform/entities/line.h"
#include "platform/entities/linear_dimension.h"
#include "platform/entities/mline.h"
#include "platform/entities/mtext.h"
#include "platform/entities/ordinate_dimension.h"
#include "platform/entities/point.h"
#include "platform/entities/polyline.h"
#include "platform/entities/polyline_2d.h"
#include "platform/entities/round_dimension.h"
#include "platform/entities/text.h"
#include "platform/entities/viewport.h"
#include "platform/rx/class_rows.h"

namespace {

// Parents before their children.
constexpr OdRxClassRow kRows[] = {
    odrxClassRow<OdDbBlockReference>(),
    odrxClassRow<OdDbViewRepBlockReference>(),
    odrxClassRow<OdDbViewport>(),
    odrxClassRow<OdDbCurve>(),
    odrxClassRow<OdDbLine>(),
    odrxClassRow<OdDbCircle>(),
    odrxClassRow<OdDbArc>(),
    odrxClassRow<OdDbEllipse>(),
    odrxClassRow<OdDbPolyline>(),
    odrxClassRow<OdDb2dPolyline>(),
    odrxClassRow<OdDbLeader>(),
    odrxClassRow<OdDbPoint>(),
    odrxClassRow<OdDbText>(),
    odrxClassRow<OdDbMText>(),
    odrxClassRow<OdDbArcAlignedText>(),
    odrxClassRow<OdDbHatch>(),
    odrxClassRow<OdDbMline>(),
    odrxClassRow<OdDbDimension>(),
    odrxClassRow<OdDbAlignedDimension>(),
    odrxClassRow<OdDbRotatedDimension>(),
    odrxClassRow<OdDbRadialDimension>(),
    odrxClassRow<OdDbDiametricDimension>(),
    odrxClassRow<OdDb3PointAngularDimension>(),
    odrxClassRow<OdDbOrdinateDimension>(),
};
constinit OdRxClassRows g_classes(kRows);

}  // namespace

void oddbInitializeEntities() { g_classes.start(); }

void oddbUninitializeEntities() { g_classes.stop(); }
