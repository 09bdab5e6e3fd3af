#!/bin/sh
# Runs the service under valgrind memcheck; scripts/valgrind.sh puts this
# script in PLIX_SERVICE_WRAPPER so that the integration tests start every
# service instance through it. Each instance writes its errors, as they
# happen, to an XML file of its own in PLIX_VALGRIND_LOG_DIR, since the
# tests end the service with SIGKILL and no final summary is written then;
# the process id in the names keeps a daemon's parent and child apart.
set -eu
log=$(mktemp "$PLIX_VALGRIND_LOG_DIR/service.XXXXXX")
exec valgrind --tool=memcheck --error-exitcode=1 --track-origins=yes \
    --leak-check=full --show-leak-kinds=definite --errors-for-leak-kinds=definite \
    --suppressions="$(dirname "$0")/valgrind.supp" \
    --log-file="$log.%p.txt" --xml=yes --xml-file="$log.%p.xml" "$@"
