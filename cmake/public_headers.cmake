# The public headers: what a host includes. Paths relative to the source root, installed with
# the same relative path under include/velhal. Everything else is internal.
set(VELHAL_PUBLIC_HEADERS
  hal/hal_api.h
  hal/velhal_export.h
  hal/hal_batch.h
  hal/battery.h
  hal/cpu.h
  hal/disk.h
  hal/memory.h
  firmware/hardware_config.h
  firmware/smbios_helper.h
  firmware/system_info.h
  components/bios_wmi.h
  components/audio_card.h
  components/biometric.h
  drivers/device_driver_type.h
  drivers/device_driver.h
  network/network_adapter.h
  network/network_card.h
  platform/device_informention.h
  platform/read_reg.h
  platform/service_helpers.h
  platform/string_conversion.h
  platform/wmi_query.h
)
