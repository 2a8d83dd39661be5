# Entry points for people and CI. Each build flavour has its own folder.
GENERATOR = $(shell command -v ninja >/dev/null 2>&1 && echo "-G Ninja")
JOBS ?= $(shell nproc 2>/dev/null || echo 2)
# The windows need Qt, its designer-file loader and a CJK font.
DEP_GROUPS ?= qt
CTEST := ctest --output-on-failure -j$(JOBS) --timeout 600

.PHONY: deps test test-asan test-tsan bench demo clean format fuzz fuzz-smoke fuzz-campaign

deps:
	@scripts/install-deps $(DEP_GROUPS)

# Configure only when the folder has no cache yet, so later runs keep their options.
define configure
	@if [ ! -f $(1)/CMakeCache.txt ]; then cmake -S . -B $(1) $(GENERATOR) $(2); fi
endef

test: deps
	$(call configure,build,-DCMAKE_BUILD_TYPE=RelWithDebInfo)
	cmake --build build -j$(JOBS)
	cd build && $(CTEST)

test-asan: deps
	$(call configure,build-asan,-DCMAKE_BUILD_TYPE=Debug -DIM_SANITIZE=address -DIM_BUILD_BENCH=OFF)
	cmake --build build-asan -j$(JOBS)
	cd build-asan && ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 $(CTEST)

test-tsan: deps
	$(call configure,build-tsan,-DCMAKE_BUILD_TYPE=Debug -DIM_SANITIZE=thread -DIM_BUILD_BENCH=OFF)
	cmake --build build-tsan -j$(JOBS)
	cd build-tsan && TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1:suppressions=$(CURDIR)/tests/tsan.supp setarch $$(uname -m) -R $(CTEST)

bench: deps
	$(call configure,build,-DCMAKE_BUILD_TYPE=RelWithDebInfo)
	cmake --build build -j$(JOBS)
	cmake --build build --target run_benchmarks

# libFuzzer targets (clang, ASan + UBSan) in build-fuzz/. fuzz-smoke runs
# each for a few seconds, as CI does; fuzz-campaign for FUZZ_SECONDS each.
FUZZ_SECONDS ?= 600
fuzz:
	@scripts/install-deps fuzz
	$(call configure,build-fuzz,-DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ -DIM_FUZZ=ON -DIM_BUILD_UI=OFF -DIM_BUILD_BENCH=OFF)
	cmake --build build-fuzz -j$(JOBS) --target fuzz_targets

fuzz-smoke: fuzz
	scripts/fuzz-run 5

fuzz-campaign: fuzz
	scripts/fuzz-run $(FUZZ_SECONDS)

# The demo host: builds the module and runs it beside a placeholder drawing.
# `make demo SERVER=xmpp` runs it against a throwaway Prosody instead.
# Without a display (or with DEMO_ARGS=--headless) it runs a short script
# offscreen, writes a screenshot into the data folder and exits.
demo: deps
	$(call configure,build,-DCMAKE_BUILD_TYPE=RelWithDebInfo)
	cmake --build build -j$(JOBS) --target im_demo
	build/apps/im_demo $(if $(SERVER),--server $(SERVER)) $(DEMO_ARGS)

format:
	git ls-files '*.h' '*.cpp' | xargs clang-format -i

clean:
	rm -rf build build-asan build-tsan build-fuzz
