#!/bin/sh
# exported_symbols.sh LIBRARY FUNCTION: the library exports exactly this function.
case $1 in
*.dll) symbols=$(objdump -p "$1" | sed -n '/Ordinal\/Name Pointer/,/^$/s/^\t\[ *[0-9]*\] \([^ ]*\)$/\1/p') ;;
*) symbols=$(nm -D --defined-only "$1" | awk '{print $3}') ;;
esac
[ "$symbols" = "$2" ] || { echo "exported: $symbols"; exit 1; }
