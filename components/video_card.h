// Graphics adapters and the monitor, for hosts that would rather not handle device-class
// numbers. The members ask the graphics module (device class 4, GpQueryInforamtion) one
// information class each, from an adapter block taken on first use and freed with the object;
// the monitor's name comes from its EDID. A failed reading is 0 or an empty string; nothing is
// thrown.
//
// The "Internal"/"Used" members answer for the adapter the graphics module selects as discrete
// (WMI's AdapterDACType does not say "Integrated"), the "Independent"/"UnUsed" members for the
// integrated one. That crossing, and the spellings "Vedio" and "UnUsed", are the exported
// interface: hosts rely on them. The two names of a pair are one function.
#pragma once

#include <cstdint>
#include <string>

#include "hal/hal_api.h"
#include "hal/velhal_export.h"

// Information classes of GpQueryInforamtion (hal_api.h names each number).
enum EnumHalGraphicQueryInfo : uint32_t {
  HalGraphicDiscreteName = HAL_GRAPHICS_INFO_DISCRETE_NAME,
  HalGraphicDiscreteStatus = HAL_GRAPHICS_INFO_DISCRETE_STATUS,
  HalGraphicDiscreteDriverVersion = HAL_GRAPHICS_INFO_DISCRETE_DRIVER_VERSION,
  HalGraphicDiscreteDriverDate = HAL_GRAPHICS_INFO_DISCRETE_DRIVER_DATE,
  HalGraphicIntegratedName = HAL_GRAPHICS_INFO_INTEGRATED_NAME,
  HalGraphicIntegratedStatus = HAL_GRAPHICS_INFO_INTEGRATED_STATUS,
  HalGraphicIntegratedDriverVersion = HAL_GRAPHICS_INFO_INTEGRATED_DRIVER_VERSION,
  HalGraphicIntegratedDriverDate = HAL_GRAPHICS_INFO_INTEGRATED_DRIVER_DATE,
  HalGraphicMonitor = HAL_GRAPHICS_INFO_MONITOR,
  HalGraphicResolution = HAL_GRAPHICS_INFO_RESOLUTION,
  HalGraphicCount = HAL_GRAPHICS_INFO_COUNT,
  HalGraphicDiscreteVideoMemory = HAL_GRAPHICS_INFO_DISCRETE_VIDEO_MEMORY,
  HalGraphicDiscreteProblemCode = HAL_GRAPHICS_INFO_DISCRETE_PROBLEM_CODE,
  HalGraphicIntegratedVideoMemory = HAL_GRAPHICS_INFO_INTEGRATED_VIDEO_MEMORY,
  HalGraphicIntegratedProblemCode = HAL_GRAPHICS_INFO_INTEGRATED_PROBLEM_CODE,
  HalGraphicScreenWidth = HAL_GRAPHICS_INFO_SCREEN_WIDTH,
  HalGraphicScreenHeight = HAL_GRAPHICS_INFO_SCREEN_HEIGHT,
  HalGraphicRefreshRate = HAL_GRAPHICS_INFO_REFRESH_RATE,
  HalGraphicBitsPerPixel = HAL_GRAPHICS_INFO_BITS_PER_PIXEL,
};

class VideoCard {
 public:
  VELHAL_API VideoCard();
  VELHAL_API ~VideoCard();  // frees the adapter block
  VideoCard(const VideoCard&) = delete;
  VideoCard& operator=(const VideoCard&) = delete;

  VELHAL_API void Init();  // takes the adapter block (GpInit) unless one is held
  VELHAL_API unsigned long GetVideoCardNumber();  // class 19: adapter records

  // The discrete adapter: classes 0-3 and 20-21.
  VELHAL_API std::wstring GetInternalVideoCardName();
  VELHAL_API std::wstring GetUsedVideoCardName();
  VELHAL_API std::wstring GetInternalVideoCardStatus();  // WMI Status, "OK"
  VELHAL_API std::wstring GetUsedVideoCardStatus();
  VELHAL_API std::wstring GetInternalVideoCardDriverVersion();
  VELHAL_API std::wstring GetUsedVideoCardDriverVersion();
  VELHAL_API std::wstring GetInternalVideoCardDriverDate();  // YYYYMMDD
  VELHAL_API std::wstring GetUsedVideoCardDriverDate();
  VELHAL_API unsigned long GetInternalVedioCardMemorySize();  // dedicated MiB, DXGI
  VELHAL_API unsigned long GetUsedVedioCardMemorySize();
  VELHAL_API unsigned long GetInternalVedioCardErrorCode();  // device problem code

  // The integrated adapter: classes 4-7 and 22-23.
  VELHAL_API std::wstring GetIndependentVideoCardName();
  VELHAL_API std::wstring GetUnUsedVideoCardName();
  VELHAL_API std::wstring GetIndependentVideoCardStatus();
  VELHAL_API std::wstring GetUnUsedVideoCardStatus();
  VELHAL_API std::wstring GetIndependentVideoCardDriverVersion();
  VELHAL_API std::wstring GetUnUsedVideoCardDriverVersion();
  VELHAL_API std::wstring GetIndependentVideoCardDriverDate();
  VELHAL_API std::wstring GetUnUsedVideoCardDriverDate();
  VELHAL_API unsigned long GetIndependentVedioCardMemorySize();
  VELHAL_API unsigned long GetUnUsedVedioCardMemorySize();
  VELHAL_API unsigned long GetIndependentVedioCardErrorCode();

  // The screen: classes 17 and 26-29.
  VELHAL_API std::wstring GetDisplayResolution();      // "1920x1080"
  VELHAL_API unsigned long GetHorizontalResolution();  // pixels
  VELHAL_API unsigned long GetVerticalResolution();
  VELHAL_API unsigned long GetRefreshRate();  // Hz
  VELHAL_API unsigned long GetBitPerPixel();

  // The display product name from the active monitor's EDID, else class 16 (the monitor's PNP
  // model from WMI, or its caption).
  VELHAL_API std::wstring GetMonitorCaption();
  // Whether the active display's device ID and WMI's monitor PNP ID are the same text (two
  // empty texts included, as callers expect).
  VELHAL_API bool IsMainDeviceActive();

 private:
  std::wstring GetStrProperty(EnumHalGraphicQueryInfo infoClass);
  unsigned long GetUlongProperty(EnumHalGraphicQueryInfo infoClass);
  void GetLcdEdidData(std::wstring& name);
  std::string GetEdidDataPath();
  std::string GetPnpDeviceID();
  std::wstring GetActiveDeviceID();
  void ParseEdidData(unsigned char* data, unsigned long size, std::wstring& name);
  std::wstring GetLCDNameByWMI();

  GpAdapterList* list_;
};
