# Front door: `make play` builds and starts the engine, `make test` builds and
# runs every test. Everything else is for developers.
BUILD ?= build
ASAN_BUILD ?= build-asan
TSAN_BUILD ?= build-tsan
JOBS ?= 2

.PHONY: all build play test test-asan test-tsan bench perft match match-book lines deps clean

all: build

deps:
	@scripts/install-deps.sh

build: deps
	@cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release >/dev/null
	@cmake --build $(BUILD) -j$(JOBS)

play: build
	@$(BUILD)/morvane

# The sanitizer passes run first, the full suite last so that its summary
# closes the output. Games against other engines are `make match`'s.
test:
	@scripts/install-deps.sh --test
	@$(MAKE) --no-print-directory test-asan
	@$(MAKE) --no-print-directory test-tsan
	@cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release >/dev/null
	@cmake --build $(BUILD) -j$(JOBS)
	@cd $(BUILD) && ctest --output-on-failure -j$(JOBS)

# The input-hardening tests and the make/unmake self-checks, with AddressSanitizer,
# UndefinedBehaviorSanitizer and the Debug asserts.
test-asan:
	@cmake -S . -B $(ASAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DMORVANE_SANITIZE=address >/dev/null
	@cmake --build $(ASAN_BUILD) -j$(JOBS) --target morvane_tests
	@$(ASAN_BUILD)/morvane_tests --gtest_brief=1 --gtest_filter='*Fuzz*:*Transcript*:GameFiles*:Fen*:EditPosition*:MakeUnmake*:SearchNodeTest*:TbCache*:TbRegistry*:TbProbe*:TbIndexCases*:TbDecode*:TbHeader*:TbCodeTables*:TbCompressRoundTrip*:TbgenRules*:TbgenMaterial*-Makebook*:TbIndexCases.TbindexPrintsWhatTheProbeReads'

# The think thread against random commands, under ThreadSanitizer.
test-tsan:
	@cmake -S . -B $(TSAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DMORVANE_SANITIZE=thread >/dev/null
	@cmake --build $(TSAN_BUILD) -j$(JOBS) --target morvane_tests
	@TSAN_OPTIONS=halt_on_error=1 $(TSAN_BUILD)/morvane_tests --gtest_brief=1 --gtest_filter='ThinkThreadStress*:XboardSession*:ThinkGuard*:BookGameTranscript*'

bench: build
	@$(BUILD)/bench

perft: build
	@$(BUILD)/perft "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -" 5

# 10 games at 10+0.1 against fairymax through xboard: 5 as xboard engine, 5 as UCI.
match: build
	@scripts/match.sh $(BUILD)

# 10 games from the initial position, opened by the engine's own book, against fairymax.
match-book: build
	@scripts/install-match-deps.sh
	@$(BUILD)/match --book --opponent fairymax --games 10 --tc 10+0.1 --pgn $(BUILD)/match-book.pgn \
		--debug-log $(BUILD)/match-book.log | tee $(BUILD)/match-book.txt

# Lines of code and of tests, and their ratio.
lines:
	@scripts/count-lines.sh

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(TSAN_BUILD)
