// A host written in C++: the exported classes, linked through the import library.
#include <cstdio>
#include <string>

#include "hal/cpu.h"
#include "hal/memory.h"

int main() {
  Cpu cpu;
  const std::wstring name = cpu.GetCpuName();
  Memory memory;
  uint32_t modules = 0;
  memory.GetMemoryNums(modules);
  if (name.empty()) {
    std::fprintf(stderr, "consumer_cpp: no processor name\n");
    return 1;
  }
  std::printf("consumer_cpp: %ls, %u logical processors, %u memory modules\n", name.c_str(),
              static_cast<unsigned>(cpu.GetCpuCoreThreads()), modules);
  return 0;
}
