// Verbs for tests of associative networks.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/assoc/assoc_dependency.h"
#include "platform/assoc/assoc_network.h"
#include "platform/assoc/assoc_variable.h"
#include "tests/support/drawing_testing.h"
#include "tests/support/test_folder.h"

/// A drawing in millimetres whose model space has a network.
class NetworkTest : public DrawingVerbs, public testing::Test {
 protected:
  NetworkTest() : drawing(host.createDatabase()) {
    drawing->setINSUNITS(OdDb::kUnitsMillimeters);
    network = networkOf(drawing->getModelSpaceId());
    drawing->startUndoRecord();
  }

  static OdDbObjectId networkOf(OdDbObjectId block) {
    return OdDbAssocNetwork::getInstanceFromObject(block, /*createIfDoesNotExist=*/true);
  }
  /// A new variable of a network.
  static OdDbObjectId add(OdDbObjectId network, const OdString& name,
                          const OdString& expression = L"") {
    const OdDbAssocVariablePtr variable = OdDbAssocVariable::createObject();
    const OdDbObjectId id = network.originalDatabase()->addOdDbObject(variable, network);
    EXPECT_EQ(edit<OdDbAssocNetwork>(network)->addAction(id, true), eOk);
    OdString error;
    EXPECT_EQ(variable->setName(name, false, &error), eOk) << error.utf8();
    EXPECT_EQ(variable->setExpression(expression, L"", false, false, &error), eOk) << error.utf8();
    return id;
  }
  OdDbObjectId add(const OdString& name, const OdString& expression = L"") {
    return add(network, name, expression);
  }
  /// Sets an expression; the message of a refusal.
  static std::string set(OdDbObjectId id, const OdString& expression) {
    OdString error;
    const OdResult result =
        edit<OdDbAssocVariable>(id)->setExpression(expression, L"", true, true, &error);
    EXPECT_EQ(result == eOk, error.isEmpty());
    return std::string(error.utf8());
  }
  static OdResult setValue(OdDbObjectId id, double value) {
    return edit<OdDbAssocVariable>(id)->setValue(OdDbEvalVariant::init(value));
  }
  static OdResult evaluate(OdDbObjectId network, OdDbAssocEvaluationCallback* callback = nullptr) {
    return edit<OdDbAssocNetwork>(network)->evaluate(callback);
  }
  OdResult evaluate() { return evaluate(network); }
  static double value(OdDbObjectId id) { return open<OdDbAssocVariable>(id)->numericValue(); }
  /// The value and the status once everything is evaluated.
  double evaluated(OdDbObjectId id) {
    EXPECT_EQ(evaluate(), eOk);
    return value(id);
  }
  OdDbAssocStatus evaluatedStatus(OdDbObjectId id) {
    EXPECT_EQ(evaluate(), eOk);
    return status(id);
  }
  static OdDbAssocStatus status(OdDbObjectId id) { return open<OdDbAssocAction>(id)->status(); }
  static std::string expression(OdDbObjectId id) {
    return std::string(open<OdDbAssocVariable>(id)->expression().utf8());
  }
  static std::string name(OdDbObjectId id) {
    return std::string(open<OdDbAssocVariable>(id)->name().utf8());
  }
  static OdDbObjectIdArray dependencies(OdDbObjectId id) {
    OdDbObjectIdArray ids;
    EXPECT_EQ(open<OdDbAssocAction>(id)->getDependencies(true, true, ids), eOk);
    return ids;
  }
  /// What the dependencies of a variable lead to.
  static std::vector<OdDbObjectId> used(OdDbObjectId id) {
    std::vector<OdDbObjectId> ids;
    for (const OdDbObjectId& dependency : dependencies(id)) {
      ids.push_back(open<OdDbAssocDependency>(dependency)->dependentOnObject());
    }
    return ids;
  }
  /// Owners of the value dependencies among the reactors of a variable.
  static std::vector<OdDbObjectId> users(OdDbObjectId id) {
    std::vector<OdDbObjectId> ids;
    for (const OdDbObjectId& reactor : open<OdDbAssocVariable>(id)->getPersistentReactors()) {
      if (!reactor.openAs<OdDbAssocValueDependency>().isNull()) ids.push_back(reactor.ownerId());
    }
    return ids;
  }

  /// Saves the drawing and opens it again; the network is that of the new one.
  void reopen() {
    const OdString path = folder.odFile(std::to_string(++files) + ".vdm");
    saveAs(drawing, path);
    drawing.release();
    drawing = read(host, path);
    network = networkOf(drawing->getModelSpaceId());
  }

  TestFolder folder;
  int files = 0;
  FilingHost host;
  OdDbDatabasePtr drawing;
  OdDbObjectId network;
};
