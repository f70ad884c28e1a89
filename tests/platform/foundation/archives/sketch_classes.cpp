#include <tests/platform/foundation/archives/sketch_classes.h>

namespace FrameworkUtility::testing {
namespace {

const bool nodesAreKnown =
    registerCodingClass({"Sketch.Node", {}, Node::withCoder<Node>, [] { return true; }}) &&
    registerCodingClass(
        {"Sketch.Leaf", {"Sketch.Node"}, Node::withCoder<Leaf>, [] { return true; }});

}  // namespace
}  // namespace FrameworkUtility::testing
