// halinfo's two renderers over one tree: JSON by key, plain text by label.
#include "tools/halinfo/node.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace halinfo {
namespace {

TEST(HalinfoNodeTest, BothRenderersPrintOneTree) {
  const Node disk = Object("", "Disk 0",
                           {Text("model", "model", ""), Number("sizeMiB", "size", 512u, "MiB"),
                            Number("freeMiB", "free", std::optional<uint64_t>(), "MiB"),
                            Number("wearPercent", "wear", 12.5f, "%"), Flag("ssd", "SSD", true)});
  const std::vector<Node> sections = {
      Object("disks", "Disks", {Number("count", "", 1), Array("items", "", {disk})}),
      Array("usb", "USB", {})};

  EXPECT_EQ(nlohmann::ordered_json::parse(JsonDocument(sections)).dump(),
            R"({"schemaVersion":1,"disks":{"count":1,"items":[{"model":"","sizeMiB":512,"freeMiB":null,)"
            R"("wearPercent":12.5,"ssd":true}]},"usb":[]})");
  EXPECT_EQ(PlainText(sections),
            "Disks\n"
            "  Disk 0\n"
            "    model                 ?\n"
            "    size                  512 MiB\n"
            "    free                  ?\n"
            "    wear                  12.50 %\n"
            "    SSD                   yes\n"
            "\n"
            "USB                       none\n");
}

}  // namespace
}  // namespace halinfo
