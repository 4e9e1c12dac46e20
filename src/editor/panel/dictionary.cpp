#include "editor/panel/dictionary.h"

#ifdef LANG_HAVE_ENCHANT

#include "assist/dictionary-choice.h"
#include "support/file-call.h"

#include <enchant.h>
#include <glib.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <unordered_map>

namespace zel {

namespace {

constexpr std::size_t most_loaded = 4; // two are shown at a time
constexpr std::size_t most_answers = 50000;

class enchant_dictionary final : public dictionary {
public:
    enchant_dictionary(EnchantBroker *broker, EnchantDict *dict, std::string name)
        : name_(std::move(name)), broker_(broker), dict_(dict)
    {
    }
    ~enchant_dictionary() override { enchant_broker_free_dict(broker_, dict_); }
    enchant_dictionary(const enchant_dictionary &) = delete;
    enchant_dictionary &operator=(const enchant_dictionary &) = delete;

    const std::string &name() const { return name_; }

    bool is_right(const std::string &word) override
    {
        const auto known = answers_.find(word);
        if (known != answers_.end())
            return known->second;
        // Everything is dropped at once: the words of the shown texts are soon known again.
        if (answers_.size() >= most_answers)
            answers_.clear();
        // Below zero is an error: a word that cannot be judged is not underlined.
        const bool right =
            enchant_dict_check(dict_, word.data(), static_cast<ssize_t>(word.size())) <= 0;
        answers_.emplace(word, right);
        return right;
    }

    std::vector<std::string> suggestions(const std::string &word, std::size_t most) override
    {
        std::vector<std::string> out;
        std::size_t count = 0;
        char **all =
            enchant_dict_suggest(dict_, word.data(), static_cast<ssize_t>(word.size()), &count);
        for (std::size_t i = 0; all != nullptr && i < std::min(count, most); ++i)
            out.emplace_back(all[i]);
        if (all != nullptr)
            enchant_dict_free_string_list(dict_, all);
        return out;
    }

    void add(const std::string &word) override
    {
        enchant_dict_add(dict_, word.data(), static_cast<ssize_t>(word.size()));
        answers_.clear(); // a word in small letters is right in capitals, too
        answers_.emplace(word, true);
    }

private:
    std::string name_;
    EnchantBroker *broker_;
    EnchantDict *dict_;
    std::unordered_map<std::string, bool> answers_;
};

// enchant makes the user's own lists of words without looking where. Behind somebody else's link,
// or in the working folder, they must not be made: below this name nothing can be.
EnchantBroker *init_broker()
{
    constexpr const char *variable = "ENCHANT_CONFIG_DIR";
    const char *chosen = std::getenv(variable);
    const std::string folder =
        chosen != nullptr ? std::string(chosen) : std::string(g_get_user_config_dir()) + "/enchant";
    if (!g_path_is_absolute(folder.c_str()) || crosses_foreign_link(folder.c_str()))
        setenv(variable, "/dev/null", 1);
    return enchant_broker_init();
}

// Everything that was asked of enchant.
class library {
public:
    library() : broker_(init_broker())
    {
        enchant_broker_list_dicts(
            broker_,
            [](const char *code, const char *, const char *, const char *, void *self) {
                static_cast<library *>(self)->there_.emplace_back(code);
            },
            this);
    }
    ~library()
    {
        // The dictionaries belong to the broker, which must be freed after them.
        loaded_.clear();
        enchant_broker_free(broker_);
    }
    library(const library &) = delete;
    library &operator=(const library &) = delete;

    // The name of the dictionary for the language, empty for none.
    const std::string &name_for(const std::string &language)
    {
        const auto known = names_.find(language);
        if (known != names_.end())
            return known->second;
        return names_[language] = assist::choose_dictionary(language, there_);
    }

    // The loaded dictionary, which moves to the front; null when it is not loaded.
    enchant_dictionary *loaded(const std::string &name)
    {
        const auto found = std::find_if(loaded_.begin(), loaded_.end(),
                                        [&](const auto &one) { return one->name() == name; });
        if (found == loaded_.end())
            return nullptr;
        std::rotate(loaded_.begin(), found, found + 1);
        return loaded_.front().get();
    }

    enchant_dictionary *load(const std::string &name)
    {
        EnchantDict *dict = enchant_broker_request_dict(broker_, name.c_str());
        if (dict == nullptr) {
            // It is listed and cannot be loaded: forget it, so that the next best one is chosen.
            there_.erase(std::remove(there_.begin(), there_.end(), std::string(name)),
                         there_.end());
            names_.clear();
            return nullptr;
        }
        // The last one was used least recently.
        if (loaded_.size() == most_loaded)
            loaded_.pop_back();
        loaded_.insert(loaded_.begin(), std::make_unique<enchant_dictionary>(broker_, dict, name));
        return loaded_.front().get();
    }

private:
    EnchantBroker *broker_;
    std::vector<std::string> there_;                          // the dictionaries' names
    std::unordered_map<std::string, std::string> names_;      // by language
    std::vector<std::unique_ptr<enchant_dictionary>> loaded_; // the last one used is first
};

std::unique_ptr<library> all;

library &the_library()
{
    if (all == nullptr)
        all = std::make_unique<library>();
    return *all;
}

} // namespace

bool has_dictionaries() { return true; }

bool is_dictionary_there(const std::string &language)
{
    return !the_library().name_for(language).empty();
}

bool is_dictionary_ready(const std::string &language)
{
    const std::string &name = the_library().name_for(language);
    return name.empty() || the_library().loaded(name) != nullptr;
}

dictionary *find_dictionary(const std::string &language)
{
    // A dictionary that cannot be loaded leaves the list: another may do, until none is left.
    for (;;) {
        const std::string name = the_library().name_for(language);
        if (name.empty())
            return nullptr;
        if (dictionary *found = the_library().loaded(name))
            return found;
        if (dictionary *found = the_library().load(name))
            return found;
    }
}

void release_dictionaries() { all.reset(); }

} // namespace zel

#else

namespace zel {

bool has_dictionaries() { return false; }
bool is_dictionary_there(const std::string &) { return false; }
bool is_dictionary_ready(const std::string &) { return true; }
dictionary *find_dictionary(const std::string &) { return nullptr; }
void release_dictionaries() {}

} // namespace zel

#endif
