// A command line cut into words, and each word read as everything that it might be.

#include "support.h"

#include <cstdlib>

#include "family/argv.h"

namespace {

constexpr argv_tab_t table[] = {{"-help", 1}, {"convert", 2}, {"a", 4}, {nullptr, 0}};

// Reads the words with one getter after the other; one that fails takes no word.
void read_words(int count, char **position)
{
    while (count > 0) {
        const int before = count;
        int number = 0;
        int other = 0;
        float single = 0;
        double real = 0;
        unsigned flags = 0;
        check_argv_str_to_num(&count, &position, table);
        check_argv(&count, &position, table);
        argv_str_to_num(&count, &position, table);
        argv_get_int(&count, &position, &number);
        argv_get_time(&count, &position, &number);
        argv_get_width_height(&count, &position, &number, &other);
        argv_get_size(&count, &position, &number, &other);
        argv_get_float(&count, &position, &single);
        argv_get_double(&count, &position, &real);
        argv_get_flags_by_str(&count, &position, table, &flags);
        fuzz::require(count >= 0 && count <= before, "words are used up");
        char *text = nullptr;
        argv_get_str(&count, &position, &text);
        std::free(text);
        std::free(argv_get_prg(&count, &position));
    }
}

void give_back(int &count, char **&words)
{
    del_argv(&count, &words);
    fuzz::require(count == 0, "no word is left");
}

} // namespace

extern "C" int FUZZ_TARGET(words)(const std::uint8_t *data, std::size_t size)
{
    const std::string line(fuzz::bytes_of(data, size));
    int count = 0;
    char **words = nullptr;
    gen_argv(line.c_str(), &count, &words);
    print_argv(stdout, count, words);
    read_words(count, words);
    gen_argv_add_str_ext(line.c_str(), &count, &words);
    give_back(count, words);
    gen_argv_ext(line.c_str(), &count, &words);
    give_back(count, words);
    gen_argv_execv(line.c_str(), &count, &words);
    give_back(count, words);
    if (gen_argv_from_file(fuzz::as_file("words", line), &count, &words) == 0)
        read_words(count, words);
    give_back(count, words);
    return 0;
}
