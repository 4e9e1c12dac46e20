# The texts of an application in its Makefile:
#
#   LANG_SOURCE = app.lang-src
#   LANG_FILES = $(wildcard src/*.c src/*.h)        the files with the requests, of libraries too
#   include $(shell pkg-config --variable=lang_mk lang)
#
#   all: app $(LANG_MADE)
#
# $(LANG_MADE) lints the source, compiles it into a fresh folder, and puts that into the place of
# $(LANG_TEXTS) when every language is there; anything else, and a text of the code in pieces of which
# only the first is read, fails the build. "make lang-check" looks for requests in $(LANG_FILES), brings
# the source up to date, and tells what is new, no longer used, and not read; "make lang-install" installs the compiled
# files below $(DESTDIR)$(LANG_DESTINATION); "make lang-clean" takes away what was built.
#
# To be set before: LANG_TEXTS (texts), LANG_LANGUAGES (all that the source defines), LANG_DESTINATION,
# LANG_MINIMUM (percent of the texts, below which a language is left out), LANG_FAIL_ON_UNUSED (yes: items
# that are no longer used fail lang-check), LANG_LINT (options of "lang-kit lint"); LANG_PROGRAM and LANG_KIT when they are not in PATH.

LANG_TEXTS ?= texts
LANG_LANGUAGES ?=
LANG_BUILD ?= $(dir $(lastword $(MAKEFILE_LIST)))lang-build
LANG_MADE := $(LANG_TEXTS)/.made
LANG_FAULTS = unread,unused
LANG_RUN = $(if $(LANG_PROGRAM),LANG_PROGRAM='$(LANG_PROGRAM)') $(if $(LANG_KIT),LANG_KIT='$(LANG_KIT)') \
	$(if $(LANG_LINT),LANG_LINT='$(LANG_LINT)') $(if $(LANG_MINIMUM),LANG_MINIMUM='$(LANG_MINIMUM)') \
	$(if $(LANG_FAIL_ON_UNUSED),LANG_CHECK='--fail-on $(LANG_FAULTS)') $(LANG_BUILD)
# The path must be read now: another file may be included behind this one.
LANG_BUILD := $(LANG_BUILD)

# What is asked for without a target stays the Makefile's own first one.
lang_default_goal := $(.DEFAULT_GOAL)

$(LANG_MADE): $(LANG_SOURCE) $(LANG_FILES) $(LANG_BUILD)
	$(if $(LANG_FILES),$(LANG_RUN) code $(LANG_SOURCE) $(LANG_FILES))
	$(LANG_RUN) texts $(LANG_SOURCE) $(LANG_TEXTS) $(LANG_LANGUAGES)
	touch $@

lang-check:
	$(LANG_RUN) check $(LANG_SOURCE) $(LANG_FILES)

lang-install: $(LANG_MADE)
	cd $(LANG_TEXTS) && find . -name '*.lang' -exec \
		install -D -m 644 '{}' '$(abspath $(DESTDIR)$(LANG_DESTINATION))/{}' ';'

lang-clean:
	rm -rf $(LANG_TEXTS)

.DEFAULT_GOAL := $(lang_default_goal)
.PHONY: lang-check lang-install lang-clean
