#!/usr/bin/env bash
# Both backings define what the interface declares.
source "$(dirname "$0")/lib.sh"
python3 scripts/checks/backings.py
