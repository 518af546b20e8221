# Front door: `make play` builds and starts the engine, `make test` builds and
# runs every test. Everything else is for developers.
BUILD ?= build
ASAN_BUILD ?= build-asan
TSAN_BUILD ?= build-tsan
JOBS ?= 2

.PHONY: all build play test test-asan test-tsan bench perft match deps clean

all: build

deps:
	@scripts/install-deps.sh

build: deps
	@cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release >/dev/null
	@cmake --build $(BUILD) -j$(JOBS)

play: build
	@$(BUILD)/morvane

# The sanitizer pass runs the input-hardening tests first; the full suite
# runs last so that its summary closes the output.
test:
	@scripts/install-deps.sh --test
	@scripts/install-match-deps.sh
	@$(MAKE) --no-print-directory test-asan
	@$(MAKE) --no-print-directory test-tsan
	@cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release >/dev/null
	@cmake --build $(BUILD) -j$(JOBS)
	@cd $(BUILD) && ctest --output-on-failure -j$(JOBS)

test-asan:
	@cmake -S . -B $(ASAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DMORVANE_SANITIZE=address >/dev/null
	@cmake --build $(ASAN_BUILD) -j$(JOBS)
	@$(ASAN_BUILD)/morvane_tests --gtest_brief=1 --gtest_filter='*Fuzz*:*Transcript*:Fen*:Edit*:TbDecodeBlock*:TbHeader*:TbCodeTables*:TbCompressRoundTrip*'

# The think thread against random commands, under ThreadSanitizer.
test-tsan:
	@cmake -S . -B $(TSAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DMORVANE_SANITIZE=thread >/dev/null
	@cmake --build $(TSAN_BUILD) -j$(JOBS)
	@TSAN_OPTIONS=halt_on_error=1 $(TSAN_BUILD)/morvane_tests --gtest_brief=1 --gtest_filter='ThinkThreadStress*:XboardSession*:ThinkGuard*'

bench: build
	@$(BUILD)/bench

perft: build
	@$(BUILD)/perft "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -" 5

# 10 games at 10+0.1 against fairymax through xboard: 5 as xboard engine, 5 as UCI.
match: build
	@scripts/match.sh $(BUILD)

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(TSAN_BUILD)
