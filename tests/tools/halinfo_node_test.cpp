// halinfo's two renderers over one tree: JSON by key, plain text by label.
#include "tools/halinfo/node.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace halinfo {
namespace {

TEST(HalinfoNodeTest, BothRenderersPrintOneTree) {
  const Node disks = Object(
      "disks", "Disks",
      {Number("systemDisk", "", 0),  // JSON only: the heading says it
       Array("items", "",
             {Object("", "Disk 0",
                     {Text("model", "model", ""), Number("sizeMiB", "size", uint64_t{512}, "MiB"),
                      Number("freeMiB", "free", std::optional<uint64_t>(), "MiB"),
                      Number("wearPercent", "wear", 12.5f, "%"), Flag("ssd", "SSD", true),
                      Flag("trim", "TRIM", std::nullopt)})}),
       Object("volumes", "volumes", {})});
  const Node devices = Array("devices", "Devices", {});

  EXPECT_EQ(nlohmann::ordered_json::parse(JsonDocument({disks, devices})).dump(),
            R"({"disks":{"systemDisk":0,"items":[{"model":"","sizeMiB":512,"freeMiB":null,)"
            R"("wearPercent":12.5,"ssd":true,"trim":null}],"volumes":{}},"devices":[]})");
  EXPECT_EQ(PlainText({disks, devices}),
            "Disks\n"
            "  Disk 0\n"
            "    model                 ?\n"
            "    size                  512 MiB\n"
            "    free                  ?\n"
            "    wear                  12.50 %\n"
            "    SSD                   yes\n"
            "    TRIM                  ?\n"
            "  volumes                 none\n"
            "\n"
            "Devices                   none\n");
}

}  // namespace
}  // namespace halinfo
