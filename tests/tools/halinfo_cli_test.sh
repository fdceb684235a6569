#!/usr/bin/env bash
# halinfo under Wine: its sections as text and JSON, --help, --devices, --smbios-file, every JSON
# document against the written schema, and a clear failure without VelHal.dll.
set -uo pipefail
wine_run=$1 halinfo=$2 version=$3
here=$(dirname "$0")
schema=$here/../../tools/halinfo/halinfo.schema.json
documents=$(mktemp -d)
trap 'rm -rf "$documents"' EXIT
failures=0
check() {  # check DESCRIPTION COMMAND...
  local what=$1; shift
  if "$@"; then echo "ok: $what"; else echo "FAILED: $what"; failures=$((failures + 1)); fi
}

# halinfo writes text-mode output (CRLF line ends, as on any Windows console); compare without \r.
out=$("$wine_run" "$halinfo" | tr -d '\r'); rc=$?  # pipefail: halinfo's own status
check "plain run exits 0" test "$rc" -eq 0
check "the library section names its version" grep -Eq "^  version +$version\.0$" <<<"$out"
check "the operating-system section has a build number" grep -Eq '^  build +[0-9]+$' <<<"$out"
check "the disks section lists disk 0" grep -q '^  Disk 0$' <<<"$out"
check "the processor section has clocks in MHz" grep -Eq '^  current clock +([0-9]+ MHz|\?)$' <<<"$out"
check "the memory section has its total in MiB" grep -Eq '^  total +([0-9]+ MiB|\?)$' <<<"$out"
check "the battery section names the AC line" grep -Eq '^  AC line +(online|offline|unknown)$' <<<"$out"
check "the sensors section reports the temperatures" grep -Eq '^  temperatures +none$|^    zone 0 +-?[0-9]+ C$' <<<"$out"
check "the touch screen's presence is reported" grep -Eq '^  present +(yes|no)$' <<<"$(sed -n '/^Touch screen$/,$p' <<<"$out")"
check "the network section reports connectivity" grep -Eq '^  on the Internet +(yes|no|\?)$' <<<"$out"
check "the network section lists the IP adapters' addresses" grep -Eq '^        address +[0-9.]+/[0-9]+$' <<<"$out"
check "the USB section counts its devices" grep -Eq '^  devices +[0-9]+$' <<<"$(sed -n '/^USB$/,$p' <<<"$out")"
check "disk 0 has sizes in MiB and GB" grep -Ezq $'\n    size +[0-9]+ MiB\n    decimal size +[0-9]+ GB\n' <<<"$out"

json=$("$wine_run" "$halinfo" --json); rc=$?
check "--json exits 0" test "$rc" -eq 0
printf '%s' "$json" >"$documents/live.json"
check "--json carries the version" grep -q "\"version\": \"$version\.0\"" <<<"$json"
for key in windows processor memory disks battery smbios network sensors touchScreen \
           graphics monitors display audioDevices bluetooth biometric keyboard usb; do
  check "--json has the $key section" grep -q "\"$key\": {" <<<"$json"
done
check "--json is one object" bash -c '[[ ${1:0:1} == "{" && ${1: -1} == "}" ]]' _ "$(tr -d '\r\n' <<<"$json")"

"$wine_run" "$halinfo" --help | grep -q -- '--devices'
check "--help lists the options" test "${PIPESTATUS[1]}" -eq 0

devices=$("$wine_run" "$halinfo" --devices | tr -d '\r'); rc=$?  # pipefail: halinfo's own status
check "--devices exits 0" test "$rc" -eq 0
check "--devices lists setup classes" grep -Eq '^  [A-Za-z ,/]+ \{[0-9A-F-]{36}\}' <<<"$devices"
json=$("$wine_run" "$halinfo" --devices --json)
printf '%s' "$json" >"$documents/devices.json"
check "--devices --json has the devices array" grep -q '"devices": \[' <<<"$json"
check "--devices --json has the drivers section" grep -q '"withoutDriver": \[' <<<"$json"

table=$here/../data/smbios/wine8-notebook.rsmb
smbios=$("$wine_run" "$halinfo" --smbios-file "$table" --json | tr -d '\r'); rc=$?
check "--smbios-file exits 0" test "$rc" -eq 0
check "--smbios-file decodes the product" grep -q '"productName": "Example Book 14 G2"' <<<"$smbios"
printf '%s' "$smbios" >"$documents/smbios.json"

edid=$here/../data/edid/dell-d3218hn.bin
decoded=$("$wine_run" "$halinfo" --edid-file "$edid" --json | tr -d '\r'); rc=$?
check "--edid-file exits 0" test "$rc" -eq 0
check "--edid-file decodes the name" grep -q '"monitorName": "D3218HN"' <<<"$decoded"
check "--edid-file decodes the preferred mode" grep -q '"refreshMilliHz": 60000' <<<"$decoded"
printf '%s' "$decoded" >"$documents/edid.json"

check "every JSON document matches the schema" \
  /usr/bin/python3 "$here/validate_json.py" "$schema" "$documents"/*.json
# The validator itself must be able to refuse: a document of another schema version.
sed 's/"schemaVersion": 1/"schemaVersion": 2/' "$documents/edid.json" >"$documents/other.json"
check "the schema refuses another schemaVersion" \
  bash -c '! "$@" >/dev/null' _ /usr/bin/python3 "$here/validate_json.py" "$schema" "$documents/other.json"

alone=$(mktemp -d)
cp "$halinfo" "$alone/"
err=$("$wine_run" "$alone/$(basename "$halinfo")" 2>&1 >/dev/null); rc=$?
rm -rf "$alone"
check "a missing DLL exits non-zero" test "$rc" -ne 0
check "a missing DLL is named" grep -q "cannot load VelHal.dll" <<<"$err"

exit $((failures > 0))
