#!/bin/sh
# Static checks of the service's own sources: clang-tidy (rules in
# .clang-tidy) with the compile commands of a build of its own, cppcheck, the
# formatting check of clang-format (rules in .clang-format) over every C and
# C++ file of the repository, and mandoc's check of the manual pages (every
# message, style included). Generated bus glue is not checked.
# Ends with a non-zero status when any of the four finds something.
#
#   PLIX_LINT_BUILD_DIR  build directory (default build-lint)
set -eu
cd "$(dirname "$0")/.."
build=$(realpath -m "${PLIX_LINT_BUILD_DIR:-build-lint}")
status=0
./scripts/install-deps.sh

# The service's sources: the libraries and the executable, not the tests.
service_dirs="common platform model validation actions config engine dbus service"
service_sources=$(git ls-files --cached --others --exclude-standard -- $(for d in $service_dirs; do echo "$d/*.cpp $d/*.c"; done))
all_sources=$(git ls-files --cached --others --exclude-standard -- '*.cpp' '*.c' '*.h')

CC=clang CXX=clang++ cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_EXPORT_COMPILE_COMMANDS=ON >/dev/null
# clang-tidy needs the generated glue headers the sources include.
glue=$(sed -n 's/.*plix_dbus_glue(TARGET \([a-z_]*\).*/\1/p' common/cmake/*/CMakeLists.txt)
cmake --build "$build" --target $glue -j2 >/dev/null

echo "lint: clang-tidy"
if ! clang-tidy -p "$build" --quiet $service_sources; then
    status=1
fi

echo "lint: cppcheck"
# passedByValue: the model's and the engine's operations take strings and
# variants by value because their interface fixes it so.
includes=$(for d in $service_dirs; do echo "-I$d"; done)
if ! cppcheck --quiet --error-exitcode=1 --std=c++17 --language=c++ \
        --enable=warning,performance,portability --inline-suppr \
        --suppress=missingIncludeSystem --suppress=unmatchedSuppression --suppress=passedByValue \
        $includes $(echo "$service_sources" | grep '\.cpp$'); then
    status=1
fi
if ! cppcheck --quiet --error-exitcode=1 --std=c11 --language=c \
        --enable=warning,performance,portability --inline-suppr \
        --suppress=missingIncludeSystem -Iplatform \
        $(echo "$service_sources" | grep '\.c$'); then
    status=1
fi

echo "lint: manual pages"
if ! mandoc -T lint man/*.[0-9]; then
    status=1
fi

echo "lint: clang-format"
if ! clang-format --style=file --dry-run --Werror $all_sources; then
    status=1
fi

[ "$status" -eq 0 ] && echo "lint: clean"
exit "$status"
