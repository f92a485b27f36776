// The product structure of a drawing.
#include "host/cli/product_tree.h"

#include <algorithm>
#include <unordered_set>

#include "host/cli/find_object.h"
#include "host/cli/text_output.h"
#include "platform/base/error.h"
#include "platform/db/block_table_record.h"
#include "platform/entities/block_reference.h"
#include "platform/modeler/db_3d_solid.h"
#include "platform/modeler/step_drawing.h"

namespace cli {

namespace {

/// Assemblies deeper than this are cut there: recursion ends before the stack does.
constexpr int kMaxDepth = 1000;

class TreeMaker {
 public:
  ProductNode block(const OdDbBlockTableRecord& record) {
    ProductNode node;
    node.kind = ProductNode::Kind::kBlock;
    node.handle = record.getDbHandle();
    node.className = classNameOf(record);
    node.name = str(record.getName());
    node.children = contents(record);
    return node;
  }

 private:
  std::vector<ProductNode> contents(const OdDbBlockTableRecord& record) {
    std::vector<ProductNode> nodes;
    m_done.insert(record.objectId());
    ++m_depth;
    for (const OdDbObjectId& id : record.entityIds()) {
      if (!id.isErased()) nodes.push_back(entity(id));
    }
    --m_depth;
    return nodes;
  }

  ProductNode entity(const OdDbObjectId& id) {
    ProductNode node;
    node.handle = id.getHandle();
    try {
      const OdDbObjectPtr object = id.safeOpenObject();
      node.className = classNameOf(*object);
      if (const auto insert = OdDbBlockReference::cast(object); !insert.isNull()) {
        describeInsert(*insert, node);
      } else if (const auto solid = OdDb3dSolid::cast(object); !solid.isNull()) {
        describeSolid(*solid, node);
      }
    } catch (const OdError& error) {
      node.note = "unreadable: " + str(error.description());
      node.sound = false;
    }
    return node;
  }

  void describeInsert(const OdDbBlockReference& insert, ProductNode& node) {
    node.kind = ProductNode::Kind::kInsert;
    node.name = occurrenceName(insert);
    node.placement = insert.blockTransform();
    const OdDbObjectId shown = insert.blockTableRecord();
    node.blockHandle = shown.getHandle();
    const auto record = shown.openAs<OdDbBlockTableRecord>();
    if (record.isNull()) {
      node.note = "its block cannot be read";
      node.sound = false;
      return;
    }
    node.blockName = str(record->getName());
    if (record->isFromExternalReference()) {
      node.note = "external drawing " + str(record->pathName());
    } else if (m_done.contains(shown)) {
      node.repeated = true;
    } else if (m_depth >= kMaxDepth) {
      node.note = "contents left out, more than " + std::to_string(kMaxDepth) + " levels deep";
    } else {
      node.children = contents(*record);
    }
  }

  static void describeSolid(const OdDb3dSolid& solid, ProductNode& node) {
    node.kind = ProductNode::Kind::kSolid;
    OdModelerBodyPtr body;
    const OdStatus status = solid.getBody(body);
    if (!status.ok()) {
      node.note = str(status.text);
      node.sound = false;
    } else if (!body) {
      node.note = "empty";
    } else {
      node.name = str(body->attributes().name);
      node.note = counted(body->numFaces(), "face");
    }
  }

  /// An imported occurrence keeps its name as extended data.
  static std::string occurrenceName(const OdDbBlockReference& insert) {
    const OdResBufPtr data = insert.xData(OdString(kOdStepRegApp));
    if (data.isNull() || data->next().isNull()) return {};
    return data->next()->restype() == OdResBuf::kDxfXdAsciiString ? str(data->next()->getString())
                                                                  : std::string();
  }

  std::unordered_set<OdDbObjectId> m_done;
  int m_depth = 0;
};

}  // namespace

ProductNode productTree(OdDbDatabase& drawing) {
  const OdDbObjectPtr space = drawing.getModelSpaceId().safeOpenObject();
  return TreeMaker().block(*OdDbBlockTableRecord::cast(space));
}

bool isSound(const ProductNode& node) {
  return node.sound && std::ranges::all_of(node.children, isSound);
}

}  // namespace cli
