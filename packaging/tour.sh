#!/usr/bin/env bash
# tour.sh OUT CLIENT...: drives the client through its automation, screen by screen, and leaves pictures and files in OUT.
set -euo pipefail
out=$1
shift

commands() {
    cat <<JSON
{"do":"open","screen":"frm_ScanContrast111"}
{"do":"set","control":"DBLookupComboboxEh7","text":"发件"}
{"do":"query"}
JSON
    local page
    for page in "TabSheet2 DataView1" "TabSheet1 DataView2" "TabSheet3 DataView3"; do
        set -- $page
        cat <<JSON
{"do":"page","control":"$1"}
{"do":"screenshot","file":"$out/scan-contrast-$1.png"}
{"do":"export","view":"$2","file":"$out/scan-contrast-$1.csv"}
{"do":"export","view":"$2","file":"$out/scan-contrast-$1.xlsx"}
JSON
    done
    cat <<JSON
{"do":"open","screen":"frm_ManCome111"}
{"do":"query"}
{"do":"title","view":"DataView2","field":"WEIGHT"}
{"do":"title","view":"DataView2","field":"WEIGHT"}
{"do":"screenshot","file":"$out/man-come.png"}
{"do":"export","view":"DataView2","file":"$out/man-come.csv"}
{"do":"cell","view":"DataView2","row":0,"field":"BILLCOUNT","doubleClick":true}
{"do":"screenshot","file":"$out/man-come-detail.png"}
{"do":"cell","view":"DataView1","row":0,"field":"BILL_CODE","doubleClick":true}
{"do":"screenshot","file":"$out/waybill-track.png"}
{"do":"open","screen":"frm_MonthSendBill111"}
{"do":"query"}
{"do":"export","view":"DataView2","file":"$out/month-send.xlsx"}
{"do":"cell","view":"DataView2","row":0,"field":"bill_count","doubleClick":true}
{"do":"screenshot","file":"$out/month-send-detail.png"}
{"do":"print","control":"Button2","file":"$out/month-send-list.pdf"}
{"do":"quit"}
JSON
}

replies=$(commands | "$@" --automation --strict) || { printf '%s\n' "$replies" >&2; echo "The client ended with an error." >&2; exit 1; }
if printf '%s\n' "$replies" | grep -F '"ok":false' >&2; then
    echo "The client refused a command." >&2
    exit 1
fi
for file in "$out"/*.png "$out"/*.csv "$out"/*.xlsx "$out"/*.pdf; do
    printf 'wrote %s (%s bytes)\n' "$file" "$(stat -c %s "$file")"
done
