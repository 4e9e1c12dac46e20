#include "cli/editor-module.h"

#include "app/global.h"
#include "editor/frame/edit-start.h"

#include <clocale>
#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <string>
#include <unistd.h>

namespace {

constexpr const char *module_name = "lang-editor.so";

// Looks beside the program, where the build leaves the module, then in the library directory, where
// it is installed.
void *load_module()
{
    const std::string directory = zel::program_directory();
    const std::string built = directory + module_name;
    // Only where the file is missing the search goes on: one that is there and cannot be loaded
    // must say why, and not hide behind an installed module of another version.
    if (access(built.c_str(), F_OK) == 0)
        return dlopen(built.c_str(), RTLD_NOW);
    const std::string installed = directory + LANG_MODULE_FROM_PROGRAM + "/" + module_name;
    return dlopen(installed.c_str(), RTLD_NOW);
}

// Loads the module once; it stays for the rest of the process, since the toolkit cannot be
// unloaded.
void *editor_module()
{
    static void *module = load_module();
    return module;
}

template <class Function>
Function find(const char *name)
{
    void *module = editor_module();
    return module == nullptr ? nullptr : reinterpret_cast<Function>(dlsym(module, name));
}

bool is_long_option(const char *word) { return std::strncmp(word, "--", 2) == 0; }

} // namespace

namespace zel {

void take_toolkit_args(int *argc, char ***argv)
{
    // What the toolkit does at its start: commands must work the same with and without it. Numbers
    // are written and read with a point in every locale.
    std::setlocale(LC_ALL, "");
    std::setlocale(LC_NUMERIC, "C");
    bool wanted = false;
    for (int i = 1; i < *argc; ++i)
        wanted = wanted || is_long_option((*argv)[i]);
    if (!wanted)
        return;
    if (auto *take = find<decltype(&edit_take_toolkit_args)>("edit_take_toolkit_args"))
        take(argc, argv);
}

void run_editor(const char *file)
{
    if (auto *start = find<decltype(&edit_start)>("edit_start")) {
        start(file);
        return;
    }
    // A build without the editor has no module to load, and the loader's message would send the
    // user looking for a file.
#ifdef LANG_WITHOUT_EDITOR
    const char *reason = "it was built without its editor";
#else
    const char *reason = dlerror();
#endif
    std::fprintf(stderr, "lang: the editor cannot be loaded: %s\n",
                 reason == nullptr ? module_name : reason);
}

} // namespace zel
