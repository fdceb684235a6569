// The processor, through the Cpu class.
#include <string>

#include "hal/cpu.h"
#include "tools/halinfo/output.h"
#include "tools/halinfo/sections.h"

namespace halinfo {
namespace {

const char* TypeName(EnmHalCpuType type) {
  switch (type) {
    case HalCpuTypeIntel: return "Intel";
    case HalCpuTypeAmd: return "AMD";
    case HalCpuTypeSnapdragon: return "Snapdragon";
    default: return "unknown";
  }
}

Node Cache(int level, unsigned long size_kib, const std::wstring& associativity) {
  std::string label(1, 'L');  // appended to: GCC 12 misreads "L" + to_string at -O3
  label += std::to_string(level) + " cache";
  return Object("", std::move(label),
                {Number("level", "", level),
                 Number("sizeKiB", "size", Reported<uint32_t>(size_kib), "KiB"),
                 Text("associativity", "associativity", ToUtf8(associativity))});
}

}  // namespace

Node ProcessorSection() {
  Cpu cpu;
  return Object(
      "processor", "Processor",
      {Text("name", "name", ToUtf8(cpu.GetCpuName())),
       Text("vendor", "vendor", ToUtf8(cpu.GetCpuManufacturer())),
       Text("type", "type", TypeName(cpu.GetCputype())),
       Number("currentClockMHz", "current clock", Reported<uint32_t>(cpu.GetCpuCurClock()), "MHz"),
       Number("maxClockMHz", "maximum clock", Reported<uint32_t>(cpu.GetCpuMaxClock()), "MHz"),
       Number("externalClockMHz", "external clock", Reported<uint32_t>(cpu.GetCpuExtClock()),
              "MHz"),
       Number("cores", "cores", Reported<uint32_t>(cpu.GetCpuCoreNumbers())),
       Number("logicalProcessors", "logical processors",
              Reported<uint32_t>(cpu.GetCpuCoreThreads())),
       Number("loadPercent", "load", Reported<uint32_t>(cpu.GetCpuLoadPercent()), "%"),
       Array("caches", "",
             {Cache(1, cpu.GetL1CacheSize(), cpu.GetL1Associativity()),
              Cache(2, cpu.GetL2CacheSize(), cpu.GetL2Associativity()),
              Cache(3, cpu.GetL3CacheSize(), cpu.GetL3Associativity())})});
}

}  // namespace halinfo
