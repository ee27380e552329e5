#!/bin/sh
# exported_symbols.sh LIBRARY FUNCTION: the library exports exactly this function.
symbols=$(nm -D --defined-only "$1" | awk '{print $3}')
[ "$symbols" = "$2" ] || { echo "exported: $symbols"; exit 1; }
