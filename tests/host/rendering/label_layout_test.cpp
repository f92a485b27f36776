// Labels beside a model: their sides, their order, the room between them.
#include "host/rendering/label_layout.h"

#include <gmock/gmock.h>

#include "host/rendering/scene.h"

namespace rendering {
namespace {

/// A line from (0, 0, 0) to (10, 10, 0), seen from above.
Scene sceneOfLine() {
  Shape shape;
  shape.lines.push_back({{{0, 0, 0}, {10, 10, 0}}, {}, false});
  Scene scene;
  scene.shapes.push_back(shape);
  scene.instances.push_back({0, OdGeMatrix3d(), "line"});
  return scene;
}

std::vector<PlacedLabel> placed(const RenderOptions& options) {
  const Scene scene = sceneOfLine();
  const LabelLayout layout(scene, options);
  Camera camera(options.viewDirection);
  camera.fit(scene, layout.modelArea());
  return layout.place(camera);
}

TEST(LabelLayout, LabelsKeepTheOrderOfTheirAnchorsAndDoNotOverlap) {
  RenderOptions options;
  options.width = 640;
  options.height = 480;
  options.viewDirection = {0, 0, 1};
  // All near the lower margin: most of them must be lifted.
  for (int i = 0; i < 20; ++i) {
    const double x = i % 2 == 0 ? 1.0 : 9.0;
    options.labels.push_back({{x, 0.01 * i, 0.0}, "label " + std::to_string(i), {}});
  }
  const std::vector<PlacedLabel> labels = placed(options);
  ASSERT_EQ(labels.size(), 20u);
  for (std::size_t i = 0; i < labels.size(); ++i) {
    const PlacedLabel& label = labels[i];
    EXPECT_EQ(label.isLeft, i < 10) << "the left column comes first";
    EXPECT_EQ(label.isLeft, label.anchor.x < options.width / 2.0);
    EXPECT_EQ(label.isLeft, label.textRight < label.elbowX);
    EXPECT_LE(label.baseLine, options.height);
    EXPECT_GE(label.baseLine, 0.0);
    EXPECT_GE(label.textLeft, 0.0);
    EXPECT_LE(label.textRight, options.width);
    if (i % 10 == 0) continue;
    EXPECT_GE(label.baseLine - labels[i - 1].baseLine, 15.9) << "two heights of 8 pixels";
    EXPECT_GE(label.anchor.y, labels[i - 1].anchor.y);
  }
}

TEST(LabelLayout, ALongTextIsShortenedAndTheModelKeepsItsPlace) {
  RenderOptions options;
  options.width = 400;
  options.viewDirection = {0, 0, 1};
  options.labels = {{{1, 1, 0}, std::string(500, 'W'), {}}};
  const std::vector<PlacedLabel> labels = placed(options);
  ASSERT_EQ(labels.size(), 1u);
  EXPECT_THAT(labels[0].text, testing::EndsWith("W..."));
  EXPECT_LE(labels[0].textRight - labels[0].textLeft, 100.0) << "a quarter of the picture";
  EXPECT_GT(labels[0].anchor.x, labels[0].textRight);
}

}  // namespace
}  // namespace rendering
