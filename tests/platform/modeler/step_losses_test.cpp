// What reading a STEP file leaves out or misses is said: damage, missing parts, foreign content.
#include <cstdlib>

#include "tests/platform/modeler/step_testing.h"

namespace {

namespace fs = std::filesystem;

class OdModelerStepLosses : public OdModelerStep {
 protected:
  static double volumeOf(const OdModelerAssembly& assembly, OdUInt32 product) {
    double volume = 0.0;
    for (const OdModelerBodyPtr& body : assembly.products[product].bodies) {
      volume += body->massProperties().volume;
    }
    for (const OdModelerOccurrence& part : assembly.products[product].occurrences) {
      volume += volumeOf(assembly, part.product);
    }
    return volume;
  }
  static double volumeOf(const OdModelerAssembly& assembly) {
    double volume = 0.0;
    for (const OdModelerOccurrence& root : assembly.roots)
      volume += volumeOf(assembly, root.product);
    return volume;
  }
  static OdUInt32 numFaces(const OdModelerProduct& product) {
    OdUInt32 count = 0;
    for (const OdModelerBodyPtr& body : product.bodies) count += body->numFaces();
    return count;
  }
  // The statement that begins at a place of the text.
  static std::string statementAt(const std::string& text, std::size_t at) {
    return text.substr(at, text.find(";\n", at) + 2 - at);
  }

  // A file that says that the shapes of two of its products are in others.
  [[nodiscard]] OdString withExternals(const std::string& first, const std::string& second) const {
    OdModelerAssembly made;
    made.products = {{L"unit", L"u", {}, {{1, {}, L"1", {}}, {2, {}, L"2", {}}, {2, {}, L"3", {}}}},
                     {L"alpha", L"a", {box(1.0, 1.0, 1.0)}, {}},
                     {L"beta", L"b", {box(2.0, 1.0, 1.0)}, {}}};
    made.roots = {{0, {}, L"", {}}};
    std::string text = read(writeStep(made));
    std::string more = "#90001=DOCUMENT_TYPE('');\n#90002=DOCUMENT_FILE('" + first +
                       "','',$,#90001,'',$);\n#90003=DOCUMENT_FILE('x','',$,#90001,'',$);\n"
                       "#90004=IDENTIFICATION_ROLE('external document id and location',$);\n"
                       "#90005=EXTERNAL_SOURCE(IDENTIFIER(''));\n"
                       "#90006=APPLIED_EXTERNAL_IDENTIFICATION_ASSIGNMENT('" +
                       second + "',#90004,#90005,(#90003));\n";
    // The products' solids are taken out of their representations.
    int number = 0;
    for (const char* name : {"alpha", "beta"}) {
      const std::string definition = definitionOf(text, name);
      const std::string file = number == 0 ? "#90002" : "#90003";
      more += "#9001" + std::to_string(number++) + "=APPLIED_DOCUMENT_REFERENCE(" + file + ",'',(" +
              definition + "));\n";
    }
    for (std::size_t at = text.find("ADVANCED_BREP_SHAPE_REPRESENTATION('',("); at != text.npos;
         at = text.find("ADVANCED_BREP_SHAPE_REPRESENTATION('',(", at + 1)) {
      const std::size_t comma = text.find(',', text.find(",(", at) + 2);
      text.erase(comma, text.find(')', comma) - comma);
    }
    for (std::size_t at = text.find("= MANIFOLD_SOLID_BREP("); at != text.npos;
         at = text.find("= MANIFOLD_SOLID_BREP(", at)) {
      text.erase(text.rfind('\n', at), text.find(";\n", at) + 1 - text.rfind('\n', at));
    }
    return write("unit.stp", extended(text, more));
  }
  // '#5' of the definition of the product of that name.
  static std::string definitionOf(const std::string& text, const std::string& name) {
    const auto userOf = [&](const std::string& type, const std::string& reference) {
      for (std::size_t at = text.find(type); at != text.npos; at = text.find(type, at + 1)) {
        const std::string statement = statementAt(text, at);
        if (statement.find(reference) == statement.npos) continue;
        const std::size_t line = text.rfind('#', at);
        return text.substr(line, text.find(' ', line) - line);
      }
      return std::string();
    };
    const std::string product = userOf("= PRODUCT('", "'" + name + "'");
    const std::string version = userOf("= PRODUCT_DEFINITION_FORMATION(", product + ")");
    return userOf("= PRODUCT_DEFINITION('", version + ",");
  }
  void makePart(const char* name, const OdModelerBodyPtr& body) const {
    ASSERT_TRUE(succeeded(odModeler().exportStep(path(name), part(body))));
  }
};

TEST_F(OdModelerStepLosses, AFileThatWasCutAndClosedIsNeverTakenForWhole) {
  const OdString file = writeStep(cart());
  const std::string text = read(file);
  const OdModelerAssembly whole = readStep(file);
  ASSERT_TRUE(whole.notes.lost.isEmpty());
  ASSERT_TRUE(whole.notes.leftOut.isEmpty());
  std::vector<std::size_t> cuts;
  for (std::size_t at = text.find("DATA;") + 6; at < text.find("ENDSEC;\nEND-ISO");
       at = text.find(";\n", at) + 2) {
    cuts.push_back(at);
  }
  ASSERT_GT(cuts.size(), 500u);
  std::size_t sound = 0;
  for (std::size_t i = 0; i < cuts.size(); i += 7) {
    const std::string cut = text.substr(0, cuts[i]) + "ENDSEC;\nEND-ISO-10303-21;\n";
    OdModelerAssembly got;
    const OdStatus status = odModeler().importStep(write("cut.stp", cut), got);
    if (!status.ok() || !got.notes.lost.isEmpty()) continue;
    // What the end of a file adds to complete shapes, such as colours, cannot be missed.
    ++sound;
    // Nor can products of which the file says nothing yet; but each that it has is whole.
    for (const OdModelerProduct& product : got.products) {
      const auto its = std::ranges::find(whole.products, product.name, &OdModelerProduct::name);
      ASSERT_NE(its, whole.products.end());
      EXPECT_EQ(numFaces(product), numFaces(*its)) << "cut before " << statementAt(text, cuts[i]);
    }
  }
  EXPECT_LT(sound, cuts.size() / 7 / 2);
}

TEST_F(OdModelerStepLosses, ATakenOutStatementIsNoticed) {
  const std::string text = read(writeStep(cart()));
  const char* const kinds[] = {
      "= MANIFOLD_SOLID_BREP(",
      "= CLOSED_SHELL(",
      "= ADVANCED_FACE(",
      "= FACE_BOUND(",
      "= EDGE_LOOP(",
      "= ORIENTED_EDGE(",
      "= EDGE_CURVE(",
      "= VERTEX_POINT(",
      "= CARTESIAN_POINT(",
      "= PLANE(",
      "= PRODUCT(",
      "= PRODUCT_DEFINITION(",
      "= SHAPE_DEFINITION_REPRESENTATION(",
      "= CONTEXT_DEPENDENT_SHAPE_REPRESENTATION(",
  };
  for (const std::string kind : kinds) {
    // The last one of its kind.
    const std::size_t at = text.rfind(kind);
    ASSERT_NE(at, text.npos) << kind;
    const std::size_t line = text.rfind('\n', at) + 1;
    std::string damaged = text;
    damaged.erase(line, statementAt(text, line).size());
    OdModelerAssembly got;
    const OdStatus status = odModeler().importStep(write("damaged.stp", damaged), got);
    const bool isPlacement = kind.find("CONTEXT_DEPENDENT") != kind.npos;
    EXPECT_TRUE(!status.ok() || !got.notes.lost.isEmpty() || isPlacement) << kind;
  }
}

TEST_F(OdModelerStepLosses, DamageIsNamed) {
  const std::string text = read(writeStep(part(box(1.0, 2.0, 3.0))));
  const std::size_t at = text.find("= VERTEX_POINT(");
  const std::size_t line = text.rfind('\n', at) + 1;
  const std::string vertex = statementAt(text, line);
  const std::string number = vertex.substr(0, vertex.find(' '));
  struct Row {
    std::string text;
    OdString said;
  };
  const Row rows[] = {
      {replaced(text, vertex, ""), L"1 instance is missing: " + OdString(number)},
      {replaced(text, vertex, vertex.substr(1)), L"1 statement cannot be read"},
      {replaced(text, vertex, vertex + vertex), L"used by more than one instance: "},
      {extended(text, "#99990=CARTESIAN_POINT'',(0.,0.,0.));\n"), L"1 statement cannot be read"},
      {extended(text, "#99991=TESSELLATED_SOLID('net',(),$);\n"),
       L"tessellated solid #99991 'net'"},
      {extended(text, "#99992=MANIFOLD_SOLID_BREP('lone',#99993);\n#99993=CLOSED_SHELL('',());\n"),
       L"solid #99992 'lone'"},
      {replaced(text, "DATA;", "REFERENCE;\n#5000=<wheel.stp#7>;\nENDSEC;\nDATA;"), L"wheel.stp"},
  };
  for (const Row& row : rows) {
    OdModelerAssembly got;
    const OdStatus status = odModeler().importStep(write("damaged.stp", row.text), got);
    const bool isSaid =
        status.ok() ? mentions(got.notes.lost, row.said) : status.text.find(row.said) >= 0;
    EXPECT_TRUE(isSaid) << row.said.utf8() << ": " << status.text.utf8();
  }
}

TEST_F(OdModelerStepLosses, ASheetThatLacksAFaceIsNamed) {
  std::string text = read(writeStep(part(box(1.0, 2.0, 3.0))));
  const std::size_t at = text.find("= MANIFOLD_SOLID_BREP(");
  const std::string solid = statementAt(text, at);
  const std::string shell =
      solid.substr(solid.find(",#") + 1, solid.find(')') - solid.find(",#") - 1);
  text = replaced(text, solid, "= SHELL_BASED_SURFACE_MODEL('',(" + shell + "));\n");
  text = replaced(text, "CLOSED_SHELL", "OPEN_SHELL");
  text = replaced(text, "ADVANCED_BREP_SHAPE", "MANIFOLD_SURFACE_SHAPE");
  EXPECT_TRUE(readStep(write("sheet.stp", text)).notes.lost.isEmpty());
  const std::size_t bound = text.rfind('\n', text.find("= FACE_BOUND(")) + 1;
  text.erase(bound, statementAt(text, bound).size());
  const OdModelerAssembly got = readStep(write("sheet.stp", text));
  EXPECT_TRUE(mentions(got.notes.lost, L"lacks 1 of its 6 faces"));
  EXPECT_EQ(numFaces(got.products.at(0)), 5u);
}

TEST_F(OdModelerStepLosses, ForeignContentIsCountedByKind) {
  const std::string text = read(writeStep(part(box(1.0, 2.0, 3.0))));
  const OdString file = write(
      "pmi.stp", extended(text,
                          "#90001=DIMENSIONAL_SIZE($,'diameter');\n"
                          "#90002=(ANGULAR_LOCATION() DIMENSIONAL_LOCATION('a','',$,$) "
                          "SHAPE_ASPECT_RELATIONSHIP('','',$,$));\n"
                          "#90003=FLATNESS_TOLERANCE('','',$,$);\n"
                          "#90004=(GEOMETRIC_TOLERANCE('','',$,$) POSITION_TOLERANCE());\n"
                          "#90005=DATUM('','',$,.F.,'A');\n"
                          "#90006=CAMERA_MODEL_D3('front; \\'\\'; #1=DATUM(;',$,$);\n"
                          "#90007=PRESENTATION_LAYER_ASSIGNMENT('notes','',(#90001,#90003));\n"));
  const OdModelerAssembly got = readStep(file);
  for (const wchar_t* line : {L"2 dimensions", L"2 tolerances", L"1 datum", L"1 view",
                              L"layer 'notes': 2 items are no body"}) {
    EXPECT_TRUE(mentions(got.notes.leftOut, line)) << OdString(line).utf8();
  }
  EXPECT_EQ(got.notes.leftOut.size(), 5u);
  EXPECT_TRUE(got.notes.lost.isEmpty());
}

TEST_F(OdModelerStepLosses, AnnotationsAreNoBodiesAndComeOnRequestOnTheirLayer) {
  OdModelerAssembly made = part(box(1.0, 2.0, 3.0));
  made.sourceUnit = {L"", 25.4};
  const OdString file = write(
      "notes.stp",
      extended(
          read(writeStep(made)),
          "#9001=COORDINATES_LIST('',4,((0.,0.,0.),(1.,0.,0.),(1.,1.,0.),(0.,1.,0.)));\n"
          "#9002=TESSELLATED_CURVE_SET('',#9001,((1,2,3)));\n"
          "#9003=COMPLEX_TRIANGULATED_SURFACE_SET('',#9001,4,((0.,0.,1.)),(),((1,2,4,3)),());\n"
          "#9004=(GEOMETRIC_REPRESENTATION_ITEM() REPOSITIONED_TESSELLATED_ITEM(#9005) "
          "REPRESENTATION_ITEM('') TESSELLATED_GEOMETRIC_SET((#9002,#9003)) "
          "TESSELLATED_ITEM());\n"
          "#9005=AXIS2_PLACEMENT_3D('',#9006,$,$);\n"
          "#9006=CARTESIAN_POINT('',(0.,0.,10.));\n"
          "#9007=TESSELLATED_ANNOTATION_OCCURRENCE('size',(),#9004);\n"
          "#9008=POLYLINE('',(#9006,#9009));\n"
          "#9009=CARTESIAN_POINT('',(0.,5.,10.));\n"
          "#9010=GEOMETRIC_CURVE_SET('',(#9008,#9011));\n"
          "#9011=CIRCLE('',#9005,2.);\n"
          "#9012=ANNOTATION_CURVE_OCCURRENCE('leader',(),#9010);\n"
          "#9013=ANNOTATION_OCCURRENCE('text',(),#9006);\n"
          "#9014=ANNOTATION_PLANE('plane',(),#9005,(#9007));\n"));
  OdStepReport report;
  ASSERT_TRUE(succeeded(importStepIntoDatabase(m_database, file, &report)));
  EXPECT_EQ(entities<OdDb3dSolid>(m_database->getModelSpaceId()).size(), 1u);
  EXPECT_TRUE(mentions(report.leftOut, L"3 annotations"));
  EXPECT_TRUE(mentions(report.leftOut, L"1 annotation plane"));

  const OdDbDatabasePtr drawing = m_services.createDatabase();
  OdStepImportOptions options;
  options.annotations = true;
  ASSERT_TRUE(succeeded(importStepIntoDatabase(drawing.get(), file, &report, options)));
  EXPECT_EQ(report.annotations, 2u);
  EXPECT_TRUE(mentions(report.leftOut, L"1 annotation without curves"));
  const auto solids = entities<OdDb3dSolid>(drawing->getModelSpaceId());
  ASSERT_EQ(solids.size(), 3u);
  EXPECT_EQ(solids[0]->layer(), L"0");
  // Two edges of the curve and the outline of the square; in inches, as the drawing is.
  const OdModelerBodyPtr size = solids[1]->body();
  EXPECT_EQ(solids[1]->layer(), kOdStepAnnotationLayer);
  EXPECT_EQ(size->attributes().name, L"size");
  EXPECT_EQ(size->kind(), OdModelerBodyKind::kWire);
  EXPECT_EQ(size->numEdges(), 6u);
  const OdGeExtents3d wanted({0.0, 0.0, 10.0}, {1.0, 1.0, 10.0});
  EXPECT_TRUE(size->extents().isEqualTo(wanted, OdGeTol(1e-6)));
  EXPECT_EQ(solids[2]->body()->numEdges(), 2u);
}

TEST_F(OdModelerStepLosses, PartsInOtherFilesAreReadOrNamed) {
  const OdString file = withExternals("alpha.stp", "parts\\beta.stp");
  OdModelerAssembly got;
  OdStatus status = odModeler().importStep(file, got);
  EXPECT_EQ(status.code, eModelerError) << "nothing is there";
  EXPECT_GE(status.text.find(L"'alpha.stp' of product 'alpha' was not found"), 0);
  EXPECT_GE(status.text.find(L"'parts\\beta.stp' of product 'beta' was not found"), 0);

  makePart("alpha.stp", box(1.0, 1.0, 1.0));
  got = readStep(file);
  EXPECT_EQ(got.notes.lost.size(), 1u);
  EXPECT_TRUE(mentions(got.notes.lost, L"beta.stp"));
  EXPECT_NEAR(volumeOf(got), 1.0, 1e-9);

  fs::create_directory(m_folder.file("parts"));
  ASSERT_TRUE(succeeded(odModeler().exportStep(path("parts/beta.stp"), cart())));
  got = readStep(file);
  EXPECT_TRUE(got.notes.lost.isEmpty());
  EXPECT_NEAR(volumeOf(got), 1.0 + 2.0 * volumeOf(cart()), 1e-6);
  EXPECT_TRUE(succeeded(got.check()));
  EXPECT_EQ(got.products[got.products[0].occurrences[1].product].name, L"beta");

  write("alpha.stp", "no STEP at all");
  EXPECT_TRUE(mentions(readStep(file).notes.lost, L"alpha.stp' of product 'alpha' was not read"));
}

TEST_F(OdModelerStepLosses, AFileThatNamesItselfEnds) {
  const OdString file = withExternals("unit.stp", "beta.stp");
  makePart("beta.stp", box(1.0, 1.0, 1.0));
  const OdModelerAssembly got = readStep(file);
  EXPECT_TRUE(mentions(got.notes.lost, L"'unit.stp' of product 'alpha' contains itself"));
  EXPECT_NEAR(volumeOf(got), 2.0, 1e-9);
}

TEST_F(OdModelerStepLosses, ImportReportsAndStillMakesTheDrawing) {
  const OdString file = withExternals("alpha.stp", "gone.stp");
  makePart("alpha.stp", box(1.0, 1.0, 1.0));
  OdStepReport report;
  ASSERT_TRUE(succeeded(importStepIntoDatabase(m_database, file, &report)));
  EXPECT_EQ(report.solids, 1u);
  EXPECT_EQ(report.lost.size(), 1u);
  EXPECT_TRUE(mentions(report.lost, L"gone.stp"));
}

// Files of other makers, where they are at hand: VDM_STEP_DIR names their folder.
TEST_F(OdModelerStepLosses, RealPartsAreWhole) {
  const char* named = std::getenv("VDM_STEP_DIR");
  const fs::path folder = named == nullptr ? "" : named;
  if (!fs::is_directory(folder)) GTEST_SKIP() << "VDM_STEP_DIR names no folder";
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    const OdModelerAssembly got = readStep(OdString(entry.path().string()));
    EXPECT_TRUE(got.notes.lost.isEmpty()) << entry.path() << ": " << got.notes.lost[0].utf8();
    EXPECT_FALSE(got.notes.leftOut.isEmpty()) << entry.path();
  }
}

}  // namespace
