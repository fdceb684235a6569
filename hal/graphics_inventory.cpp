#include "platform/win32.h"

#include "hal/graphics_inventory.h"

#include <dxgi.h>

#include <cwchar>

#include "platform/batch.h"
#include "platform/com_ptr.h"
#include "platform/device_classes.h"
#include "platform/device_informention.h"
#include "platform/os/module.h"

namespace velhal::hal {
namespace {

using CreateFactoryFn = HRESULT(WINAPI*)(REFIID, void**);

CreateFactoryFn FactoryCreator(HMODULE dxgi) {
  for (const char* name : {"CreateDXGIFactory1", "CreateDXGIFactory"}) {
    if (const FARPROC found = os::module().GetProcAddress(dxgi, name))
      return reinterpret_cast<CreateFactoryFn>(reinterpret_cast<void*>(found));
  }
  return nullptr;
}

// Both creators are asked for the original factory interface: it is all the walk needs.
bool ReadAdapters(CreateFactoryFn create, std::map<std::wstring, uint32_t>& memory) {
  ComPtr<IDXGIFactory> factory;
  if (FAILED(create(__uuidof(IDXGIFactory), factory.PutVoid())) || !factory) return false;
  bool enumerated = false;
  for (UINT index = 0;; ++index) {
    ComPtr<IDXGIAdapter> adapter;
    if (FAILED(factory->EnumAdapters(index, adapter.Put())) || !adapter) break;
    enumerated = true;
    DXGI_ADAPTER_DESC description{};
    if (FAILED(adapter->GetDesc(&description))) continue;
    const size_t length = wcsnlen(description.Description, std::size(description.Description));
    memory.emplace(std::wstring(description.Description, length),
                   static_cast<uint32_t>(description.DedicatedVideoMemory >> 20));
  }
  return enumerated;
}

}  // namespace

std::optional<std::map<std::wstring, uint32_t>> DxgiDedicatedMemory() {
  const std::wstring path = SystemFolderFile(L"\\dxgi.dll");
  if (path.empty()) return std::nullopt;
  // Declared first, freed last: every DXGI object is released before the library goes.
  const UniqueModule dxgi(os::module().LoadLibraryExW(path.c_str(), nullptr, 0));
  if (!dxgi.IsValid()) return std::nullopt;
  const CreateFactoryFn create = FactoryCreator(dxgi.Get());
  std::map<std::wstring, uint32_t> memory;
  if (create == nullptr || !ReadAdapters(create, memory)) return std::nullopt;
  return memory;
}

namespace {

std::vector<GraphicsAdapter> TakeInventoryNow() {
  DeviceInformention devices;
  std::vector<GraphicsAdapter> adapters;
  for (const std::wstring& id : devices.GetDeviceHardwareId(device_class::kDisplay)) {
    if (id.compare(0, 3, L"PCI") != 0) continue;  // case-sensitive: "pci..." is not on the bus
    adapters.push_back({devices.GetDeviceStrInfoByHardwareId(id, device_class::kDisplay,
                                                             DeviceProperty_DeviceDesc)});
  }
  std::optional<std::map<std::wstring, uint32_t>> memory = DxgiDedicatedMemory();
  if (!memory) return adapters;
  for (GraphicsAdapter& adapter : adapters) {
    const auto found = memory->find(adapter.name);
    if (found == memory->end()) continue;
    adapter.memory_mib = found->second;
    memory->erase(found);
  }
  if (adapters.empty() && !memory->empty())
    adapters.push_back({memory->begin()->first, memory->begin()->second});
  return adapters;
}

}  // namespace

// DXGI's factory alone costs tens of milliseconds (hundreds with a display under Wine), and a
// report asks for the inventory several times: a batch takes it once.
std::vector<GraphicsAdapter> TakeGraphicsInventory() { return batch::Kept(&TakeInventoryNow); }

}  // namespace velhal::hal
