#pragma once

// What each word's file defines.

#include "kit/support/word.h"

namespace zel::kit {

int run_check(const word &self, int argc, char **argv);
int run_lint(const word &self, int argc, char **argv);
int run_export(const word &self, int argc, char **argv);
int run_import(const word &self, int argc, char **argv);
int run_adopt(const word &self, int argc, char **argv);
int run_diff(const word &self, int argc, char **argv);
int run_show(const word &self, int argc, char **argv);
int run_merge(const word &self, int argc, char **argv);
int run_git(const word &self, int argc, char **argv);
int run_pseudo(const word &self, int argc, char **argv);
int run_report(const word &self, int argc, char **argv);
int run_stat(const word &self, int argc, char **argv);
int run_fill(const word &self, int argc, char **argv);
int run_carry(const word &self, int argc, char **argv);
int run_news(const word &self, int argc, char **argv);
int run_questions(const word &self, int argc, char **argv);
int run_mnemonics(const word &self, int argc, char **argv);
int run_replace(const word &self, int argc, char **argv);
int run_shots(const word &self, int argc, char **argv);
int run_start(const word &self, int argc, char **argv);

} // namespace zel::kit
