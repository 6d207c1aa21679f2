#!/usr/bin/env bash
# The macOS bundle's description, entitlements and icon are whole.
source "$(dirname "$0")/lib.sh"
python3 scripts/checks/bundle.py
