// The real backends: each member forwards to the Win32 function of the same name.
#include "platform/win32.h"

#include <intrin.h>

#include "platform/os/audio.h"
#include "platform/os/com.h"
#include "platform/os/debug_output.h"
#include "platform/os/module.h"
#include "platform/os/power.h"
#include "platform/os/device_database.h"
#include "platform/os/device_io.h"
#include "platform/os/registry.h"
#include "platform/os/service_control.h"
#include "platform/os/timing.h"

namespace velhal::os {
namespace {

class RealRegistry final : public Registry {
 public:
  LSTATUS RegOpenKeyExW(HKEY key, const wchar_t* sub_key, DWORD options, REGSAM access,
                        HKEY* result) override {
    return ::RegOpenKeyExW(key, sub_key, options, access, result);
  }
  LSTATUS RegQueryValueExW(HKEY key, const wchar_t* value_name, DWORD* reserved, DWORD* type,
                           BYTE* data, DWORD* data_size) override {
    return ::RegQueryValueExW(key, value_name, reserved, type, data, data_size);
  }
  LSTATUS RegSetKeyValueW(HKEY key, const wchar_t* sub_key, const wchar_t* value_name, DWORD type,
                          const void* data, DWORD data_size) override {
    return ::RegSetKeyValueW(key, sub_key, value_name, type, data, data_size);
  }
  LSTATUS RegCloseKey(HKEY key) override { return ::RegCloseKey(key); }
};

class RealDebugOutput final : public DebugOutput {
 public:
  void OutputDebugStringW(const wchar_t* text) override { ::OutputDebugStringW(text); }
};

class RealCom final : public Com {
 public:
  HRESULT CoGetApartmentType(APTTYPE* type, APTTYPEQUALIFIER* qualifier) override {
    return ::CoGetApartmentType(type, qualifier);
  }
  HRESULT CoInitializeEx(void* reserved, DWORD model) override {
    return ::CoInitializeEx(reserved, model);
  }
  void CoUninitialize() override { ::CoUninitialize(); }
  HRESULT CoCreateInstance(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID iid,
                           void** object) override {
    return ::CoCreateInstance(clsid, outer, context, iid, object);
  }
  HRESULT CoCreateGuid(GUID* guid) override { return ::CoCreateGuid(guid); }
  HRESULT CoSetProxyBlanket(IUnknown* proxy, DWORD authn_service, DWORD authz_service,
                            OLECHAR* server_principal, DWORD authn_level, DWORD imp_level,
                            RPC_AUTH_IDENTITY_HANDLE auth_info, DWORD capabilities) override {
    return ::CoSetProxyBlanket(proxy, authn_service, authz_service, server_principal,
                               authn_level, imp_level, auth_info, capabilities);
  }
};

class RealDeviceDatabase final : public DeviceDatabase {
 public:
  HDEVINFO SetupDiGetClassDevsW(const GUID* class_guid, const wchar_t* enumerator, HWND parent,
                                DWORD flags) override {
    return ::SetupDiGetClassDevsW(class_guid, enumerator, parent, flags);
  }
  BOOL SetupDiEnumDeviceInfo(HDEVINFO set, DWORD index, SP_DEVINFO_DATA* device) override {
    return ::SetupDiEnumDeviceInfo(set, index, device);
  }
  BOOL SetupDiGetDevicePropertyW(HDEVINFO set, SP_DEVINFO_DATA* device, const DEVPROPKEY* key,
                                 DEVPROPTYPE* type, BYTE* buffer, DWORD buffer_size,
                                 DWORD* required_size, DWORD flags) override {
    return ::SetupDiGetDevicePropertyW(set, device, key, type, buffer, buffer_size,
                                       required_size, flags);
  }
  BOOL SetupDiDestroyDeviceInfoList(HDEVINFO set) override {
    return ::SetupDiDestroyDeviceInfoList(set);
  }
  BOOL SetupDiEnumDeviceInterfaces(HDEVINFO set, SP_DEVINFO_DATA* device,
                                   const GUID* interface_class, DWORD index,
                                   SP_DEVICE_INTERFACE_DATA* interface_data) override {
    return ::SetupDiEnumDeviceInterfaces(set, device, interface_class, index, interface_data);
  }
  BOOL SetupDiGetDeviceInterfaceDetailW(HDEVINFO set, SP_DEVICE_INTERFACE_DATA* interface_data,
                                        SP_DEVICE_INTERFACE_DETAIL_DATA_W* detail,
                                        DWORD detail_size, DWORD* required_size,
                                        SP_DEVINFO_DATA* device) override {
    return ::SetupDiGetDeviceInterfaceDetailW(set, interface_data, detail, detail_size,
                                              required_size, device);
  }
  BOOL SetupDiRemoveDevice(HDEVINFO set, SP_DEVINFO_DATA* device) override {
    return ::SetupDiRemoveDevice(set, device);
  }
  BOOL SetupDiGetDeviceInfoListDetailW(HDEVINFO set,
                                       SP_DEVINFO_LIST_DETAIL_DATA_W* detail) override {
    return ::SetupDiGetDeviceInfoListDetailW(set, detail);
  }
  BOOL SetupDiSetClassInstallParamsW(HDEVINFO set, SP_DEVINFO_DATA* device,
                                     SP_CLASSINSTALL_HEADER* params, DWORD size) override {
    return ::SetupDiSetClassInstallParamsW(set, device, params, size);
  }
  BOOL SetupDiCallClassInstaller(DI_FUNCTION function, HDEVINFO set,
                                 SP_DEVINFO_DATA* device) override {
    return ::SetupDiCallClassInstaller(function, set, device);
  }
  BOOL SetupDiGetDeviceInstallParamsW(HDEVINFO set, SP_DEVINFO_DATA* device,
                                      SP_DEVINSTALL_PARAMS_W* params) override {
    return ::SetupDiGetDeviceInstallParamsW(set, device, params);
  }
  CONFIGRET CM_Get_DevNode_Status(ULONG* status, ULONG* problem, DEVINST device,
                                  ULONG flags) override {
    return ::CM_Get_DevNode_Status(status, problem, device, flags);
  }
  CONFIGRET CM_Get_Device_ID_ExW(DEVINST device, wchar_t* buffer, ULONG length, ULONG flags,
                                 HMACHINE machine) override {
    return ::CM_Get_Device_ID_ExW(device, buffer, length, flags, machine);
  }
};

class RealServiceControl final : public ServiceControl {
 public:
  SC_HANDLE OpenSCManagerW(const wchar_t* machine, const wchar_t* database,
                           DWORD access) override {
    return ::OpenSCManagerW(machine, database, access);
  }
  SC_HANDLE OpenServiceW(SC_HANDLE manager, const wchar_t* name, DWORD access) override {
    return ::OpenServiceW(manager, name, access);
  }
  BOOL QueryServiceStatus(SC_HANDLE service, SERVICE_STATUS* status) override {
    return ::QueryServiceStatus(service, status);
  }
  BOOL ControlService(SC_HANDLE service, DWORD control, SERVICE_STATUS* status) override {
    return ::ControlService(service, control, status);
  }
  BOOL StartServiceW(SC_HANDLE service, DWORD argc, const wchar_t** argv) override {
    return ::StartServiceW(service, argc, argv);
  }
  BOOL CloseServiceHandle(SC_HANDLE handle) override { return ::CloseServiceHandle(handle); }
};

class RealDeviceIo final : public DeviceIo {
 public:
  HANDLE CreateFileW(const wchar_t* path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                     DWORD disposition, DWORD attributes, HANDLE template_file) override {
    return ::CreateFileW(path, access, share, security, disposition, attributes, template_file);
  }
  HANDLE CreateFileA(const char* path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                     DWORD disposition, DWORD attributes, HANDLE template_file) override {
    return ::CreateFileA(path, access, share, security, disposition, attributes, template_file);
  }
  BOOL DeviceIoControl(HANDLE device, DWORD code, void* in, DWORD in_size, void* out,
                       DWORD out_size, DWORD* returned, OVERLAPPED* overlapped) override {
    return ::DeviceIoControl(device, code, in, in_size, out, out_size, returned, overlapped);
  }
  BOOL CloseHandle(HANDLE handle) override { return ::CloseHandle(handle); }
  DWORD SetFilePointer(HANDLE file, LONG distance_low, LONG* distance_high,
                       DWORD method) override {
    return ::SetFilePointer(file, distance_low, distance_high, method);
  }
  BOOL ReadFile(HANDLE file, void* buffer, DWORD length, DWORD* read,
                OVERLAPPED* overlapped) override {
    return ::ReadFile(file, buffer, length, read, overlapped);
  }
  BOOL WriteFile(HANDLE file, const void* buffer, DWORD length, DWORD* written,
                 OVERLAPPED* overlapped) override {
    return ::WriteFile(file, buffer, length, written, overlapped);
  }
  BOOL GetDiskFreeSpaceExA(const char* root, ULARGE_INTEGER* available_to_caller,
                           ULARGE_INTEGER* total, ULARGE_INTEGER* total_free) override {
    return ::GetDiskFreeSpaceExA(root, available_to_caller, total, total_free);
  }
};

class RealAudio final : public Audio {
 public:
  HRESULT ActivateDefaultEndpointVolume(EDataFlow flow, ERole role,
                                        IAudioEndpointVolume** volume) override {
    IMMDeviceEnumerator* enumerator = nullptr;
    HRESULT hr = ::CoCreateInstance(__uuidof(MMDeviceEnumerator), nullptr, CLSCTX_INPROC_SERVER,
                                    __uuidof(IMMDeviceEnumerator),
                                    reinterpret_cast<void**>(&enumerator));
    if (FAILED(hr) || enumerator == nullptr) return hr;
    IMMDevice* device = nullptr;
    hr = enumerator->GetDefaultAudioEndpoint(flow, role, &device);
    enumerator->Release();
    if (FAILED(hr) || device == nullptr) return hr;
    hr = device->Activate(__uuidof(IAudioEndpointVolume), CLSCTX_INPROC_SERVER, nullptr,
                          reinterpret_cast<void**>(volume));
    device->Release();
    return hr;
  }
};

class RealPower final : public Power {
 public:
  BOOL GetSystemPowerStatus(SYSTEM_POWER_STATUS* status) override {
    return ::GetSystemPowerStatus(status);
  }
  LONG CallNtPowerInformation(POWER_INFORMATION_LEVEL level, void* in, ULONG in_size, void* out,
                              ULONG out_size) override {
    return ::CallNtPowerInformation(level, in, in_size, out, out_size);
  }
  BOOL GlobalMemoryStatusEx(MEMORYSTATUSEX* status) override {
    return ::GlobalMemoryStatusEx(status);
  }
  void Cpuid(int registers[4], int leaf) override { __cpuid(registers, leaf); }
};

class RealModule final : public Module {
 public:
  HMODULE GetModuleHandleW(const wchar_t* name) override { return ::GetModuleHandleW(name); }
  FARPROC GetProcAddress(HMODULE module, const char* name) override {
    return ::GetProcAddress(module, name);
  }
  BOOL GetModuleHandleExW(DWORD flags, const wchar_t* name, HMODULE* module) override {
    return ::GetModuleHandleExW(flags, name, module);
  }
  DWORD GetModuleFileNameW(HMODULE module, wchar_t* path, DWORD size) override {
    return ::GetModuleFileNameW(module, path, size);
  }
  DWORD GetFileAttributesW(const wchar_t* path) override { return ::GetFileAttributesW(path); }
};

class RealTiming final : public Timing {
 public:
  void Sleep(DWORD milliseconds) override { ::Sleep(milliseconds); }
};

}  // namespace

DeviceIo& DeviceIo::Real() noexcept {
  static RealDeviceIo backend;
  return backend;
}

Audio& Audio::Real() noexcept {
  static RealAudio backend;
  return backend;
}

ServiceControl& ServiceControl::Real() noexcept {
  static RealServiceControl backend;
  return backend;
}

Power& Power::Real() noexcept {
  static RealPower backend;
  return backend;
}

Module& Module::Real() noexcept {
  static RealModule backend;
  return backend;
}

Timing& Timing::Real() noexcept {
  static RealTiming backend;
  return backend;
}

DeviceDatabase& DeviceDatabase::Real() noexcept {
  static RealDeviceDatabase backend;
  return backend;
}

Com& Com::Real() noexcept {
  static RealCom backend;
  return backend;
}

Registry& Registry::Real() noexcept {
  static RealRegistry backend;
  return backend;
}

DebugOutput& DebugOutput::Real() noexcept {
  static RealDebugOutput backend;
  return backend;
}

}  // namespace velhal::os
