#!/bin/sh
# The plug-in exports exactly one function.
symbols=$(nm -D --defined-only "$1" | awk '{print $3}')
[ "$symbols" = exec ] || { echo "exported: $symbols"; exit 1; }
