#!/usr/bin/env bash
# Non-blank lines of code (src/, tools/) and of tests (tests/), and the test
# share in percent. The project keeps tests at a quarter to a third of code.
set -euo pipefail
cd "$(dirname "$0")/.."
code=$(git ls-files 'src/*.cpp' 'src/*.h' 'tools/*.cpp' 'tools/*.h' | xargs cat | grep -c -v -E '^\s*$')
tests=$(git ls-files 'tests/*' | grep -E '\.(cpp|h|hpp|py|sh)$' | xargs cat | grep -c -v -E '^\s*$')
echo "code $code, tests $tests, tests/code $((100 * tests / code))%"
