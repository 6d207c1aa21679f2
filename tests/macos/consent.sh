#!/usr/bin/env bash
# consent.sh grant|withdraw IDENTIFIER: gives the application with this bundle identifier the Accessibility permission
# without asking anybody, or takes it back. For machines that live as long as one test run: it writes to the system's own
# record, which needs root and a system that lets root write there.
set -euo pipefail
identifier=$2
case $1 in
  grant)
    sudo -n sqlite3 "/Library/Application Support/com.apple.TCC/TCC.db" "INSERT OR REPLACE INTO access
      (service, client, client_type, auth_value, auth_reason, auth_version, indirect_object_identifier, flags)
      VALUES ('kTCCServiceAccessibility', '$identifier', 0, 2, 4, 1, 'UNUSED', 0);"
    sudo -n killall tccd || true # which would go on with what it has read
    ;;
  withdraw) tccutil reset Accessibility "$identifier" ;;
  *) exit 2 ;;
esac
