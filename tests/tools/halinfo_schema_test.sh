#!/usr/bin/env bash
# halinfo --json in the session this test runs in (the display one gives the graphics and monitor
# sections their full content) against the written schema.
set -uo pipefail
wine_run=$1 halinfo=$2
here=$(dirname "$0")
document=$(mktemp --suffix=.json)
trap 'rm -f "$document"' EXIT
"$wine_run" "$halinfo" --json >"$document" || { echo "FAILED: halinfo --json exited $?"; exit 1; }
/usr/bin/python3 "$here/validate_json.py" "$here/../../tools/halinfo/halinfo.schema.json" "$document"
