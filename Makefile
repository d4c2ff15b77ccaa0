# The front door.
#
#   make run [CLIP=file] [OUT=dir]   shows a clip: the project's own, or yours; pictures go to OUT
#   make test                        builds and tests everything, sanitizers included
#   make soak [SOAK_SECONDS=n]       reads clips at random for n seconds: PLAYFILE_REAL_MEDIA's, or our own
#   make bench                       the benchmarks
#   make check                       layers, headers, symbols, words, format, tidiness
#   make format                      lays out the sources
#   make install [PREFIX=dir]        installs the release build
#   make clean                       removes the build trees
#
# Each of them first installs what is missing, from Debian's packages.

OUT ?= out
PREFIX ?= /usr/local
JOBS ?= $(shell nproc)
SOAK_SECONDS ?= 300

MEDIA := build/media
PROGRAM := build/release/bin/playfile
ifeq ($(CLIP),)
SHOWN := $(MEDIA)/demo.mp4
else
SHOWN := $(CLIP)
endif

.DEFAULT_GOAL := help
.PHONY: help deps run test soak bench check format install clean dev release asan tsan tsa

help:
	@sed -n '/^# The front/,/^$$/s/^# \{0,1\}//p' Makefile

deps:
	@scripts/install-deps.sh

dev release asan tsan tsa: deps
	@scripts/build.sh $@ -j $(JOBS)

run: deps
	@scripts/build.sh release -j $(JOBS) playfile_cli
ifeq ($(CLIP),)
	@scripts/make-test-media.sh $(MEDIA) demo.mp4
endif
	@$(PROGRAM) show "$(SHOWN)" --out "$(OUT)"

test: deps
	@JOBS=$(JOBS) scripts/test-all.sh

soak: deps
	@scripts/build.sh release -j $(JOBS) playfile_soak
ifeq ($(PLAYFILE_REAL_MEDIA),)
	@scripts/make-test-media.sh $(MEDIA)
	build/release/bin/playfile_soak $(MEDIA) --seconds $(SOAK_SECONDS)
else
	build/release/bin/playfile_soak $(PLAYFILE_REAL_MEDIA)/video $(PLAYFILE_REAL_MEDIA)/audio --seconds $(SOAK_SECONDS)
endif

bench: release
	@scripts/make-test-media.sh $(MEDIA)
	build/release/bin/playfile_micro
	build/release/bin/playfile_workload $(or $(CLIP),$(MEDIA)/demo.mp4)
	build/release/bin/playfile_soundbench $(MEDIA)/noise-s24-8ch.wav
	build/release/bin/playfile_remotebench --folder build --size 256
	build/release/bin/playfile_transferbench --folder build --size 256 --files 2000 --rounds 3

check: release
	@scripts/check-all.sh

format: deps
	@scripts/check-format.py --fix

install: release
	cmake --install build/release --prefix "$(PREFIX)"

clean:
	rm -rf build
