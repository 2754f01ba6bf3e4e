#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The shared library shows the Java runtime JNI_OnLoad and nothing else.
set -euo pipefail
shown=$(nm --dynamic --defined-only --format=posix "$1" | cut -d' ' -f1)
[ "$shown" = JNI_OnLoad ] || { echo "exported: $shown"; exit 1; }
